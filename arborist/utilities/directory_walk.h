#ifndef ARBORIST_UTILITIES_DIRECTORY_WALK_H
#define ARBORIST_UTILITIES_DIRECTORY_WALK_H

#include <functional>
#include <string>

namespace DirectoryWalk {

/// Receives the path of an entry, with "/" between its parts; returns false to end the walk.
using Visit = std::function<bool(const std::string& entry)>;

/// Visits everything below `path`, each folder before what is in it, in the order of the system; follows no links. Folders
/// that may not be read pass for empty ones; any other error of the file system ends the walk in silence, as does a
/// `path` that is no folder. Passes a stop point at each entry.
void Run(const std::string& path, const Visit& visit);

} // namespace DirectoryWalk

#endif
