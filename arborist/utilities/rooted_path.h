#ifndef ARBORIST_UTILITIES_ROOTED_PATH_H
#define ARBORIST_UTILITIES_ROOTED_PATH_H

#include <string>

/// Resolves paths of a captured device, whose root directory is a folder of this machine.
namespace RootedPath {

/// Resolves `path` as a process with the root directory `root` would: ".." and symbolic links, absolute ones included,
/// never lead out of `root`.
///
/// Returns `root` followed by a path without links. Elements that don't exist are appended unchanged. Returns the empty
/// text for a chain of more than 40 links or a path of 4096 characters, the limits of the kernel. Assumes that nobody
/// changes the folder meanwhile.
std::string Resolve(const std::string& root, const std::string& path);

/// The path on this machine of `path`, which a rule file names, for a device whose root directory is `root`: an
/// absolute path is resolved below `root`, a relative one below the working directory, which it doesn't leave. With an
/// empty `root`, for this machine, returns `path` itself.
std::string OnDevice(const std::string& root, const std::string& path);

} // namespace RootedPath

#endif
