#ifndef ARBORIST_TESTS_SUPPORT_ZIP_FILE_H
#define ARBORIST_TESTS_SUPPORT_ZIP_FILE_H

#include <string>
#include <utility>
#include <vector>

/// Name and content of the entries of an archive, in order. A folder is a name that ends in "/".
using ZipEntries = std::vector<std::pair<std::string, std::string>>;

/// Writes an archive with any names, bad ones too; returns `path`.
std::string WriteZip(const std::string& path, const ZipEntries& entries);

/// The same with a checksum that is wrong for the last entry, whose name and content hold no heads of entries.
std::string WriteDamagedZip(const std::string& path, const ZipEntries& entries);

/// Reads an archive whole, by the archive library and not by ours.
ZipEntries ReadZip(const std::string& path);

#endif
