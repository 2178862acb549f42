#ifndef ARBORIST_UTILITIES_DEVICE_PATHS_H
#define ARBORIST_UTILITIES_DEVICE_PATHS_H

#include <string>

#include "arborist/utilities/rooted_path.h"

/// The fixed paths of the library, and the place on this machine of a path on the device. Each call reads the settings.
///
/// The fixed paths are below Settings::PROGRAM_DATA_DIR; if that is empty, below "C:\ProgramData" on Windows and
/// "/var/lib/arborist" elsewhere.
namespace DevicePaths {

/// The event log, written by the monitoring service; the library only reads it.
std::string EventLog();
/// The database of derived tables.
std::string DerivedDatabase();
/// The database of repair dates, in the folder of DerivedDatabase.
std::string RepairDatabase();

/// Where the library looks up a path that a rule file names: RootedPath::OnDevice with Settings::DEVICE_ROOT_DIR.
std::string OnDevice(const std::string& path);
/// The same, kept open for reading.
RootedPath::Target Find(const std::string& path);
/// The real path of Settings::DEVICE_ROOT_DIR, with which the real path of every file of the device begins; empty if
/// the setting is empty or the directory doesn't exist.
std::string RealRootOfDevice();
/// The path on the device of `realPath`: without the leading `realRoot` if it is below that, otherwise unchanged.
std::string PathOnDevice(const std::string& realPath, const std::string& realRoot);
/// The real path of an absolute `path`, empty if nothing is there. With Settings::DEVICE_ROOT_DIR set, its links are
/// resolved within `realRoot` (see RealRootOfDevice) or, for a path that is not below that, within the working
/// directory; empty for a path in neither.
std::string RealPath(const std::string& path, const std::string& realRoot);
/// What is at a path that RealPath returned, kept open for reading: a folder on the way that was replaced by a link since
/// then doesn't lead out either.
RootedPath::Target FindReal(const std::string& realPath, const std::string& realRoot);

} // namespace DevicePaths

#endif
