#include "arborist/utilities/file_util.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include "arborist/frame/log.h"
#include "arborist/utilities/directory_walk.h"
#include "arborist/utilities/native_path.h"
#include "arborist/utilities/platform.h"

namespace fs = std::filesystem;

namespace {

constexpr std::size_t MAX_FILE_LENGTH = 0x2000000;
constexpr std::size_t MAX_PATH_LENGTH = 4095;
constexpr std::uint16_t MAX_FILE_MODE = 0xFFF;
constexpr std::uint16_t WRITE_BITS = 0222;

bool IsFolderNamedWith(const std::string& path, const std::string& prefix)
{
    std::error_code ignored;
    return fs::is_directory(fs::symlink_status(NativePath(path), ignored)) &&
        FileUtil::ExtractFileName(path).rfind(prefix, 0) == 0;
}

// Removes what is at the path, and for a folder all that is in it; a link is removed, not followed. The standard library
// has the same, but ends the process where it lacks memory.
void RemoveAll(const std::string& path, std::error_code& error)
{
    std::vector<std::string> entries = {path};
    if (!fs::is_symlink(NativePath(path), error)) {
        DirectoryWalk::Run(path, [&entries](const std::string& entry) {
            entries.push_back(entry);
            return true;
        });
    }
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
        if (!Platform::Remove(*entry) && errno != ENOENT) {
            error = std::error_code(errno, std::generic_category());
            return;
        }
    }
}

// Appends the whole content of `file`. False on an error or beyond the limit; the end of `content` is then undefined.
template <typename Content>
bool AppendToEnd(Platform::InputFile& file, Content& content)
{
    char block[16 * 1024];
    if (file.Size() > sizeof(block)) {
        content.reserve(content.size() + static_cast<std::size_t>(file.Size()));
    }
    for (std::uint64_t total = 0;;) {
        const std::ptrdiff_t got = file.Read(block, sizeof(block));
        if (got <= 0) {
            return got == 0;
        }
        content.insert(content.end(), block, block + got);
        total += static_cast<std::uint64_t>(got);
        if (content.size() > MAX_FILE_LENGTH) {
            return false;
        }
        // If the size was right, this saves the second call that would only find the end of the file.
        if (total == file.Size()) {
            return true;
        }
    }
}

bool IsPathLengthAllowed(const std::string& path)
{
    return !path.empty() && path.size() <= MAX_PATH_LENGTH;
}

} // namespace

bool FileUtil::FileExists(const std::string& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(NativePath(path), error);
    if (status.type() == fs::file_type::not_found) {
        return false;
    }
    if (error) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: Failed to access file %s.", "FileUtil::FileExists", path.c_str());
        return false;
    }
    return true;
}

bool FileUtil::FileExistsA(const std::string& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(NativePath(path), error);
    return fs::exists(status) && !fs::is_directory(status);
}

bool FileUtil::IsDirectory(const std::string& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(NativePath(path), error);
    if (error && status.type() != fs::file_type::not_found) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: Failed to judge directory %s.", "FileUtil::IsDirectory", path.c_str());
        return false;
    }
    return fs::is_directory(status);
}

bool FileUtil::IsPlainFile(const std::string& path)
{
    std::error_code error;
    return fs::is_regular_file(NativePath(path), error);
}

std::uint64_t FileUtil::GetFileSize(const std::string& path)
{
    std::error_code error;
    const std::uintmax_t size = fs::file_size(NativePath(path), error);
    return error ? 0 : size;
}

std::string FileUtil::ExtractFileName(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

void FileUtil::FormatPath2UnixStyle(std::string& path)
{
    std::replace(path.begin(), path.end(), '\\', '/');
}

bool FileUtil::PathToRealPath(const std::string& path, std::string& realPath)
{
    if (!IsPathLengthAllowed(path)) {
        return false;
    }
    std::error_code error;
    const fs::path canonical = fs::canonical(NativePath(path), error);
    if (error) {
        return false;
    }
    realPath = canonical.generic_string();
    return true;
}

bool FileUtil::ForceCreateDirectory(const std::string& path)
{
    if (FileExists(path)) {
        return true;
    }
    // Strip separators at the end: the empty name behind the last one would count as one more directory.
    const std::size_t end = path.find_last_not_of('/');
    std::error_code error;
    const bool created = fs::create_directories(NativePath(path.substr(0, end + 1)), error);
    if (error) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: Failed to create directory %s.",
            "FileUtil::ForceCreateDirectory", path.c_str());
        return false;
    }
    return created && FileExists(path);
}

bool FileUtil::ForceCreateDirectory(const std::string& path, std::uint16_t)
{
    return ForceCreateDirectory(path);
}

bool FileUtil::ForceRemoveDirectory(const std::string& path, bool)
{
    if (!FileExists(path)) {
        return true;
    }
    std::error_code error;
    RemoveAll(path, error);
    if (error) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: remove dir failed %s", "FileUtil::ForceRemoveDirectory", path.c_str());
        return false;
    }
    return !FileExists(path);
}

bool FileUtil::RemoveFile(const std::string& path)
{
    if (!FileExists(path)) {
        return true;
    }
    std::error_code error;
    fs::remove(NativePath(path), error);
    if (error) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: Failed to remove file %s.", "FileUtil::RemoveFile", path.c_str());
        return false;
    }
    return !FileExists(path);
}

