#ifndef ARBORIST_TESTS_SUPPORT_SETTINGS_GUARD_H
#define ARBORIST_TESTS_SUPPORT_SETTINGS_GUARD_H

#include <string>

/// Empties all settings of the library at its start and at its end, so that tests don't affect each other.
class SettingsGuard {
public:
    SettingsGuard();
    ~SettingsGuard();
    SettingsGuard(const SettingsGuard&) = delete;
    SettingsGuard& operator=(const SettingsGuard&) = delete;

    /// Sets one setting, as a host would. `key` is one of Settings.
    void Set(const std::string& key, const std::string& value) const;
};

#endif
