#include "diagnosis/capture/captured_files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <utility>

#include "arborist/frame/rule_set_summary.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

// The library reads node files of up to 32 MiB.
constexpr std::uint64_t LONGEST_NODE_FILE = 0x2000000;
constexpr int MOST_FOLDERS = 60;

// True if `real` is the folder `below` or one above it: following a link to it would never end.
bool LeadsUp(const std::string& real, const fs::path& below)
{
    std::error_code error;
    const std::string here = fs::canonical(below, error).generic_string() + "/";
    return here.compare(0, real.size() + 1, real + "/") == 0;
}

// The real path of a link's target; empty if it doesn't exist.
std::string Target(const fs::path& link, const std::string& root)
{
    std::error_code error;
    const std::string inRoot = root.empty() ? link.generic_string()
                                            : PathOnDevice(root, "/" + link.lexically_relative(root).generic_string());
    return fs::canonical(inRoot, error).generic_string();
}

bool IsOneOf(const std::vector<std::string>& folders, const fs::path& folder)
{
    return std::any_of(folders.begin(), folders.end(), [&](const std::string& one) {
        std::error_code ignored;
        return fs::equivalent(folder, one, ignored);
    });
}

// A path below a folder, and its name in the capture.
struct Found {
    fs::path source;
    std::string name;
    bool isFolder;
};

// Lists a folder completely before anything is copied, and leaves out the folders `own`: the capture may be written
// below the folder itself.
class FolderWalk {
public:
    FolderWalk(const std::vector<std::string>& own, const std::string& root, std::uint64_t most)
        : mOwn(own), mRoot(root), mMost(most)
    {
    }

    std::vector<Found> List(const fs::path& folder, const std::string& name)
    {
        Walk(folder, name, 0);
        return std::move(mFound);
    }

    /// Why folders are not captured whole, behind their paths.
    const std::vector<std::string>& LeftOut() const { return mLeftOut; }

private:
    void Walk(const fs::path& folder, const std::string& name, int depth)
    {
        if (depth > MOST_FOLDERS) {
            mLeftOut.push_back(folder.generic_string() + ": lies too deep, and what it holds is left out");
            return;
        }
        std::error_code error;
        for (fs::directory_iterator entry(folder, error);
             !error && entry != fs::directory_iterator() && mFound.size() <= mMost; entry.increment(error)) {
            Look(*entry, folder, name, depth);
        }
        if (error) {
            mLeftOut.push_back(folder.generic_string() + ": can't be read to its end, and the rest is left out");
        }
    }

    void Look(const fs::directory_entry& entry, const fs::path& folder, const std::string& name, int depth)
    {
        std::error_code ignored;
        const bool isLink = entry.is_symlink(ignored);
        const fs::path source = isLink ? fs::path(Target(entry.path(), mRoot)) : entry.path();
        const bool isFolder = fs::is_directory(source, ignored);
        const bool isLeftOut = isFolder && ((isLink && LeadsUp(source.generic_string(), folder)) || IsOneOf(mOwn, source));
        if (isLeftOut || (!isFolder && !fs::is_regular_file(source, ignored))) {
            return;
        }
        const std::string below = name + "/" + entry.path().filename().generic_string();
        mFound.push_back({source, below, isFolder});
        if (isFolder) {
            Walk(source, below, depth + 1);
        }
    }

    const std::vector<std::string>& mOwn;
    const std::string& mRoot;
    std::uint64_t mMost;
    std::vector<Found> mFound;
    std::vector<std::string> mLeftOut;
};

} // namespace

std::string CapturedFiles::Path(const std::string& name) const
{
    const fs::path path = (fs::path(mFolder) / name).lexically_normal();
    std::error_code ignored;
    fs::create_directories(path.parent_path(), ignored);
    return path.generic_string();
}

std::optional<Failure> CapturedFiles::AddFile(const std::string& source, const std::string& name)
{
    return Take(source, name, std::numeric_limits<std::uint64_t>::max());
}

