#ifndef ARBORIST_FRAME_SETTINGS_H
#define ARBORIST_FRAME_SETTINGS_H

#include <string>

#include "arborist/arborist_export.h"

/// Names of the settings that the library reads. All are texts, empty unless set, and belong to the process.
namespace Settings {

/// Directory that receives the copies of external databases.
inline constexpr char APP_DATABASE_DIR[] = "AppDatabaseDir";
/// Directory of the application's files; the library reads recovery logs from it.
inline constexpr char APP_FILE_DIR[] = "AppFileDir";
/// Software version of the monitored device: only logged events of this version count for some checks.
inline constexpr char VERSION_NAME[] = "VersionName";
/// Root of the fixed paths ("Comms/Lumbra/..."); if not set, "C:\ProgramData" on Windows and "/var/lib/arborist"
/// elsewhere.
inline constexpr char PROGRAM_DATA_DIR[] = "ProgramDataDir";
/// If set, an absolute path that a rule file names (node files, searched directories) is looked up below this
/// directory, so that a captured device can be diagnosed elsewhere.
inline constexpr char DEVICE_ROOT_DIR[] = "DeviceRootDir";
/// If set to a decimal number, the library uses it as the current time, in seconds since the epoch, so that a recorded
/// device is diagnosed as of its recording.
inline constexpr char CURRENT_TIME[] = "CurrentTime";
/// When set to a decimal number: the moment, in seconds since the epoch, after which nothing counts, so that a device is
/// diagnosed as it was then. Later rows of the event log are not seen, and repairs recorded later count as not recorded.
/// Set CURRENT_TIME as well.
inline constexpr char AS_OF[] = "AsOf";

/// If not empty, the databases that a detection writes are not needed after it, as in a folder that is then removed: no
/// write waits for the disk. A crash of the machine may then leave broken databases. Repairs are still written safely.
inline constexpr char TEMPORARY_STORES[] = "TemporaryStores";

/// When set to a number: the seconds, with a fraction if need be, that a detection may take. It then ends as after
/// Arborist::RequestStop.
inline constexpr char TIME_LIMIT[] = "TimeLimit";

/// When set to a number above 0: the most root causes of a tree that are searched for. A tree of a few hundred events may
/// have a billion, and each takes memory: the first ones are then told, as many as the limit says.
inline constexpr char CAUSE_LIMIT[] = "CauseLimit";

/// If not empty, the library leaves SQLite's memory to the host: it neither configures SQLite nor sets its soft heap
/// limit, which is one for the whole process. Otherwise each connection sets the limit to 100 KiB.
inline constexpr char KEEP_SQLITE_MEMORY[] = "KeepSqliteMemory";

/// The keys of all settings. Code that sets some temporarily empties all of these at the end.
inline constexpr const char* ALL[] = {
    APP_DATABASE_DIR, APP_FILE_DIR, VERSION_NAME, PROGRAM_DATA_DIR, DEVICE_ROOT_DIR, CURRENT_TIME, AS_OF, TEMPORARY_STORES,
    TIME_LIMIT, CAUSE_LIMIT, KEEP_SQLITE_MEMORY};

} // namespace Settings

/// Sets one of the Settings, replacing its value. Call it before the detection that should use it. Not thread-safe.
ARBORIST_EXPORT void SetFaultTreeProperty(const std::string& key, const std::string& value);

#endif
