#ifndef ARBORIST_UTILITIES_ZIP_ENTRY_H
#define ARBORIST_UTILITIES_ZIP_ENTRY_H

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

/// What the list of an archive tells of one entry. Only unpacking shows whether it is true.
struct ZipEntry {
    std::string name;
    std::uint64_t packedLength = 0;
    std::uint64_t length = 0;
    std::uint32_t checksum = 0;
    enum class Packing { STORED, DEFLATED, OTHER } packing = Packing::OTHER;
    bool isEncrypted = false;

    bool IsFolder() const { return name.ends_with('/'); }
};

/// Reads what the list tells of the current entry of `archive`, a handle of the archive library. Lengths that need
/// more than 32 bits, or are written as if they did, come from the field that the format has for them. Nothing when
/// the list is broken there, when such a field is missing, or when the name has more than 127 characters.
std::optional<ZipEntry> ReadZipEntry(void* archive);

/// Unpacks the current entry, of which the list tells `entry`, into `file`. False when the entry can't be read or
/// written, when it is encrypted or packed in a way other than stored or deflated, and when its length or its checksum
/// is not the one that is told; no more than that length is ever written.
bool UnpackZipEntry(void* archive, const ZipEntry& entry, std::FILE* file);

#endif
