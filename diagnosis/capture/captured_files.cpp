#include "diagnosis/capture/captured_files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

// The library reads node files of up to 32 MiB.
constexpr std::uint64_t LONGEST_NODE_FILE = 0x2000000;
constexpr int MOST_FOLDERS = 60;

bool LeadsUp(const fs::path& link)
{
    std::error_code error;
    const std::string target = fs::canonical(link, error).string() + "/";
    const std::string here = fs::canonical(link.parent_path(), error).string() + "/";
    return here.compare(0, target.size(), target) == 0;
}

bool IsOneOf(const std::vector<std::string>& folders, const fs::path& folder)
{
    return std::any_of(folders.begin(), folders.end(), [&](const std::string& one) {
        std::error_code ignored;
        return fs::equivalent(folder, one, ignored);
    });
}

// Listed before anything is taken: the capture may grow below the folder itself. What it has grown so far is left out.
std::vector<fs::path> PathsBelow(const fs::path& folder, const std::vector<std::string>& own, std::uint64_t most)
{
    std::vector<fs::path> paths;
    std::error_code error;
    const auto options = fs::directory_options::skip_permission_denied | fs::directory_options::follow_directory_symlink;
    for (fs::recursive_directory_iterator entry(folder, options, error);
         !error && entry != fs::recursive_directory_iterator() && paths.size() <= most; entry.increment(error)) {
        std::error_code ignored;
        const bool isLeftOut = (entry->is_symlink(ignored) && LeadsUp(entry->path()))
            || (entry->is_directory(ignored) && IsOneOf(own, entry->path()));
        if (isLeftOut || entry.depth() >= MOST_FOLDERS) {
            entry.disable_recursion_pending();
        }
        if (!isLeftOut && (entry->is_directory(ignored) || entry->is_regular_file(ignored))) {
            paths.push_back(entry->path());
        }
    }
    return paths;
}

} // namespace

std::string CapturedFiles::Path(const std::string& name) const
{
    const fs::path path = (fs::path(mFolder) / name).lexically_normal();
    std::error_code ignored;
    fs::create_directories(path.parent_path(), ignored);
    return path.string();
}

std::optional<Failure> CapturedFiles::AddFile(const std::string& source, const std::string& name)
{
    return Take(source, name, std::numeric_limits<std::uint64_t>::max());
}

std::optional<Failure> CapturedFiles::AddNodeFile(const std::string& source, const std::string& name)
{
    return Take(source, name, LONGEST_NODE_FILE + 1);
}

std::optional<Failure> CapturedFiles::AddFolder(const std::string& source, const std::string& name)
{
    std::error_code error;
    if (!fs::is_directory(source, error)) {
        return AddFile(source, name);
    }
    fs::create_directories(Path(name), error);
    const auto paths = PathsBelow(source, mOwn, mLimits.entries);
    for (const fs::path& path : paths) {
        const std::string below = name + "/" + path.lexically_relative(source).string();
        if (fs::is_directory(path, error)) {
            fs::create_directories(Path(below), error);
        } else if (auto failure = Take(path.string(), below, std::numeric_limits<std::uint64_t>::max())) {
            return failure;
        }
    }
    return paths.size() > mLimits.entries
        ? std::optional(Failure{"too_large", source + ": more than " + std::to_string(mLimits.entries) + " files",
              ExitStatus::INTERNAL})
        : std::nullopt;
}

std::optional<Failure> CapturedFiles::Count(const std::string& name)
{
    std::error_code error;
    const auto size = fs::file_size(fs::path(mFolder) / name, error);
    mBytes += error ? 0 : size;
    if (++mFiles > mLimits.entries || mBytes > mLimits.bytes) {
        return Failure{"too_large", "more than " + std::to_string(mLimits.entries) + " files or "
            + std::to_string(mLimits.bytes) + " bytes to capture", ExitStatus::INTERNAL};
    }
    return std::nullopt;
}

std::optional<Failure> CapturedFiles::Take(const std::string& source, const std::string& name, std::uint64_t longest)
{
    std::error_code error;
    if (!fs::exists(source, error)) {
        return std::nullopt;
    }
    const std::string target = Path(name);
    // Opening anything else can block or have effects.
    std::ifstream from;
    if (fs::is_regular_file(source, error)) {
        from.open(source, std::ios::binary);
    }
    if (!from.is_open()) {
        mWarnings.push_back({"not_captured", source + ": can't be read, and is left out"});
        return std::nullopt;
    }
    std::ofstream to(target, std::ios::binary | std::ios::trunc);
    std::array<char, 65536> buffer{};
    // Files of the system tell no length, or a wrong one: read until they end.
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
        return Failure{"not_packed", source + ": can't be captured: " + std::strerror(errno)};
    }
    return Count(name);
}

} // namespace diagnosis
