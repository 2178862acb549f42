#ifndef ARBORIST_UTILITIES_ZIP_UTIL_H
#define ARBORIST_UTILITIES_ZIP_UTIL_H

#include <cstdio>
#include <functional>
#include <string>

/// Zip archives, read and written. Free of state; nothing raises. A handle belongs to one thread at a time.
namespace ZipUtil {

/// An archive that is being written; null when there is none.
using Handle = void*;

/// Opens the source of an entry for binary reading, or gives null. The file is closed with std::fclose.
using FileOpener = std::function<std::FILE*(const std::string& source)>;

/// Extracts every entry of `archive` to the path that is `target` and the entry's name, joined as they are: `target`
/// ends in a separator, or its last element becomes the beginning of the names.
///
/// Only an entry whose name ends in "/" makes a directory; a file in a directory that isn't there can't be written.
/// The first entry that fails ends it with false, and what was extracted stays. An entry fails when it can't be
/// opened, read or written, when it is encrypted or packed in a way other than stored or deflated, when its length or
/// checksum is not what the archive tells, when that length is 4 GiB or more, when its name has more than 127
/// characters, and, with a line at LEVEL_ERROR, when its name leads out of the target. A backslash in a name separates
/// folders on Windows; elsewhere the entry fails. An entry that fails leaves the file that stood in its place. False
/// also for what is no archive, or an archive cut off at its end; an empty one is true.
bool UnZipFile(const std::string& archive, const std::string& target);

/// Makes an archive at `path`, replacing what is there. The caller ends it with CloseZipFile.
Handle CreateZipFile(const std::string& path);

/// Adds one file, compressed. Its name in the archive is `entryName`, or the last element of `source` when that is
/// empty; with `mode` 1 the name of the folder that holds `source` and "/" go in front ("/" alone when it has none).
///
/// `opener` opens the source; without one the default opener does, which refuses the device's vendor partition
/// ("/data/vendor/") and what is no plain file. A source that isn't opened is logged at LEVEL_ERROR and false; an
/// error in copying or in the archive is not reported.
bool AddFileInZip(Handle archive, const std::string& source, int mode, const std::string& entryName = "",
    const FileOpener& opener = nullptr);

/// Writes what an archive needs at its end, and closes it. Null is ignored.
void CloseZipFile(Handle archive);

} // namespace ZipUtil

#endif
