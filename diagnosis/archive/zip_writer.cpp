#include "diagnosis/archive/zip_writer.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <vector>

#include <minizip/zip.h>
#include <sys/stat.h>

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

constexpr std::uintmax_t NEEDS_ZIP64 = 0xF0000000;
// "Made by" Unix, so that other tools restore the permissions.
constexpr unsigned long MADE_BY_UNIX = 3UL << 8U;

bool OpenEntry(zipFile archive, const std::string& name, mode_t mode, bool isLarge)
{
    zip_fileinfo info{};
    // The earliest time of the format, so that archives don't differ by the clock.
    info.tmz_date.tm_year = 1980;
    info.tmz_date.tm_mday = 1;
    info.external_fa = static_cast<unsigned long>(mode) << 16U;
    return zipOpenNewFileInZip4_64(archive, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
               Z_DEFAULT_COMPRESSION, 0, -MAX_WBITS, DEF_MEM_LEVEL, Z_DEFAULT_STRATEGY, nullptr, 0, MADE_BY_UNIX, 0,
               isLarge ? 1 : 0) == ZIP_OK;
}

bool AddFile(zipFile archive, const fs::path& path, const std::string& name)
{
    std::error_code error;
    std::ifstream file(path, std::ios::binary);
    if (!file || !OpenEntry(archive, name, S_IFREG | 0644, fs::file_size(path, error) > NEEDS_ZIP64)) {
        return false;
    }
    std::array<char, 65536> buffer{};
    bool isWritten = true;
    while (isWritten && file) {
        file.read(buffer.data(), buffer.size());
        const auto length = static_cast<unsigned>(file.gcount());
        isWritten = zipWriteInFileInZip(archive, buffer.data(), length) == ZIP_OK;
    }
    return zipCloseFileInZip(archive) == ZIP_OK && isWritten && file.eof();
}

bool AddFolder(zipFile archive, const std::string& name)
{
    return OpenEntry(archive, name + "/", S_IFDIR | 0755, false) && zipCloseFileInZip(archive) == ZIP_OK;
}

std::vector<fs::path> SortedPaths(const fs::path& folder)
{
    std::vector<fs::path> paths;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_symlink() && (entry.is_directory() || entry.is_regular_file())) {
            paths.push_back(entry.path());
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

} // namespace

std::optional<Failure> PackZip(const std::string& folder, const std::string& target, const std::string& shown)
{
    const zipFile archive = zipOpen64(target.c_str(), APPEND_STATUS_CREATE);
    if (archive == nullptr) {
        return Failure{FailureCode::NOT_PACKED, shown + ": can't be written"};
    }
    bool isWhole = true;
    for (const fs::path& path : SortedPaths(folder)) {
        const std::string name = path.lexically_relative(folder).generic_string();
        isWhole = isWhole && (fs::is_directory(path) ? AddFolder(archive, name) : AddFile(archive, path, name));
    }
    const bool isClosed = zipClose(archive, nullptr) == ZIP_OK;
    return isWhole && isClosed ? std::nullopt : std::optional(Failure{FailureCode::NOT_PACKED, shown + ": can't be written"});
}

} // namespace diagnosis
