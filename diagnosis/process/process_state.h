#ifndef ARBORIST_DIAGNOSIS_PROCESS_PROCESS_STATE_H
#define ARBORIST_DIAGNOSIS_PROCESS_PROCESS_STATE_H

#include <map>
#include <optional>
#include <string>
#include <system_error>

namespace diagnosis {

// What belongs to the whole process is taken and given back in this room and nowhere else: working directory, time zone
// and settings here, signals in signals.h, the library's log in library_log.h. A host that runs threads of its own must
// keep them from all of these while a bundle is diagnosed.

/// Puts a time zone in force for the whole process while it lives. The empty text leaves the zone alone.
class TimeZoneGuard {
public:
    explicit TimeZoneGuard(const std::string& zone);
    ~TimeZoneGuard();
    TimeZoneGuard(const TimeZoneGuard&) = delete;
    TimeZoneGuard& operator=(const TimeZoneGuard&) = delete;

private:
    bool mIsChanged;
    std::optional<std::string> mBefore;
};

/// Makes a folder the working directory and gives the old one back at the end.
class WorkingDirectory {
public:
    WorkingDirectory() = default;
    ~WorkingDirectory();
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;

    /// Call it once. Otherwise answers why the folder can't be entered.
    std::error_code Enter(const std::string& folder);

private:
    std::string mBefore;
};

/// The settings of the library while it lives: only those that Set was given. All are empty at the end.
class SettingsInForce {
public:
    SettingsInForce() = default;
    ~SettingsInForce();
    SettingsInForce(const SettingsInForce&) = delete;
    SettingsInForce& operator=(const SettingsInForce&) = delete;

    /// Replaces all settings by these, named as in Settings.
    void Set(const std::map<std::string, std::string>& settings);
};

/// Makes `folder` the one for temporary files of this process, and of the programs that it runs, until it ends.
void KeepTemporaryFilesIn(const std::string& folder);

} // namespace diagnosis

#endif
