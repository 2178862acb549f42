#ifndef ARBORIST_FRAME_SETTINGS_H
#define ARBORIST_FRAME_SETTINGS_H

#include <string>

#include "arborist/arborist_export.h"

/// The settings that the library reads, all texts, all empty when not set. They belong to the process.
namespace Settings {

/// Directory that receives the copies of external databases.
inline constexpr char APP_DATABASE_DIR[] = "AppDatabaseDir";
/// Directory of the application's files; recovery logs are looked for there.
inline constexpr char APP_FILE_DIR[] = "AppFileDir";
/// Software version of the monitored device: selects the logged events that count.
inline constexpr char VERSION_NAME[] = "VersionName";
/// Root of the fixed paths ("Comms/Lumbra/..."); when not set, "C:\ProgramData" on Windows and
/// "/var/lib/arborist" elsewhere.
inline constexpr char PROGRAM_DATA_DIR[] = "ProgramDataDir";
/// When set, an absolute path that a rule file names (node files, searched directories) is looked up below this
/// directory, so that a captured device can be diagnosed elsewhere.
inline constexpr char DEVICE_ROOT_DIR[] = "DeviceRootDir";
/// When set to a decimal number, the moment, in seconds since the epoch, that the library takes for now, so that a
/// recorded device is diagnosed as of its recording.
inline constexpr char CURRENT_TIME[] = "CurrentTime";

/// When not empty, nothing of the databases that a detection writes is needed after it (a recorded device is diagnosed
/// in a folder that is removed): no write waits for the disk. A machine that fails on the way may then leave broken
/// databases. Repairs are written safely all the same.
inline constexpr char TEMPORARY_STORES[] = "TemporaryStores";

/// The keys of all settings. Whoever sets some for a while empties all of these, so that a later detection sees none.
inline constexpr const char* ALL[] = {
    APP_DATABASE_DIR, APP_FILE_DIR, VERSION_NAME, PROGRAM_DATA_DIR, DEVICE_ROOT_DIR, CURRENT_TIME, TEMPORARY_STORES};

} // namespace Settings

/// Sets one of the Settings, replacing its value. Call it before the detection that is to see it; nothing is locked.
ARBORIST_EXPORT void SetFaultTreeProperty(const std::string& key, const std::string& value);

#endif
