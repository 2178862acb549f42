#ifndef ARBORIST_UTILITIES_DIRECTORY_WALK_H
#define ARBORIST_UTILITIES_DIRECTORY_WALK_H

#include <functional>
#include <string>

namespace DirectoryWalk {

/// Receives the path of an entry, with "/" between its parts; returns false to end the walk.
using Visit = std::function<bool(const std::string& entry)>;

/// Visits everything below `path`, each folder before what is in it, in the order of the system; follows no links. Folders
/// that may not be read or are gone pass for empty ones, as does a `path` that is no folder. False if another error kept
/// entries of a folder out; the walk then goes on with the others. Keeps a descriptor open for each level of folders, so
/// that a chain of more folders than the process may open files is such an error. Passes a stop point at each entry.
bool Run(const std::string& path, const Visit& visit);

} // namespace DirectoryWalk

#endif
