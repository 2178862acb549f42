#include "arborist/utilities/zip_entry.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <minizip/unzip.h>
#include <zlib.h>

#include "arborist/frame/stopping.h"

namespace {

constexpr std::size_t NAME_LENGTH = 128; // with the terminator
constexpr std::size_t BLOCK_LENGTH = 1024;
constexpr std::uint64_t TOLD_IN_FIELD = 0xFFFFFFFF;
constexpr std::uint64_t ZIP64_FIELD = 1;
constexpr unsigned long ENCRYPTED = 1; // a bit of the flags

// Removes a little-endian number of `bytes` bytes from the front of `text`, which must be that long, and returns it.
std::uint64_t TakeNumber(std::string_view& text, std::size_t bytes)
{
    std::uint64_t number = 0;
    for (std::size_t byte = 0; byte < bytes; ++byte) {
        number |= static_cast<std::uint64_t>(static_cast<unsigned char>(text[byte])) << (8 * byte);
    }
    text.remove_prefix(bytes);
    return number;
}

// The content of the zip64 field among the extra fields of an entry; empty if there is none.
std::string_view Zip64Field(std::string_view extra)
{
    constexpr std::size_t HEAD_LENGTH = 4;
    while (extra.size() >= HEAD_LENGTH) {
        const std::uint64_t kind = TakeNumber(extra, 2);
        const std::uint64_t length = TakeNumber(extra, 2);
        if (length > extra.size()) {
            return {};
        }
        if (kind == ZIP64_FIELD) {
            return extra.substr(0, length);
        }
        extra.remove_prefix(length);
    }
    return {};
}

// If the length is the mark that refers to the zip64 field, replaces it by the next number of the field.
bool ResolveLength(std::uint64_t& length, std::string_view& field)
{
    if (length != TOLD_IN_FIELD) {
        return true;
    }
    if (field.size() < sizeof(length)) {
        return false;
    }
    length = TakeNumber(field, sizeof(length));
    return true;
}

// If a long has 64 bits, the archive library doesn't read the zip64 field and returns the mark as a number.
bool ResolveLengths(void* archive, const unz_file_info64& info, ZipEntry& entry)
{
    if (entry.length != TOLD_IN_FIELD && entry.packedLength != TOLD_IN_FIELD) {
        return true;
    }
    std::string extra(info.size_file_extra, '\0');
    unz_file_info64 again{};
    if (unzGetCurrentFileInfo64(archive, &again, nullptr, 0, extra.data(), info.size_file_extra, nullptr, 0) != UNZ_OK) {
        return false;
    }
    std::string_view field = Zip64Field(extra);
    return ResolveLength(entry.length, field) && ResolveLength(entry.packedLength, field);
}

ZipEntry::Packing PackingOf(const unz_file_info64& info)
{
    switch (info.compression_method) {
    case 0: return ZipEntry::Packing::STORED;
    case Z_DEFLATED: return ZipEntry::Packing::DEFLATED;
    default: return ZipEntry::Packing::OTHER;
    }
}

// True if the open entry was read to its end. The end of a stored entry is known by its length alone.
bool IsAtEnd(void* archive, const ZipEntry& entry)
{
    char more = 0;
    return entry.packing == ZipEntry::Packing::STORED || unzReadCurrentFile(archive, &more, sizeof(more)) == 0;
}

// Copies the open entry.
bool CopyContent(void* archive, const ZipEntry& entry, std::FILE* file)
{
    std::array<char, BLOCK_LENGTH> block;
    uLong checksum = 0;
    for (std::uint64_t left = entry.length; left > 0;) {
        StopPoint::Pass();
        const auto wanted = static_cast<unsigned int>(std::min<std::uint64_t>(left, block.size()));
        const int got = unzReadCurrentFile(archive, block.data(), wanted);
        if (got <= 0) {
            return false; // an early end, or an error in the archive
        }
        const auto length = static_cast<std::size_t>(got);
        checksum = crc32(checksum, reinterpret_cast<const Bytef*>(block.data()), static_cast<uInt>(length));
        if (std::fwrite(block.data(), 1, length, file) != length) {
            return false;
        }
        left -= length;
    }
    return checksum == entry.checksum && IsAtEnd(archive, entry);
}

} // namespace

std::optional<ZipEntry> ReadZipEntry(void* archive)
{
    std::array<char, NAME_LENGTH> name{};
    unz_file_info64 info{};
    if (unzGetCurrentFileInfo64(archive, &info, name.data(), name.size(), nullptr, 0, nullptr, 0) != UNZ_OK ||
        info.size_filename >= name.size()) {
        return std::nullopt;
    }
    ZipEntry entry{.name = name.data(),
        .packedLength = info.compressed_size,
        .length = info.uncompressed_size,
        .checksum = static_cast<std::uint32_t>(info.crc),
        .packing = PackingOf(info),
        .isEncrypted = (info.flag & ENCRYPTED) != 0};
    return ResolveLengths(archive, info, entry) ? std::optional(entry) : std::nullopt;
}

bool UnpackZipEntry(void* archive, const ZipEntry& entry, std::FILE* file)
{
    // For these the archive library would return the packed bytes, or those of the next entry.
    if (entry.isEncrypted || entry.packing == ZipEntry::Packing::OTHER ||
        (entry.packing == ZipEntry::Packing::STORED && entry.packedLength != entry.length) ||
        unzOpenCurrentFile(archive) != UNZ_OK) {
        return false;
    }
    const bool copied = CopyContent(archive, entry, file);
    unzCloseCurrentFile(archive);
    return copied;
}
