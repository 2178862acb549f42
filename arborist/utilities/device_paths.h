#ifndef ARBORIST_UTILITIES_DEVICE_PATHS_H
#define ARBORIST_UTILITIES_DEVICE_PATHS_H

#include <string>

/// The fixed paths of the library, and where an absolute path of the device is found. Settings are read at each call.
///
/// The root is Settings::PROGRAM_DATA_DIR; when that is empty, "C:\ProgramData" on Windows and "/var/lib/arborist"
/// elsewhere.
namespace DevicePaths {

/// The event log of the monitoring service, which the library only reads.
std::string EventLog();
/// The database of derived tables.
std::string DerivedDatabase();
/// The database of repair dates, in the folder of DerivedDatabase.
std::string RepairDatabase();

/// Where the library looks up a path that a rule file names. With Settings::DEVICE_ROOT_DIR set, an absolute path is
/// resolved below that root, which neither ".." nor a symbolic link leaves (RootedPath::Resolve); otherwise, and for a
/// relative path, the path itself.
std::string OnDevice(const std::string& path);
/// What the real path of a file of the device begins with before its path on the device: Settings::DEVICE_ROOT_DIR
/// without links; empty when that is not set or not there.
std::string RealRootOfDevice();
/// `realPath` as the device has it: without `realRoot` in front where it lies below that, else as it is.
std::string PathOnDevice(const std::string& realPath, const std::string& realRoot);
/// The real path of `path`; for a path below `realRoot` (see RealRootOfDevice) its links are resolved within that root.
/// Empty if nothing is there.
std::string RealPath(const std::string& path, const std::string& realRoot);

} // namespace DevicePaths

#endif
