#include "diagnosis/rule_source/source_place.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace diagnosis::rule_source {

namespace {

constexpr std::string_view BLANKS = " \t\r\n";
constexpr std::size_t NONE = std::string_view::npos;
// A caret in a longer line doesn't help, and a file may be a single line with many findings.
constexpr std::size_t LONGEST_LINE = 4096;

bool IsBlank(char character)
{
    return BLANKS.find(character) != NONE;
}

// The offset of the only place in `line` for which `isPlace(offset behind it)` is true; NONE if there are several.
template <typename IsPlace>
std::size_t OnlyPlace(std::string_view line, std::string_view word, IsPlace isPlace)
{
    std::size_t only = NONE;
    if (line.size() > LONGEST_LINE) {
        return NONE;
    }
    for (std::size_t at = line.find(word); at != NONE; at = line.find(word, at + 1)) {
        if (isPlace(at)) {
            if (only != NONE) {
                return NONE;
            }
            only = at;
        }
    }
    return only;
}

// Where an element's start tag begins: the offset of its name.
std::size_t NameOffset(Element element)
{
    const SourceFile& file = *element.File();
    const std::string_view line = file.Line(element.Line());
    const std::string_view name = element.Name();
    const std::size_t at = OnlyPlace(line, name, [&](std::size_t offset) {
        const std::size_t behind = offset + name.size();
        return offset > 0 && line[offset - 1] == '<'
            && (behind == line.size() || IsBlank(line[behind]) || line[behind] == '>' || line[behind] == '/');
    });
    return at == NONE ? NONE : file.LineStart(element.Line()) + at;
}

// The offset of the ">" that ends a start tag; NONE for a tag that ends the element as well.
std::size_t TagEnd(std::string_view text, std::size_t at)
{
    char quote = '\0';
    for (; at < text.size(); ++at) {
        const char character = text[at];
        if (quote != '\0') {
            quote = character == quote ? '\0' : quote;
        } else if (character == '"' || character == '\'') {
            quote = character;
        } else if (character == '>') {
            return text[at - 1] == '/' ? NONE : at;
        }
    }
    return NONE;
}

// The offset of the opening quote of a value, for a name that ends at `at`; NONE if no value follows.
std::size_t QuoteBehind(std::string_view text, std::size_t at)
{
    at = text.find_first_not_of(BLANKS, at);
    if (at == NONE || text[at] != '=') {
        return NONE;
    }
    at = text.find_first_not_of(BLANKS, at + 1);
    return at != NONE && (text[at] == '"' || text[at] == '\'') ? at : NONE;
}

struct AttributePlace {
    std::size_t name = NONE;
    std::size_t quote = NONE;
    std::size_t end = NONE; // of the closing quote
};

AttributePlace FindAttribute(Element element, Attribute attribute)
{
    const SourceFile& file = *element.File();
    const std::string_view text = file.Text();
    const std::string_view name = attribute.Name();
    const std::size_t start = file.LineStart(attribute.Line());
    const std::size_t only = OnlyPlace(file.Line(attribute.Line()), name, [&](std::size_t at) {
        const std::size_t offset = start + at;
        return offset > 0 && IsBlank(text[offset - 1]) && QuoteBehind(text, offset + name.size()) != NONE;
    });
    AttributePlace place;
    if (only != NONE) {
        place.name = start + only;
        place.quote = QuoteBehind(text, place.name + name.size());
        place.end = text.find(text[place.quote], place.quote + 1);
    }
    return place;
}

// The offset behind a comment or a CDATA section that begins at `at`; `at` if none does.
std::size_t BehindPassage(std::string_view text, std::size_t at)
{
    for (const auto& [start, end] : {std::pair<std::string_view, std::string_view>{"<!--", "-->"}, {"<![CDATA[", "]]>"}}) {
        if (text.substr(at).starts_with(start)) {
            return std::min(text.find(end, at), text.size() - end.size()) + end.size();
        }
    }
    return at;
}

// Whether a tag that begins with `start`, such as "</", is at this offset and has this name.
bool IsTag(std::string_view text, std::size_t at, std::string_view start, std::string_view name)
{
    const std::size_t behind = at + start.size() + name.size();
    return text.substr(at).starts_with(start) && text.substr(at + start.size()).starts_with(name)
        && behind < text.size() && (IsBlank(text[behind]) || text[behind] == '>' || text[behind] == '/');
}

} // namespace

std::optional<SourcePlace> PlaceOfEndName(Element element)
{
    const std::string_view text = element.File()->Text();
    const std::string_view name = element.Name();
    const std::size_t start = NameOffset(element);
    int open = 1;
    for (std::size_t at = start == NONE ? NONE : TagEnd(text, start); at != NONE; at = text.find('<', at)) {
        if (const std::size_t behind = BehindPassage(text, at); behind != at) {
            at = behind;
            continue;
        }
        if (IsTag(text, at, "</", name) && --open == 0) {
            return SourcePlace{at + 2, name.size()};
        }
        open += IsTag(text, at, "<", name) && TagEnd(text, at) != NONE ? 1 : 0;
        ++at;
    }
    return std::nullopt;
}

std::optional<SourcePlace> PlaceOfName(Element element)
{
    const std::size_t offset = NameOffset(element);
    return offset == NONE ? std::nullopt : std::optional<SourcePlace>({offset, element.Name().size()});
}

std::optional<SourcePlace> PlaceOfText(Element element)
{
    const std::string_view text = element.File()->Text();
    const std::size_t name = NameOffset(element);
    const std::size_t tagEnd = name == NONE ? NONE : TagEnd(text, name);
    const std::size_t end = tagEnd == NONE ? NONE : text.find('<', tagEnd);
    const std::size_t start = tagEnd + 1;
    // A comment, a CDATA section or a child in it: not one piece.
    const bool isPlain = end != NONE && end > start && text.compare(end, 2, "</") == 0;
    return isPlain ? std::optional<SourcePlace>({start, end - start}) : std::nullopt;
}

std::optional<SourcePlace> PlaceOfValue(Element element, Attribute attribute)
{
    const AttributePlace place = FindAttribute(element, attribute);
    return place.end == NONE ? std::nullopt
                             : std::optional<SourcePlace>({place.quote + 1, place.end - place.quote - 1});
}

std::optional<SourcePlace> PlaceOfAttributeName(Element element, Attribute attribute)
{
    const AttributePlace place = FindAttribute(element, attribute);
    return place.end == NONE ? std::nullopt
                             : std::optional<SourcePlace>({place.name, attribute.Name().size()});
}

std::optional<SourcePlace> PlaceOfAttribute(Element element, Attribute attribute)
{
    const AttributePlace place = FindAttribute(element, attribute);
    if (place.end == NONE) {
        return std::nullopt;
    }
    const std::size_t start = element.File()->Text().find_last_not_of(BLANKS, place.name - 1) + 1;
    return SourcePlace{start, place.end + 1 - start};
}

} // namespace diagnosis::rule_source
