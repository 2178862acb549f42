#include "arborist/utilities/rooted_path.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "arborist/utilities/native_path.h"

#if defined(__linux__)
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace {

constexpr int MOST_LINKS = 40;
// No system call accepts a longer path. Also bounds the work below.
constexpr std::size_t LONGEST_PATH = 4096;

// Inserts the elements of `path` in front of those that are still to be resolved.
void Prepend(std::deque<std::string>& elements, std::string_view path)
{
    std::vector<std::string> parts;
    while (!path.empty()) {
        const auto end = path.find('/');
        if (const std::string_view part = path.substr(0, end); !part.empty() && part != ".") {
            parts.emplace_back(part);
        }
        path = end == std::string_view::npos ? std::string_view() : path.substr(end + 1);
    }
    elements.insert(elements.begin(), parts.begin(), parts.end());
}

std::string Joined(const std::string& root, const std::vector<std::string>& elements)
{
    std::string path = root;
    for (const std::string& element : elements) {
        path += "/" + element;
    }
    return path;
}

#if defined(_WIN32)

// With "/" alone and without a drive, which a captured device doesn't have: "C:\data" is "/data". Nothing for another
// colon, behind which the system would see a drive or a stream.
std::optional<std::string> WithoutDrive(std::string path)
{
    std::replace(path.begin(), path.end(), '\\', '/');
    if (path.size() > 1 && path[1] == ':') {
        path.replace(0, path.size() > 2 && path[2] == '/' ? 3 : 2, "/");
    }
    return path.find(':') == std::string::npos ? std::optional(std::move(path)) : std::nullopt;
}

#elif defined(__linux__)

class Descriptor {
public:
    explicit Descriptor(int number) : mNumber(number) {}
    ~Descriptor()
    {
        if (IsOpen()) {
            close(mNumber);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Get() const { return mNumber; }
    bool IsOpen() const { return mNumber >= 0; }
    int Release() { return std::exchange(mNumber, -1); }

private:
    int mNumber;
};

// The kernel's `struct open_how` and RESOLVE_IN_ROOT, as its headers may be older than the kernel.
struct OpenHow {
    std::uint64_t flags;
    std::uint64_t mode;
    std::uint64_t resolve;
};
constexpr std::uint64_t IN_ROOT = 0x10;
constexpr long OPENAT2 = 437; // on every architecture

int OpenFolder(const std::string& path)
{
    return open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
}

// Finds `path` with `root` as the root directory. The number is negative, with errno, if nothing is found.
int FindBelow(int root, const std::string& path)
{
    OpenHow how = {O_PATH | O_CLOEXEC, 0, IN_ROOT};
    long found = -1;
    // The kernel gives up where something was renamed meanwhile.
    for (int attempts = 0; attempts < 32 && found < 0 && (attempts == 0 || errno == EAGAIN); ++attempts) {
        found = syscall(OPENAT2, root, path.c_str(), &how, sizeof how);
    }
    return static_cast<int>(found);
}

// True if it was the call that failed, not the search: an old kernel, or a sandbox.
bool IsCallRefused()
{
    return errno == ENOSYS || errno == EPERM || errno == EINVAL || errno == E2BIG;
}

std::string PathOf(int descriptor)
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}

// The path by which the kernel knows an open file; empty if it can't say.
std::string NameOf(int descriptor)
{
    std::error_code error;
    const std::string name = std::filesystem::read_symlink(PathOf(descriptor), error).string();
    struct stat opened = {};
    struct stat named = {};
    const bool isThere = !error && fstat(descriptor, &opened) == 0 && lstat(name.c_str(), &named) == 0;
    return isThere && opened.st_ino == named.st_ino && opened.st_dev == named.st_dev ? name : "";
}

// `root` followed by the path to which the kernel resolves `path`; empty if it finds nothing or doesn't tell.
std::string ResolveByKernel(const std::string& root, const std::string& path)
{
    const Descriptor folder(OpenFolder(root));
    const Descriptor found(folder.IsOpen() ? FindBelow(folder.Get(), path) : -1);
    if (!found.IsOpen()) {
        return "";
    }
    std::string above = NameOf(folder.Get());
    const std::string name = NameOf(found.Get());
    if (above.empty() || name.empty()) {
        return "";
    }
    if (above == "/") {
        above.clear();
    }
    if (name == above) {
        return root + "/";
    }
    const bool isBelow = name.size() > above.size() && name.compare(0, above.size(), above) == 0
        && name[above.size()] == '/';
    return isBelow ? root + name.substr(above.size()) : "";
}

// Like the constructor of Target. Nothing if the kernel has no such call; an open file is in `kept`.
std::optional<std::string> FindByKernel(const std::string& root, const std::string& path, int& kept)
{
    const Descriptor folder(OpenFolder(root));
    if (!folder.IsOpen()) {
        return "";
    }
    int found = FindBelow(folder.Get(), path);
    if (found < 0 && !IsCallRefused()) {
        const std::string resolved = RootedPath::ResolveStepByStep(root, path);
        found = resolved.empty() ? -1 : FindBelow(folder.Get(), resolved.substr(root.size()));
        if (found < 0) {
            return "";
        }
    }
    Descriptor target(found);
    if (!target.IsOpen() || access(PathOf(found).c_str(), F_OK) != 0) {
        return std::nullopt; // also where /proc is missing
    }
    std::string opened = PathOf(found); // may throw, while `target` still closes the file
    kept = target.Release();
    return opened;
}

#endif

#if !defined(__linux__)

std::string ResolveByKernel(const std::string&, const std::string&)
{
    return "";
}

std::optional<std::string> FindByKernel(const std::string&, const std::string&, int&)
{
    return std::nullopt;
}

#endif

std::string BelowRootOrHere(const std::string& root, const std::string& path)
{
    if (path.front() == '/') {
        return RootedPath::Resolve(root, path);
    }
    static constexpr std::string_view HERE = "./";
    const std::string resolved = RootedPath::Resolve(".", path);
    return resolved.size() > HERE.size() ? resolved.substr(HERE.size()) : resolved;
}

} // namespace

std::string RootedPath::Resolve(const std::string& root, const std::string& path)
{
    const std::string resolved = path.size() < LONGEST_PATH ? ResolveByKernel(root, path) : "";
    return resolved.empty() ? ResolveStepByStep(root, path) : resolved;
}

std::string RootedPath::ResolveStepByStep(const std::string& root, const std::string& path)
{
    if (path.size() >= LONGEST_PATH) {
        return "";
    }
    std::deque<std::string> open;
    Prepend(open, path);
    std::vector<std::string> walked;
    for (int links = 0; !open.empty();) {
        const std::string element = open.front();
        open.pop_front();
        if (element == "..") {
            if (!walked.empty()) {
                walked.pop_back();
            }
            continue;
        }
        walked.push_back(element);
        std::error_code error;
        const std::string target = std::filesystem::read_symlink(NativePath(Joined(root, walked)), error).string();
        if (error) {
            continue; // no link, or it doesn't exist
        }
        if (++links > MOST_LINKS) {
            return "";
        }
        walked.pop_back();
        if (!target.empty() && target.front() == '/') {
            walked.clear();
        }
        Prepend(open, target);
    }
    return walked.empty() ? root + "/" : Joined(root, walked);
}

std::string RootedPath::OnDevice(const std::string& root, const std::string& path)
{
    if (root.empty() || path.empty()) {
        return path;
    }
#if defined(_WIN32)
    const std::optional<std::string> plain = WithoutDrive(path);
    return plain ? BelowRootOrHere(root, *plain) : "";
#else
    return BelowRootOrHere(root, path);
#endif
}

RootedPath::Target::Target(const std::string& root, const std::string& path)
{
    if (root.empty() || path.empty()) {
        mPath = path;
        return;
    }
    std::optional<std::string> found = std::string();
    if (path.size() < LONGEST_PATH) {
        found = FindByKernel(path.front() == '/' ? root : ".", path, mDescriptor);
    }
    // Moved: nothing may throw here once the file is open, as the destructor of a half-made object doesn't run.
    mPath = found ? std::move(*found) : OnDevice(root, path);
}

RootedPath::Target::~Target()
{
#if defined(__linux__)
    const Descriptor closing(mDescriptor);
#endif
}
