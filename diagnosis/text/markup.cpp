#include "diagnosis/text/markup.h"

#include <algorithm>

#include "diagnosis/text/printable.h"

namespace diagnosis {

namespace {

constexpr char ELLIPSIS[] = "\xE2\x80\xA6";

// True for a UTF-8 character that XML does not allow and that must be escaped.
bool IsNoCharacterOfXml(std::string_view character)
{
    return character == "\xEF\xBF\xBE" || character == "\xEF\xBF\xBF";
}

std::string MarkupOf(std::string_view character)
{
    switch (character[0]) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return IsNoCharacterOfXml(character) ? "\xEF\xBF\xBD" : std::string(character);
    }
}

std::vector<std::string_view> Characters(std::string_view printable)
{
    std::vector<std::string_view> characters;
    while (!printable.empty()) {
        const std::size_t length = std::max<std::size_t>(1, Utf8Length(printable));
        characters.push_back(printable.substr(0, length));
        printable.remove_prefix(length);
    }
    return characters;
}

// The end of the line that starts at `start`: after the last word that fits, or inside a word that is too long.
std::size_t LineEnd(const std::vector<std::string_view>& characters, std::size_t start, std::size_t width)
{
    if (characters.size() - start <= width) {
        return characters.size();
    }
    for (std::size_t end = start + width; end > start; --end) {
        if (characters[end] == " ") {
            return end;
        }
    }
    return start + width;
}

} // namespace

std::string Markup(std::string_view text)
{
    std::string markup;
    const std::string printable = Printable(text);
    for (const std::string_view character : Characters(printable)) {
        markup += MarkupOf(character);
    }
    return markup;
}

std::vector<std::string> Wrapped(std::string_view text, std::size_t width, std::size_t mostLines)
{
    std::vector<std::string> lines;
    const std::string printable = Printable(text);
    const std::vector<std::string_view> characters = Characters(printable);
    std::size_t start = 0;
    while (start < characters.size()) {
        if (lines.size() == mostLines) {
            lines.back() += ELLIPSIS;
            break;
        }
        const std::size_t end = LineEnd(characters, start, width);
        lines.emplace_back();
        for (std::size_t i = start; i < end; ++i) {
            lines.back() += characters[i];
        }
        start = end < characters.size() && characters[end] == " " ? end + 1 : end;
    }
    return lines;
}

std::string Shortened(std::string_view text, std::size_t width)
{
    std::string printable = Printable(text);
    const std::vector<std::string_view> characters = Characters(printable);
    if (characters.size() <= width) {
        return printable;
    }
    std::string line;
    for (std::size_t i = 0; i + 1 < width; ++i) {
        line += characters[i];
    }
    return line + ELLIPSIS;
}

} // namespace diagnosis
