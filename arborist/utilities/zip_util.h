#ifndef ARBORIST_UTILITIES_ZIP_UTIL_H
#define ARBORIST_UTILITIES_ZIP_UTIL_H

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>

/// Reads and writes zip archives. Stateless; no function throws. Use a handle in one thread at a time.
///
/// The library itself writes no archive: CreateZipFile, AddFileInZip and CloseZipFile are kept for the tests.
namespace ZipUtil {

/// An archive that is being written; null if there is none.
using Handle = void*;

/// Opens the source of an entry for binary reading; null on failure. The library closes the file with std::fclose.
using FileOpener = std::function<std::FILE*(const std::string& source)>;

/// Extracts every entry of `archive` to the path `target` + its name. End `target` in a separator; otherwise its last
/// element becomes the beginning of the names.
///
/// Only an entry whose name ends in "/" creates a directory; a file in a missing directory can't be written. Stops with
/// false at the first entry that fails; what was extracted stays. An entry fails if it can't be opened, read or
/// written; if it is encrypted or neither stored nor deflated; if its length or checksum differs from what the archive
/// says; if that length is 4 GiB or more; if its name has more than 127 characters; and, with a line at LEVEL_ERROR, if
/// its name leads out of the target. A backslash in a name separates folders on Windows; elsewhere the entry fails. An
/// entry that fails leaves an existing file in place. False also for a file that is no archive or is truncated; true
/// for an archive without entries. Adds to `work`, if it is not null, the bytes of each entry that it began to unpack, and
/// 16,384 for the entry itself.
bool UnZipFile(const std::string& archive, const std::string& target, std::uint64_t* work = nullptr);

/// Creates an archive at `path`, replacing an existing file. The caller ends it with CloseZipFile.
Handle CreateZipFile(const std::string& path);

/// Adds one file, compressed. Its name in the archive is `entryName`, or the last element of `source` if that is empty;
/// with `mode` 1 the name of the folder of `source` and "/" precede it ("/" alone if there is no folder).
///
/// `opener` opens the source; the default opener refuses the device's vendor partition ("/data/vendor/") and everything
/// that is no plain file. If the source can't be opened, logs a line at LEVEL_ERROR and returns false; an error in
/// copying or in the archive is not reported.
bool AddFileInZip(Handle archive, const std::string& source, int mode, const std::string& entryName = "",
    const FileOpener& opener = nullptr);

/// Writes the end of the archive and closes it. Ignores null.
void CloseZipFile(Handle archive);

} // namespace ZipUtil

#endif
