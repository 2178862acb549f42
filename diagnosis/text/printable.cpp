#include "diagnosis/text/printable.h"

#include <cstdint>
#include <cstdio>

namespace diagnosis {

namespace {

void AppendByte(std::string& text, unsigned char byte)
{
    char escape[5];
    std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned int>(byte));
    text += escape;
}

std::size_t SequenceLength(unsigned char first)
{
    if (first < 0x80) {
        return 1;
    }
    if (first >= 0xC2 && first < 0xE0) {
        return 2;
    }
    if (first >= 0xE0 && first < 0xF0) {
        return 3;
    }
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

std::uint32_t CodePoint(std::string_view sequence)
{
    static constexpr unsigned char FIRST_MASKS[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    std::uint32_t point = static_cast<unsigned char>(sequence[0]) & FIRST_MASKS[sequence.size()];
    for (const char byte : sequence.substr(1)) {
        point = point << 6 | (static_cast<unsigned char>(byte) & 0x3FU);
    }
    return point;
}

// C0, DEL and C1, and the marks that change the direction of writing.
bool IsControl(std::uint32_t point)
{
    return point < 0x20 || (point >= 0x7F && point < 0xA0) || (point >= 0x202A && point <= 0x202E)
        || (point >= 0x2066 && point <= 0x2069);
}

} // namespace

std::size_t Utf8Length(std::string_view text)
{
    const std::size_t length = text.empty() ? 0 : SequenceLength(static_cast<unsigned char>(text[0]));
    if (length == 0 || length > text.size()) {
        return 0;
    }
    for (const char byte : text.substr(1, length - 1)) {
        if ((static_cast<unsigned char>(byte) & 0xC0U) != 0x80U) {
            return 0;
        }
    }
    static constexpr std::uint32_t SMALLEST[] = {0, 0, 0x80, 0x800, 0x10000};
    const std::uint32_t point = CodePoint(text.substr(0, length));
    const bool isSurrogate = point >= 0xD800 && point < 0xE000;
    return point < SMALLEST[length] || isSurrogate || point > 0x10FFFF ? 0 : length;
}

std::string Printable(std::string_view text)
{
    std::string line;
    line.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = Utf8Length(text);
        if (length == 0) {
            AppendByte(line, static_cast<unsigned char>(text[0]));
            text.remove_prefix(1);
            continue;
        }
        const std::string_view character = text.substr(0, length);
        if (IsControl(CodePoint(character))) {
            for (const char byte : character) {
                AppendByte(line, static_cast<unsigned char>(byte));
            }
        } else {
            line += character;
        }
        text.remove_prefix(length);
    }
    return line;
}

std::string Shown(std::string_view text)
{
    return text.empty() ? "(empty)" : Printable(text);
}

std::string Joined(const std::vector<std::string>& texts, const char* separator)
{
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : separator) + Shown(text);
    }
    return joined;
}

} // namespace diagnosis
