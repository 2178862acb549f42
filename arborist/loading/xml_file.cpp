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

std::size_t FindTagMark(std::string_view xml, std::size_t at)
{
    while (at < xml.size() && !TAG_MARKS[static_cast<unsigned char>(xml[at])]) {
        ++at;
    }
    return at < xml.size() ? at : std::string_view::npos;
}

// The position after the tag that `at` is within; npos if the tag doesn't end. Counts quoted texts, as each attribute has
// one, and stops at the end of the first one beyond the limit.
std::size_t SkipTag(std::string_view xml, std::size_t at, std::size_t& attributes)
{
    while ((at = FindTagMark(xml, at)) != std::string_view::npos) {
        if (xml[at] == '>') {
            return at + 1;
        }
        at = xml.find(xml[at], at + 1);
        if (at == std::string_view::npos || ++attributes > MOST_ATTRIBUTES) {
            return at;
        }
        ++at;
    }
    return at;
}

std::size_t SkipPast(std::string_view xml, std::string_view end, std::size_t at)
{
    const std::size_t found = xml.find(end, at);
    return found == std::string_view::npos ? found : found + end.size();
}

// The position after the comment, declaration or the like that begins at `at` with "<!" or "<?", as the XML library reads
// it; npos if it doesn't end.
std::size_t SkipOther(std::string_view xml, std::size_t at)
{
    struct Kind {
        std::string_view begin;
        std::string_view end;
    };
    constexpr std::array OTHERS = {
        Kind{"<!--", "-->"}, Kind{"<![CDATA[", "]]>"}, Kind{"<!", ">"}, Kind{"<?", "?>"}};
    const auto* const kind = std::find_if(OTHERS.begin(), OTHERS.end(),
        [&](const Kind& other) { return xml.compare(at, other.begin.size(), other.begin) == 0; });
    return SkipPast(xml, kind->end, at + kind->begin.size());
}

// The next place of one character. However often it is asked, with growing positions, it goes through the text once.
class NextOf {
public:
    NextOf(std::string_view text, char letter) : mText(text), mLetter(letter), mPlace(text.find(letter)) {}

    std::size_t From(std::size_t at)
    {
        if (mPlace < at) {
            mPlace = mText.find(mLetter, at);
        }
        return mPlace;
    }

private:
    std::string_view mText;
    char mLetter;
    std::size_t mPlace;
};

// Whether the quote at `at` may begin the value of an attribute.
bool IsAfterEqualsSign(std::string_view xml, std::size_t at)
{
    const std::size_t before = at == 0 ? std::string_view::npos : xml.find_last_not_of(" \t\n\v\f\r", at - 1);
    return before != std::string_view::npos && xml[before] == '=';
}

// The half of too many attributes, and the fewest characters that they take: a name, "=" and two quotes each.
constexpr std::size_t HALF_OF_THEM = MOST_ATTRIBUTES / 2;
constexpr std::size_t STEP = HALF_OF_THEM * 4;

// True if more than half of too many attributes are at `at`, as there would be within a tag.
bool HasHalfOfThem(std::string_view xml, std::size_t at)
{
    for (std::size_t attributes = 0; attributes <= HALF_OF_THEM; ++attributes) {
        at = FindTagMark(xml, at);
        if (at == std::string_view::npos || xml[at] == '>' || !IsAfterEqualsSign(xml, at)) {
            return false;
        }
        at = xml.find(xml[at], at + 1);
        if (at == std::string_view::npos) {
            return false;
        }
        ++at;
    }
    return true;
}

// False if no element can have too many attributes. Looks at one place in each step only: such an element is longer than
// two steps, so that at one of these places half of its attributes lie ahead. What a place is in isn't known, so the next
// quote of either kind is tried both as the begin and as the end of a value.
bool MayHaveTooMany(std::string_view xml)
{
    for (const char quote : {'"', '\''}) {
        NextOf quotes(xml, quote);
        std::size_t tried = std::string_view::npos;
        for (std::size_t at = 0, next = quotes.From(0); next != std::string_view::npos; next = quotes.From(at += STEP)) {
            if (next != tried && (HasHalfOfThem(xml, next) || HasHalfOfThem(xml, next + 1))) {
                return true;
            }
            tried = next;
        }
    }
    return false;
}

