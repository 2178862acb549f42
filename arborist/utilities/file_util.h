#ifndef ARBORIST_UTILITIES_FILE_UTIL_H
#define ARBORIST_UTILITIES_FILE_UTIL_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// All access to the file system. Stateless and callable from any thread; nothing guards two threads that use one path.
///
/// No function throws: if the operating system refuses, it returns false or an empty value; a function that says "logs
/// failures" also logs a line with the path at LEVEL_ERROR. Paths are narrow strings; returned ones use "/".
///
/// Nothing in the library calls FileExistsA, RemoveFolderBeginWith, ChangeMode and its kin, Umask, the LoadBuffer
/// functions, SaveStringToFile or SetThreadDescription: they complete the set, and only their tests call them.
namespace FileUtil {

/// True if a file or directory exists at `path`; follows links. A missing path is false without a log line; if the
/// system can't answer, it is false with a line.
bool FileExists(const std::string& path);
/// True if `path` exists and is no directory. Logs nothing.
bool FileExistsA(const std::string& path);
/// A missing path is false without a log line; if the system can't answer, it is false with a line.
bool IsDirectory(const std::string& path);
/// True for a plain file, which can be opened and read without waiting; follows links. Logs nothing.
bool IsPlainFile(const std::string& path);
/// Size in bytes; 0 if the path doesn't exist or has no size.
std::uint64_t GetFileSize(const std::string& path);

/// The text behind the last "/"; the whole text if there is none.
std::string ExtractFileName(const std::string& path);
/// Replaces every "\" by "/".
void FormatPath2UnixStyle(std::string& path);
/// Stores the canonical absolute form of an existing path in `realPath`. False, with `realPath` unchanged, for an empty
/// path, a path that doesn't exist and a path of 4096 characters or more.
bool PathToRealPath(const std::string& path, std::string& realPath);

/// Creates a directory and its parents. True without doing anything if `path` exists, even as a file. Logs failures.
bool ForceCreateDirectory(const std::string& path);
/// The same: `mode` has no effect; the process's own mask decides.
bool ForceCreateDirectory(const std::string& path, std::uint16_t mode);
/// Removes `path` and everything below it without following links. True if nothing exists at `path` afterwards, even if
/// nothing did before. `flag` has no effect. Logs failures.
bool ForceRemoveDirectory(const std::string& path, bool flag);
/// Removes one file. True if nothing exists at `path` afterwards, even if nothing did before. Logs failures.
bool RemoveFile(const std::string& path);
/// Removes every directory in the tree below `parent` whose name begins with `prefix`.
void RemoveFolderBeginWith(const std::string& parent, const std::string& prefix);
/// std::filesystem::copy, with its options. Logs failures.
bool CopyFileToFolder(
    const std::string& source, const std::string& target, std::filesystem::copy_options options);
/// Copies the plain file that is open at `content` into a folder, under the last element of `source`, and replaces a file
/// there. Logs failures like CopyFileToFolder.
bool CopyContentToFolder(const std::string& content, const std::string& source, const std::string& target);
/// Appends the paths of all files and directories below `path`, recursively, with "/" in place of every "\". Lists
/// links to directories but doesn't enter them; skips unreadable directories. Appends nothing if `path` is no
/// directory. False if an error kept entries out; see DirectoryWalk::Run.
bool GetDirFiles(const std::string& path, std::vector<std::string>& files);

/// Removes all write permission if `mode` has no write bit (octal 222), otherwise gives it to the owner. No other bit
/// has an effect. False for a missing path and for a mode above octal 7777. Logs failures.
bool ChangeMode(const std::string& path, std::uint16_t mode);
/// ChangeMode on an existing path.
bool ChangeModeFile(const std::string& path, std::uint16_t mode);
/// ChangeMode on everything below `path`, then on `path`; stops at the first failure. Skips links.
bool ChangeModeDirectory(const std::string& path, std::uint16_t mode);
/// Returns its argument.
std::uint16_t Umask(std::uint16_t mode);

/// Reads a file of a known size, up to 33554432 bytes, into `buffer`; a file of size 0 empties it. `buffer` is
/// unchanged if the file can't be opened or is larger. Never blocks: see LoadStringFromFile.
bool LoadBufferFromFile(const std::string& path, std::vector<std::uint8_t>& buffer);
/// Appends the text of a file whose size isn't known; see LoadStringFromFile. False, with `buffer` emptied, on a read
/// error or if `buffer` grows beyond 33554432 bytes.
bool LoadBufferFromNodeFile(const std::string& path, std::vector<std::uint8_t>& buffer);
/// Reads a file to its end into `text`, on Windows with its line ends turned into "\n". False if it can't be read or
/// has more than 33554432 bytes (`text` is then empty if the size was not known beforehand). Never blocks: a pipe, a
/// socket, a directory or most devices return false at once.
bool LoadStringFromFile(const std::string& path, std::string& text);
/// Writes `text` to an existing file: replaces the content with `truncate`, otherwise appends to it. False for a file
/// that doesn't exist, which is not created, and for a pipe, which could block. With an empty text returns true and
/// writes nothing. Line ends on Windows are those of Windows.
bool SaveStringToFile(const std::string& path, const std::string& text, bool truncate);

/// Sets the name of the calling thread for debuggers; the system may keep only its first characters.
void SetThreadDescription(const std::string& name);

} // namespace FileUtil

#endif
