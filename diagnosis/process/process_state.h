#ifndef ARBORIST_DIAGNOSIS_PROCESS_PROCESS_STATE_H
#define ARBORIST_DIAGNOSIS_PROCESS_PROCESS_STATE_H

#include <map>
#include <optional>
#include <string>
#include <system_error>

namespace diagnosis {

// This folder alone changes and restores process-wide state: working directory, time zone and settings in this header,
// signals in signals.h, the library's log in library_log.h. While a bundle is diagnosed, other threads of the host must
// not use any of these.

/// Sets the time zone of the process as long as it exists. An empty text leaves the zone unchanged.
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

/// Changes the working directory and restores it at the end.
class WorkingDirectory {
public:
    WorkingDirectory() = default;
    ~WorkingDirectory();
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;

    /// Call it once. Returns the error if the folder can't be entered.
    std::error_code Enter(const std::string& folder);

private:
    std::string mBefore;
};

/// Sets the library's settings as long as it exists: only those given to Set have a value. At the end all are empty.
class SettingsInForce {
public:
    SettingsInForce() = default;
    ~SettingsInForce();
    SettingsInForce(const SettingsInForce&) = delete;
    SettingsInForce& operator=(const SettingsInForce&) = delete;

    /// Replaces all settings by these; the keys are those of Settings.
    void Set(const std::map<std::string, std::string>& settings);
};

/// Sets `folder` as the directory for temporary files of this process and the programs that it runs, until it ends.
void KeepTemporaryFilesIn(const std::string& folder);

} // namespace diagnosis

#endif
