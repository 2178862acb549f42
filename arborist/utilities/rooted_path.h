#ifndef ARBORIST_UTILITIES_ROOTED_PATH_H
#define ARBORIST_UTILITIES_ROOTED_PATH_H

#include <string>

/// Resolves paths of a captured device, whose root directory is a folder of this machine.
namespace RootedPath {

/// Resolves `path` as a process with the root directory `root` would: ".." and symbolic links, absolute ones included,
/// never lead out of `root`. The kernel does it in one call where it can (openat2); elsewhere, and for a path that leads
/// nowhere, as ResolveStepByStep.
///
/// Returns `root` followed by a path without links. Elements that don't exist are appended unchanged, and ".." behind
/// one goes back by name: a captured device lacks folders that nobody asked for. Returns the empty text for a chain of
/// more than 40 links or a path of 4096 characters, the limits of the kernel. The answer holds as long as nobody changes
/// the folder; see Target for files that are opened.
std::string Resolve(const std::string& root, const std::string& path);

/// Resolve without the kernel's help: reads one link after the other.
std::string ResolveStepByStep(const std::string& root, const std::string& path);

/// The path on this machine of `path`, which a rule file names, for a device whose root directory is `root`: an
/// absolute path is resolved below `root`, a relative one below the working directory, which it doesn't leave. With an
/// empty `root`, for this machine, returns `path` itself. On Windows a drive is left out, and a path with another colon
/// gives the empty text: neither leads out.
std::string OnDevice(const std::string& root, const std::string& path);

/// What OnDevice resolves, found once and kept open: where the kernel resolves paths, opening Path can't lead out of
/// `root`, even if somebody replaces a folder by a link meanwhile.
class Target {
public:
    Target(const std::string& root, const std::string& path);
    ~Target();
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

    /// A path that opens the target as long as this object exists; empty if nothing was found.
    const std::string& Path() const { return mPath; }

private:
    std::string mPath;
    int mDescriptor = -1;
};

} // namespace RootedPath

#endif
