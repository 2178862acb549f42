#ifndef ARBORIST_TESTS_SUPPORT_ZIP_FILE_H
#define ARBORIST_TESTS_SUPPORT_ZIP_FILE_H

#include <string>
#include <utility>
#include <vector>

/// Name and content of the entries of an archive, in order. A folder is a name that ends in "/".
using ZipEntries = std::vector<std::pair<std::string, std::string>>;

/// Writes an archive with any names, even bad ones; returns `path`.
std::string WriteZip(const std::string& path, const ZipEntries& entries);

/// The same with a wrong checksum of the last entry, whose name and content must not contain headers of entries.
std::string WriteDamagedZip(const std::string& path, const ZipEntries& entries);

/// Reads a complete archive with the archive library instead of our code.
ZipEntries ReadZip(const std::string& path);

#endif