std::optional<Failure> CapturedFiles::AddNodeFile(const std::string& source, const std::string& name)
{
    return Take(source, name, LONGEST_NODE_FILE + 1);
}

std::optional<Failure> CapturedFiles::AddFolder(
    const std::string& source, const std::string& name, const std::string& root)
{
    std::error_code error;
    if (!fs::is_directory(source, error)) {
        return AddFile(source, name);
    }
    fs::create_directories(Path(name), error);
    FolderWalk walk(mOwn, root, mLimits.entries);
    const std::vector<Found> all = walk.List(fs::canonical(source, error), name);
    for (const std::string& folder : walk.LeftOut()) {
        mWarnings.push_back({WarningCode::NOT_CAPTURED, folder});
    }
    for (const Found& found : all) {
        if (found.isFolder) {
            fs::create_directories(Path(found.name), error);
        } else if (auto failure = Take(found.source.generic_string(), found.name, std::numeric_limits<std::uint64_t>::max())) {
            return failure;
        }
    }
    return all.size() > mLimits.entries
        ? std::optional(Failure{FailureCode::TOO_LARGE, source + ": more than " + std::to_string(mLimits.entries) + " files"})
        : std::nullopt;
}

std::optional<Failure> CapturedFiles::Count(const std::string& name)
{
    std::error_code error;
    const auto size = fs::file_size(fs::path(mFolder) / name, error);
    mBytes += error ? 0 : size;
    mNames.push_back(name);
    if (++mFiles > mLimits.entries || mBytes > mLimits.bytes) {
        return Failure{FailureCode::TOO_LARGE, "more than " + std::to_string(mLimits.entries) + " files or "
            + std::to_string(mLimits.bytes) + " bytes to capture"};
    }
    return std::nullopt;
}

std::optional<Failure> CapturedFiles::Replace(const std::string& name, const std::string& content)
{
    const std::string path = Path(name);
    std::error_code error;
    mBytes -= std::min<std::uint64_t>(mBytes, fs::file_size(path, error));
    mBytes += content.size();
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    return file.flush() ? std::nullopt : std::optional(Failure{FailureCode::NOT_PACKED, name + ": can't be written"});
}

void CapturedFiles::WarnOfUnreadable(const std::string& source)
{
    mWarnings.push_back({WarningCode::NOT_CAPTURED, source + ": can't be read, and is left out"});
}

std::optional<Failure> CapturedFiles::Take(const std::string& source, const std::string& name, std::uint64_t longest)
{
    std::error_code error;
    if (!fs::exists(source, error)) {
        return std::nullopt;
    }
    const std::string target = Path(name);
    // Opening anything but a plain file can block or have effects.
    std::ifstream from;
    if (fs::is_regular_file(source, error)) {
        from.open(source, std::ios::binary);
    }
    if (!from.is_open()) {
        WarnOfUnreadable(source);
        return std::nullopt;
    }
    std::ofstream to(target, std::ios::binary | std::ios::trunc);
    std::array<char, 65536> buffer{};
    // Read up to the end, as files of the system report no length or a wrong one.
    const std::uint64_t most = std::min(longest, mLimits.bytes + 1);
    for (std::uint64_t length = 0; to && length < most;) {
        from.read(buffer.data(), static_cast<std::streamsize>(std::min<std::uint64_t>(buffer.size(), most - length)));
        if (from.gcount() == 0) {
            break;
        }
        to.write(buffer.data(), from.gcount());
        length += static_cast<std::uint64_t>(from.gcount());
    }
    if (!to.flush()) {
        return Failure{FailureCode::NOT_PACKED, source + ": can't be captured: " + std::strerror(errno)};
    }
    if (from.bad()) { // a part of it would pass for the whole
        fs::remove(target, error);
        WarnOfUnreadable(source);
        return std::nullopt;
    }
    return Count(name);
}

} // namespace diagnosis