void FileUtil::RemoveFolderBeginWith(const std::string& parent, const std::string& prefix)
{
    // List first, then remove: removing during the walk would delete directories that it still visits.
    std::vector<std::string> folders;
    DirectoryWalk::Run(parent, [&folders, &prefix](const std::string& entry) {
        if (IsFolderNamedWith(entry, prefix)) {
            folders.push_back(entry);
        }
        return true;
    });
    for (const std::string& folder : folders) {
        ForceRemoveDirectory(folder, true);
    }
}

namespace {

void LogFailedCopy(const std::string& source, const std::string& target)
{
    FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: Failed to copy file %s to directory %s.",
        "FileUtil::CopyFileToFolder", source.c_str(), target.c_str());
}

} // namespace

bool FileUtil::CopyFileToFolder(const std::string& source, const std::string& target, fs::copy_options options)
{
    std::error_code error;
    // One file into a folder, the common case, is copied so that nobody inherits its descriptors.
    const bool isPlain = options == fs::copy_options::overwrite_existing && IsPlainFile(source) &&
        fs::is_directory(NativePath(target), error);
    try {
        if (isPlain && Platform::CopyContent(source, target + "/" + ExtractFileName(source))) {
            return true;
        }
        error = isPlain ? std::make_error_code(std::errc::io_error) : std::error_code();
        if (!isPlain) {
            fs::copy(NativePath(source), NativePath(target), options, error);
        }
    } catch (const fs::filesystem_error& failure) {
        error = failure.code(); // a read error inside a folder throws despite the error code
    }
    if (error) {
        LogFailedCopy(source, target);
        return false;
    }
    return true;
}

bool FileUtil::CopyContentToFolder(const std::string& content, const std::string& source, const std::string& target)
{
    if (IsPlainFile(content) && Platform::CopyContent(content, target + "/" + ExtractFileName(source))) {
        return true;
    }
    LogFailedCopy(source, target);
    return false;
}

bool FileUtil::GetDirFiles(const std::string& path, std::vector<std::string>& files)
{
    return DirectoryWalk::Run(path, [&files](const std::string& entry) {
        files.push_back(entry);
        FormatPath2UnixStyle(files.back());
        return true;
    });
}

bool FileUtil::ChangeMode(const std::string& path, std::uint16_t mode)
{
    if (mode > MAX_FILE_MODE || !FileExists(path)) {
        return false;
    }
    std::error_code error;
    if ((mode & WRITE_BITS) == 0) {
        fs::permissions(NativePath(path), fs::perms{WRITE_BITS}, fs::perm_options::remove, error);
    } else {
        fs::permissions(NativePath(path), fs::perms::owner_write, fs::perm_options::add, error);
    }
    if (error) {
        FT::Log::GetInstance().Output(
            FT::LEVEL_ERROR, "FUNc:%s: Failed to change file mode %s.", "FileUtil::ChangeMode", path.c_str());
        return false;
    }
    return true;
}

bool FileUtil::ChangeModeFile(const std::string& path, std::uint16_t mode)
{
    return ChangeMode(path, mode);
}

bool FileUtil::ChangeModeDirectory(const std::string& path, std::uint16_t mode)
{
    if (!FileExists(path)) {
        return false;
    }
    bool changed = true;
    DirectoryWalk::Run(path, [mode, &changed](const std::string& entry) {
        // The target of a link may lie outside of `path`.
        std::error_code ignored;
        changed = fs::is_symlink(NativePath(entry), ignored) || ChangeMode(entry, mode);
        return changed;
    });
    return changed && ChangeMode(path, mode);
}

std::uint16_t FileUtil::Umask(std::uint16_t mode)
{
    return mode;
}

bool FileUtil::LoadBufferFromFile(const std::string& path, std::vector<std::uint8_t>& buffer)
{
    if (!IsPathLengthAllowed(path)) {
        return false;
    }
    Platform::InputFile file(path);
    if (!file.IsOpen() || file.Size() > MAX_FILE_LENGTH) {
        return false;
    }
    buffer.clear();
    return file.Size() == 0 || AppendToEnd(file, buffer);
}

bool FileUtil::LoadBufferFromNodeFile(const std::string& path, std::vector<std::uint8_t>& buffer)
{
    if (!IsPathLengthAllowed(path)) {
        return false;
    }
    Platform::InputFile file(path, Platform::InputFile::Content::TEXT);
    if (!file.IsOpen()) {
        return false;
    }
    if (file.Size() <= MAX_FILE_LENGTH && AppendToEnd(file, buffer)) {
        return true;
    }
    buffer.clear();
    return false;
}

bool FileUtil::LoadStringFromFile(const std::string& path, std::string& text)
{
    if (!IsPathLengthAllowed(path)) {
        return false;
    }
    // Opens the path as given: its canonical form names the same file but costs a system call for each directory on the
    // way.
    Platform::InputFile file(path, Platform::InputFile::Content::TEXT);
    if (!file.IsOpen() || file.Size() > MAX_FILE_LENGTH) {
        return false;
    }
    text.clear();
    if (AppendToEnd(file, text)) {
        return true;
    }
    text.clear();
    return false;
}

bool FileUtil::SaveStringToFile(const std::string& path, const std::string& text, bool truncate)
{
    if (text.empty()) {
        return true;
    }
    std::string realPath;
    std::error_code ignored;
    // Opening a pipe would wait for its reader.
    if (!PathToRealPath(path, realPath) || fs::is_fifo(NativePath(realPath), ignored)) {
        return false;
    }
    std::FILE* const file = Platform::OpenFile(realPath, truncate ? "w" : "a");
    if (file == nullptr) {
        return false;
    }
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    return std::fclose(file) == 0 && isWritten;
}

void FileUtil::SetThreadDescription(const std::string& name)
{
    Platform::NameThread(name);
}
