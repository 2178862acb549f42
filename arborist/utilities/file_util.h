#ifndef ARBORIST_UTILITIES_FILE_UTIL_H
#define ARBORIST_UTILITIES_FILE_UTIL_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// All access to the file system. Free of state, callable from any thread; two threads on one path are not guarded.
///
/// Nothing raises: where the operating system refuses, the function answers false or an empty value, and those that
/// say so log a line with the path at LEVEL_ERROR. Paths are narrow strings; those handed out use "/".
namespace FileUtil {

/// True for a file or directory at `path`, links followed. A missing path is false without a log line; one that
/// can't be told is false with one.
bool FileExists(const std::string& path);
/// True for an existing path that is no directory. Logs nothing.
bool FileExistsA(const std::string& path);
/// A missing path is false without a log line; one that can't be told is false with one.
bool IsDirectory(const std::string& path);
/// True for a plain file, links followed: what can be opened and read without waiting for anybody. Logs nothing.
bool IsPlainFile(const std::string& path);
/// Size in bytes; 0 when the path doesn't exist or has no size.
std::uint64_t GetFileSize(const std::string& path);

/// What follows the last "/"; the whole text when there is none.
std::string ExtractFileName(const std::string& path);
/// Replaces every "\" by "/".
void FormatPath2UnixStyle(std::string& path);
/// The canonical absolute form of an existing path. False, and `realPath` as it was, for an empty path, for one that
/// doesn't exist and for one of 4096 characters or more.
bool PathToRealPath(const std::string& path, std::string& realPath);

/// Makes a directory with all its parents; true at once when anything exists at `path`, a file too. Logs failures.
bool ForceCreateDirectory(const std::string& path);
/// The same: the mode stays without effect, what the process' mask leaves counts.
bool ForceCreateDirectory(const std::string& path, std::uint16_t mode);
/// Removes `path` with all that it holds, not following links. True when nothing is there afterwards, or was before.
/// The flag has no effect. Logs failures.
bool ForceRemoveDirectory(const std::string& path, bool flag);
/// Removes one file. True when nothing is there afterwards, or was before. Logs failures.
bool RemoveFile(const std::string& path);
/// Removes every directory in the tree below `parent` whose name begins with `prefix`.
void RemoveFolderBeginWith(const std::string& parent, const std::string& prefix);
/// std::filesystem::copy, with its options. Logs failures.
bool CopyFileToFolder(
    const std::string& source, const std::string& target, std::filesystem::copy_options options);
/// Appends all entries below `path`, files and directories, recursively, every "\" in them turned into "/". Links to
/// directories are listed and not entered; unreadable directories are passed over. Nothing for a path that is no
/// directory.
void GetDirFiles(const std::string& path, std::vector<std::string>& files);

/// Takes all write permission away when `mode` has no write bit (octal 222), else gives it to the owner. No other bit
/// has an effect. False for a missing path and for a mode above octal 7777. Logs failures.
bool ChangeMode(const std::string& path, std::uint16_t mode);
/// ChangeMode on an existing path.
bool ChangeModeFile(const std::string& path, std::uint16_t mode);
/// ChangeMode on everything below `path`, then on `path`; the first failure ends it. Links are left alone.
bool ChangeModeDirectory(const std::string& path, std::uint16_t mode);
/// Its argument.
std::uint16_t Umask(std::uint16_t mode);

/// Reads a file of a known size, up to 33554432 bytes, into `buffer`; one of size 0 empties it. `buffer` is as it was
/// when the file can't be opened or is larger. Never blocks: see LoadStringFromFile.
bool LoadBufferFromFile(const std::string& path, std::vector<std::uint8_t>& buffer);
/// Appends the bytes of a file whose size isn't known. When `buffer` passes 33554432 bytes, or on a read error, it is
/// emptied and the answer is false.
bool LoadBufferFromNodeFile(const std::string& path, std::vector<std::uint8_t>& buffer);
/// Reads a file to its end into `text`. False for more than 33554432 bytes (`text` is then empty when the size could
/// not be told beforehand) and for what can't be read. Never blocks: a pipe, a socket, a directory and most devices
/// are false at once.
bool LoadStringFromFile(const std::string& path, std::string& text);
/// Writes `text` to an existing file, in the place of its content with `truncate`, else behind it. A file that doesn't
/// exist is not made: false. So is a pipe, which could block. The empty text is true and writes nothing.
bool SaveStringToFile(const std::string& path, const std::string& text, bool truncate);

/// Names the calling thread for debuggers; the system may keep the first characters only.
void SetThreadDescription(const std::string& name);

} // namespace FileUtil

#endif
