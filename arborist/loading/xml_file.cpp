#include "arborist/loading/xml_file.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "arborist/frame/log.h"
#include "arborist/frame/rule_set_summary.h"
#include "arborist/utilities/native_path.h"
#include "arborist/utilities/platform.h"

namespace XmlFile {
namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// The characters that matter within a tag.
constexpr std::array<bool, 256> TAG_MARKS = [] {
    std::array<bool, 256> marks{};
    for (const char mark : std::string_view(">\"'")) {
        marks[static_cast<unsigned char>(mark)] = true;
    }
    return marks;
}();

// The position after the tag whose name begins at `at`; npos if the tag doesn't end. Counts quoted texts, as each
// attribute has one, and stops at the end of the first one beyond the limit.
std::size_t SkipTag(std::string_view xml, std::size_t at, std::size_t& attributes)
{
    const char* const end = xml.data() + xml.size();
    for (const char* place = xml.data() + at;; ++place) {
        while (place != end && !TAG_MARKS[static_cast<unsigned char>(*place)]) {
            ++place;
        }
        if (place == end) {
            return std::string_view::npos;
        }
        if (*place == '>') {
            return static_cast<std::size_t>(place - xml.data()) + 1;
        }
        const char* const value = place + 1;
        place = static_cast<const char*>(std::memchr(value, *place, static_cast<std::size_t>(end - value)));
        if (place == nullptr) {
            return std::string_view::npos;
        }
        if (++attributes > MOST_ATTRIBUTES) {
            return static_cast<std::size_t>(place - xml.data());
        }
    }
}

std::size_t SkipPast(std::string_view xml, std::string_view end, std::size_t at)
{
    const std::size_t found = xml.find(end, at);
    return found == std::string_view::npos ? found : found + end.size();
}

// The position after the markup that begins with the "<" at `at`, as the XML library reads it; npos if it doesn't end.
std::size_t SkipMarkup(std::string_view xml, std::size_t at, std::size_t& attributes)
{
    struct Kind {
        std::string_view begin;
        std::string_view end;
    };
    constexpr std::array OTHERS = {
        Kind{"<!--", "-->"}, Kind{"<![CDATA[", "]]>"}, Kind{"<!", ">"}, Kind{"<?", "?>"}};
    const char next = at + 1 < xml.size() ? xml[at + 1] : '>';
    if (next == '!' || next == '?') {
        for (const Kind& kind : OTHERS) {
            if (xml.compare(at, kind.begin.size(), kind.begin) == 0) {
                return SkipPast(xml, kind.end, at + kind.begin.size());
            }
        }
    }
    return SkipTag(xml, at + 1, attributes);
}

// The content of a file; nothing if it can't be read.
std::optional<std::string> ReadAll(std::FILE* file)
{
    const bool isAtEnd = std::fseek(file, 0, SEEK_END) == 0;
    const long length = isAtEnd ? std::ftell(file) : -1;
    if (length < 0 || std::fseek(file, 0, SEEK_SET) != 0) {
        return std::nullopt;
    }
    std::string text(static_cast<std::size_t>(length), '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file));
    return std::ferror(file) == 0 ? std::optional(std::move(text)) : std::nullopt;
}

} // namespace

Outcome Load(tinyxml2::XMLDocument& document, const std::string& path)
{
    document.Clear();
    std::error_code noStatus;
    const bool isFile = std::filesystem::is_regular_file(NativePath(path), noStatus);
    const std::unique_ptr<std::FILE, FileCloser> file(isFile ? Platform::OpenForReading(path) : nullptr);
    if (file == nullptr) {
        return {tinyxml2::XML_ERROR_FILE_READ_ERROR, isFile ? "can't be opened" : "not a file", 0};
    }
    const std::optional<std::string> text = ReadAll(file.get());
    if (!text) {
        return {tinyxml2::XML_ERROR_FILE_READ_ERROR, "can't be read", 0};
    }
    if (const int line = LineOfTooManyAttributes(*text)) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: an element of %s has more than %zu attributes",
            "XmlFile::Load", path.c_str(), MOST_ATTRIBUTES);
        return {tinyxml2::XML_ERROR_PARSING_ATTRIBUTE,
            "an element has more than " + std::to_string(MOST_ATTRIBUTES) + " attributes", line};
    }
    const tinyxml2::XMLError error = document.Parse(text->data(), text->size());
    return error == tinyxml2::XML_SUCCESS ? Outcome()
                                          : Outcome{error, document.ErrorStr(), document.ErrorLineNum()};
}

} // namespace XmlFile

int LineOfTooManyAttributes(std::string_view xml)
{
    // The attributes of shorter texts can't take long, however they are distributed.
    constexpr std::size_t SHORT_TEXT = 16 * 1024;
    std::size_t at = xml.size() <= SHORT_TEXT ? std::string_view::npos : xml.find('<');
    while (at != std::string_view::npos) {
        std::size_t attributes = 0;
        at = XmlFile::SkipMarkup(xml, at, attributes);
        if (attributes > XmlFile::MOST_ATTRIBUTES) {
            return 1 + static_cast<int>(std::count(xml.begin(), xml.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
        }
        at = at == std::string_view::npos ? at : xml.find('<', at);
    }
    return 0;
}