// Goes through a text from one mark to the next: to quotes, which attributes have, and to the "!" or "?" of markup that
// may hold quotes which are none. Most tags have no attributes, so that all between two marks is passed over by a search.
class AttributeCount {
public:
    explicit AttributeCount(std::string_view xml)
        : mXml(xml), mMarks{NextOf(xml, '"'), NextOf(xml, '\''), NextOf(xml, '!'), NextOf(xml, '?')}
    {
    }

    // A place in the first element that has more attributes than the limit; npos if there is none.
    std::size_t FindTooMany()
    {
        for (std::size_t mark = NextMark(0); mark != std::string_view::npos; mark = NextMark(mark)) {
            const bool isQuote = mXml[mark] == '"' || mXml[mark] == '\'';
            const bool isOther = !isQuote && mark > 0 && mXml[mark - 1] == '<' && !IsInTag(mark - 1);
            if (isQuote && IsInTag(mark)) {
                std::size_t attributes = 0;
                mark = SkipTag(mXml, mark, attributes);
                if (attributes > MOST_ATTRIBUTES) {
                    return mark;
                }
                mOutside = mark;
            } else if (isQuote) {
                mOutside = ++mark;
            } else {
                mark = isOther ? mOutside = SkipOther(mXml, mark - 1) : mark + 1;
            }
        }
        return std::string_view::npos;
    }

private:
    std::size_t NextMark(std::size_t at)
    {
        std::size_t next = std::string_view::npos;
        for (NextOf& mark : mMarks) {
            next = std::min(next, mark.From(at));
        }
        return next;
    }

    // True if `at` is within a tag, if there is neither a quote nor other markup between it and `mOutside`.
    bool IsInTag(std::size_t at) const
    {
        while (at > mOutside && mXml[at - 1] != '<' && mXml[at - 1] != '>') {
            --at;
        }
        return at > mOutside && mXml[at - 1] == '<';
    }

    std::string_view mXml;
    std::array<NextOf, 4> mMarks;
    // The last place that is known to be in no tag.
    std::size_t mOutside = 0;
};

struct Text {
    std::string_view View() const { return {bytes.get(), length}; }

    std::unique_ptr<char[]> bytes;
    std::size_t length = 0;
};

// The content of a file; nothing if it can't be read.
std::optional<Text> ReadAll(std::FILE* file)
{
    const bool isAtEnd = std::fseek(file, 0, SEEK_END) == 0;
    const long length = isAtEnd ? std::ftell(file) : -1;
    if (length < 0 || std::fseek(file, 0, SEEK_SET) != 0) {
        return std::nullopt;
    }
    const auto size = static_cast<std::size_t>(length);
    Text text{std::make_unique_for_overwrite<char[]>(size)};
    text.length = std::fread(text.bytes.get(), 1, size, file);
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
        return isFile ? Outcome{tinyxml2::XML_ERROR_FILE_NOT_FOUND, "can't be opened", 0}
                      : Outcome{tinyxml2::XML_ERROR_FILE_READ_ERROR, "not a file", 0};
    }
    const std::optional<Text> text = ReadAll(file.get());
    if (!text) {
        return {tinyxml2::XML_ERROR_FILE_READ_ERROR, "can't be read", 0};
    }
    if (const int line = LineOfTooManyAttributes(text->View())) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: an element of %s has more than %zu attributes",
            "XmlFile::Load", path.c_str(), MOST_ATTRIBUTES);
        return {tinyxml2::XML_ERROR_PARSING_ATTRIBUTE,
            "an element has more than " + std::to_string(MOST_ATTRIBUTES) + " attributes", line};
    }
    const tinyxml2::XMLError error = document.Parse(text->bytes.get(), text->length);
    return error == tinyxml2::XML_SUCCESS ? Outcome()
                                          : Outcome{error, document.ErrorStr(), document.ErrorLineNum()};
}

} // namespace XmlFile

int LineOfTooManyAttributes(std::string_view xml)
{
    // The attributes of shorter texts can't take long, however they are distributed.
    constexpr std::size_t SHORT_TEXT = 16 * 1024;
    const std::size_t place = xml.size() <= SHORT_TEXT || !XmlFile::MayHaveTooMany(xml)
        ? std::string_view::npos : XmlFile::AttributeCount(xml).FindTooMany();
    return place == std::string_view::npos
        ? 0 : 1 + static_cast<int>(std::count(xml.begin(), xml.begin() + static_cast<std::ptrdiff_t>(place), '\n'));
}
