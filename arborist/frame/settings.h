#ifndef ARBORIST_FRAME_SETTINGS_H
#define ARBORIST_FRAME_SETTINGS_H

#include <string>

#include "arborist/arborist_export.h"

/// Names of the settings that the library reads. All are texts, empty unless set, and belong to the process.
namespace Settings {

/// Directory that receives the copies of external databases.
inline constexpr char APP_DATABASE_DIR[] = "AppDatabaseDir";
/// Directory of the application's files. A detection only logs it.
inline constexpr char APP_FILE_DIR[] = "AppFileDir";
/// Software version of the monitored device: some checks count only logged events of this version.
inline constexpr char VERSION_NAME[] = "VersionName";
/// Root of the fixed paths ("Comms/Lumbra/..."); if not set, "C:\ProgramData" on Windows and "/var/lib/arborist"
/// elsewhere.
inline constexpr char PROGRAM_DATA_DIR[] = "ProgramDataDir";
/// If set, an absolute path that a rule file names (node files, searched directories) is looked up below this
/// directory, so that a captured device can be diagnosed elsewhere.
inline constexpr char DEVICE_ROOT_DIR[] = "DeviceRootDir";
/// If set to a decimal number, the library uses this number as the current time, in seconds since the epoch, so that a
/// recorded device is diagnosed as of its recording.
inline constexpr char CURRENT_TIME[] = "CurrentTime";
/// If set to a decimal number, a detection ignores everything after this moment, in seconds since the epoch, so that a
/// device is diagnosed as it was then: it doesn't see later rows of the event log, and takes repairs that were recorded
/// later as not recorded. Set CURRENT_TIME as well.
inline constexpr char AS_OF[] = "AsOf";

/// If not empty, the host needs the databases that a detection writes only during the detection: no write waits for the
/// disk, and a crash of the machine may leave broken databases. Repairs are still written safely.
inline constexpr char TEMPORARY_STORES[] = "TemporaryStores";

/// When set to a number above 0: the seconds, with a fraction if need be, that a detection may take. It then ends as after
/// Arborist::RequestStop. 0, a negative number and a text that begins with no number are no limit.
inline constexpr char TIME_LIMIT[] = "TimeLimit";

/// If set to a number above 0, a detection searches for at most so many root causes of each tree, and reports the first
/// ones. Without the setting it builds them all: a tree of a few hundred events may have a billion, and each takes memory.
inline constexpr char CAUSE_LIMIT[] = "CauseLimit";

/// If not empty, the library leaves SQLite's memory to the host: it neither configures SQLite nor sets the soft heap limit
/// that SQLite has for the whole process. Otherwise each connection sets this limit to 100 KiB.
inline constexpr char KEEP_SQLITE_MEMORY[] = "KeepSqliteMemory";

/// The keys of all settings. Code that sets some temporarily empties all of these at the end.
inline constexpr const char* ALL[] = {
    APP_DATABASE_DIR, APP_FILE_DIR, VERSION_NAME, PROGRAM_DATA_DIR, DEVICE_ROOT_DIR, CURRENT_TIME, AS_OF, TEMPORARY_STORES,
    TIME_LIMIT, CAUSE_LIMIT, KEEP_SQLITE_MEMORY};

} // namespace Settings

/// Sets one of the Settings, replacing its value. Call it before the detection that should use it. Not thread-safe.
ARBORIST_EXPORT void SetFaultTreeProperty(const std::string& key, const std::string& value);

#endif
