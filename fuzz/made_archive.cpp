#include "fuzz/made_archive.h"

#include <vector>

#include <zlib.h>

#include "fuzz/choices.h"

namespace {

constexpr std::array<const char*, 12> NAMES = {"a", "b/", "b/c",         "../out", "/absolute", "b\\c",
                                               "",  ".",  "a/../../out", "a/a",    "C:\\x",     "b/./c"};
constexpr std::array<std::uint32_t, 4> SIZES = {0xFFFFFFFF, 0, 1, 0x7FFFFFFF};

struct Entry {
    std::string name;
    std::string packed;
    std::string field; // extra field
    std::uint16_t flags = 0;
    std::uint16_t method = 0;
    std::uint32_t checksum = 0;
    std::uint32_t packedSize = 0;
    std::uint32_t size = 0;
    std::uint32_t attributes = 0;
};

std::string Little(std::uint64_t value, std::size_t bytes)
{
    std::string text;
    for (std::size_t byte = 0; byte < bytes; ++byte) {
        text += static_cast<char>(value >> (8 * byte) & 0xFFU);
    }
    return text;
}

// A raw deflate stream.
std::string Deflated(const std::string& content)
{
    z_stream stream{};
    deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    std::string packed(deflateBound(&stream, content.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
    stream.avail_in = static_cast<uInt>(content.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

// The field of an entry whose lengths need, or are said to need, 64 bits.
std::string Zip64Field(const Entry& entry, Choices& choices)
{
    const std::string lengths = Little(entry.size, 8) + Little(entry.packedSize, 8) + Little(0, 8);
    const std::string used = lengths.substr(0, 8 * choices.Below(4));
    return Little(1, 2) + Little(choices.Below(4) == 0 ? choices.Below(30) : used.size(), 2) + used;
}

Entry MakeEntry(Choices& choices)
{
    Entry entry;
    entry.name = choices.Below(8) == 0 ? choices.Bytes(255) : choices.Of(NAMES);
    const std::string content = choices.Below(4) == 0 ? std::string(choices.Below(256) * 300, 'z') : choices.Bytes(60);
    entry.checksum = static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size())));
    entry.method = choices.Below(2) == 0 ? 0 : Z_DEFLATED;
    entry.packed = entry.method == 0 ? content : Deflated(content);
    entry.packedSize = static_cast<std::uint32_t>(entry.packed.size());
    entry.size = static_cast<std::uint32_t>(content.size());
    switch (choices.Below(10)) {
    case 1:
        entry.method = static_cast<std::uint16_t>(choices.Below(256));
        break;
    case 2:
        entry.flags = static_cast<std::uint16_t>(choices.Below(256));
        break;
    case 3:
        ++entry.checksum;
        break;
    case 4:
        entry.size = SIZES[choices.Below(SIZES.size())];
        break;
    case 5:
        entry.packedSize = SIZES[choices.Below(SIZES.size())];
        break;
    case 6:
        entry.field = Zip64Field(entry, choices);
        entry.size = entry.packedSize = 0xFFFFFFFF;
        break;
    case 7:
        entry.field = choices.Bytes(40);
        break;
    case 8:
        entry.packed += choices.Bytes(20);
        break;
    case 9:
        entry.attributes = std::uint32_t{0120777} << 16U; // a symbolic link
        break;
    default:
        break;
    }
    return entry;
}

std::string CommonHead(const Entry& entry)
{
    return Little(20, 2) + Little(entry.flags, 2) + Little(entry.method, 2) + Little(0, 4) + Little(entry.checksum, 4) +
           Little(entry.packedSize, 4) + Little(entry.size, 4) + Little(entry.name.size(), 2) +
           Little(entry.field.size(), 2);
}

std::string MakeArchive(Choices& choices)
{
    constexpr std::size_t MOST_ENTRIES = 8;
    std::string bytes;
    std::string directory;
    std::size_t count = 0;
    for (; count < MOST_ENTRIES && choices.AreLeft(); ++count) {
        const Entry entry = MakeEntry(choices);
        const std::size_t place = choices.Below(20) == 19 ? bytes.size() + 1 : bytes.size();
        bytes += "PK\3\4" + CommonHead(entry) + entry.name + entry.field + entry.packed;
        directory += "PK\1\2" + Little(0x0314, 2) + CommonHead(entry) + Little(0, 2) + Little(0, 4) +
                     Little(entry.attributes, 4) + Little(place, 4) + entry.name + entry.field;
    }
    const std::size_t begin = bytes.size();
    return bytes + directory + "PK\5\6" + Little(0, 4) + Little(count, 2) + Little(count, 2) +
           Little(directory.size(), 4) + Little(begin, 4) + Little(0, 2);
}

} // namespace

std::string ArchiveOf(const std::uint8_t* data, std::size_t size)
{
    if (size >= 2 && data[0] == 'P' && data[1] == 'K') {
        return {reinterpret_cast<const char*>(data), size};
    }
    Choices choices(data, size);
    return MakeArchive(choices);
}
