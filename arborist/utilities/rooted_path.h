#ifndef ARBORIST_UTILITIES_ROOTED_PATH_H
#define ARBORIST_UTILITIES_ROOTED_PATH_H

#include <string>

/// Paths of a captured device, whose root directory is some folder of this machine.
namespace RootedPath {

/// Resolves `path` as a process would whose root directory is `root`: ".." and symbolic links, absolute ones included,
/// never lead out of `root`.
///
/// Returns `root` followed by a path without links. Elements that don't exist are appended as they are. A chain of more
/// than 40 links and a path of 4096 characters, the limits of the kernel, give the empty text. Assumes that nobody
/// changes the folder meanwhile.
std::string Resolve(const std::string& root, const std::string& path);

} // namespace RootedPath

#endif
