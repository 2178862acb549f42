#ifndef ARBORIST_UTILITIES_ZIP_ENTRY_H
#define ARBORIST_UTILITIES_ZIP_ENTRY_H

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

/// One entry as the directory of an archive describes it. Only unpacking shows whether the description is true.
struct ZipEntry {
    std::string name;
    std::uint64_t packedLength = 0;
    std::uint64_t length = 0;
    std::uint32_t checksum = 0;
    enum class Packing { STORED, DEFLATED, OTHER } packing = Packing::OTHER;
    bool isEncrypted = false;

    bool IsFolder() const { return name.ends_with('/'); }
};

/// Reads the directory's description of the current entry of `archive`, a handle of the archive library. Lengths of
/// more than 32 bits come from the zip64 field. Returns nothing if the directory is damaged there, if a needed zip64
/// field is missing, or if the name has more than 127 characters.
std::optional<ZipEntry> ReadZipEntry(void* archive);

/// Unpacks the current entry, which the directory describes as `entry`, into `file`. False if the entry can't be read
/// or written, is encrypted or neither stored nor deflated, or if its length or checksum differs from the description.
/// Never writes more than the described length.
bool UnpackZipEntry(void* archive, const ZipEntry& entry, std::FILE* file);

#endif
