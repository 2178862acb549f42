#include "diagnosis/text/json_text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <memory>

#include <json/reader.h>

#include "diagnosis/text/printable.h"

namespace diagnosis {

namespace {

constexpr unsigned DEEPEST = 1000;

std::unique_ptr<Json::CharReader> StrictReader(unsigned deepest = DEEPEST)
{
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder.settings_["stackLimit"] = deepest;
    return std::unique_ptr<Json::CharReader>(builder.newCharReader());
}

// Truncates a reason, which may quote a very long text.
std::string Cut(const std::string& reason)
{
    static constexpr std::size_t LONGEST = 200;
    return reason.size() <= LONGEST ? reason : reason.substr(0, LONGEST).append("...");
}

// Takes the first error only; the reader describes each on two or three lines ("* Line 1, Column 2\n  reason\nSee
// ...").
std::string FirstError(const std::string& errors)
{
    static const std::string START = "* Line ";
    const auto placeEnd = errors.find('\n');
    const auto reason = errors.find_first_not_of(" \n", placeEnd);
    if (errors.rfind(START, 0) != 0 || reason == std::string::npos) {
        return Cut(errors.substr(0, placeEnd));
    }
    std::string place = errors.substr(START.size(), placeEnd - START.size());
    if (const auto column = place.find("Column"); column != std::string::npos) {
        place[column] = 'c';
    }
    return "line " + place + ": " + Cut(errors.substr(reason, errors.find('\n', reason) - reason));
}

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

// Removes the digits at the front of `text` and returns their number.
std::size_t TakeDigits(std::string_view& text)
{
    const auto end = std::find_if_not(text.begin(), text.end(), IsDigit);
    const auto count = static_cast<std::size_t>(end - text.begin());
    text.remove_prefix(count);
    return count;
}

bool TakeOneOf(std::string_view& text, std::string_view characters)
{
    const bool isThere = !text.empty() && characters.find(text.front()) != std::string_view::npos;
    text.remove_prefix(isThere ? 1 : 0);
    return isThere;
}

bool IsNumber(std::string_view text)
{
    TakeOneOf(text, "-");
    const bool isZero = !text.empty() && text.front() == '0';
    const std::size_t digits = TakeDigits(text);
    if (digits == 0 || (isZero && digits > 1) || (TakeOneOf(text, ".") && TakeDigits(text) == 0)) {
        return false;
    }
    if (TakeOneOf(text, "eE")) {
        TakeOneOf(text, "+-");
        return TakeDigits(text) > 0 && text.empty();
    }
    return text.empty();
}

std::string FaultAt(std::string_view text, std::size_t at, const std::string& reason)
{
    const std::string_view before = text.substr(0, at);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const auto column = at - (before.rfind('\n') + 1) + 1; // after the last line end, or the start
    return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + reason;
}

// The first bracket in which the reader takes no value. It has accepted the text up to there.
std::string TooDeep(std::string_view text, unsigned deepest)
{
    unsigned depth = 0;
    bool isInText = false;
    std::size_t at = 0;
    for (; at < text.size(); ++at) {
        if (text[at] == '"') {
            isInText = !isInText;
        } else if (isInText) {
            at += text[at] == '\\' ? 1 : 0;
        } else if (text[at] == '[' || text[at] == '{') {
            if (++depth == deepest) {
                break;
            }
        } else if (text[at] == ']' || text[at] == '}') {
            --depth;
        }
    }
    return FaultAt(text, at, std::to_string(deepest) + " brackets are open: nested too deep");
}

bool IsSurrogate(std::uint32_t unit)
{
    return unit >= 0xD800 && unit < 0xE000;
}

/// Finds what the reader accepts although it is no JSON: some comments, numbers like 01, control characters, anything
/// behind a NUL, and, unless strings may be of any bytes, what is no character. Expects a text that the reader has
/// accepted, so that all strings and brackets are closed.
class Leniencies {
public:
    Leniencies(std::string_view text, bool takesAnyBytes) : mText(text), mTakesAnyBytes(takesAnyBytes) {}

    /// Position and reason of the first; empty if there is none.
    std::string First()
    {
        static constexpr std::string_view NUMBER = "+-.0123456789eE";
        for (; mAt < mText.size(); ++mAt) {
            if (mText[mAt] == '"') {
                if (const char* const reason = SkipText()) {
                    return Fault(reason);
                }
            } else if (mText[mAt] == '/') {
                return Fault("a comment is no JSON");
            } else if (mText[mAt] == '\0') {
                return Fault("a NUL character is no JSON");
            } else if (NUMBER.substr(0, 13).find(mText[mAt]) != std::string_view::npos) {
                const std::string_view number =
                    mText.substr(mAt, mText.find_first_not_of(NUMBER, mAt) - mAt);
                if (!IsNumber(number)) {
                    return Fault("\"" + Cut(std::string(number)) + "\" is not a number");
                }
                mAt += number.size() - 1;
            }
        }
        return "";
    }

private:
    // Skips a string up to its closing quote. Returns null, or what is wrong with the character at which it stops.
    const char* SkipText()
    {
        std::size_t length = 0;
        for (++mAt; mAt < mText.size() && mText[mAt] != '"'; mAt += length) {
            const auto byte = static_cast<unsigned char>(mText[mAt]);
            if (byte < 0x20) {
                return "a control character stands in a text";
            }
            length = byte == '\\' ? EscapeLength() : byte < 0x80 || mTakesAnyBytes ? 1 : Utf8Length(mText.substr(mAt));
            if (length == 0) {
                return byte == '\\' ? "a surrogate lacks its other half" : "a byte that is no UTF-8 stands in a text";
            }
        }
        return nullptr;
    }

    // Of the escape, or the pair of surrogates, at this place; 0 for half a pair.
    std::size_t EscapeLength() const
    {
        const std::uint32_t unit = EscapedUnit(mAt);
        if (!IsSurrogate(unit) || mTakesAnyBytes) {
            return 2; // the digits behind a "\u" are plain characters
        }
        const std::uint32_t next = EscapedUnit(mAt + 6);
        return unit < 0xDC00 && IsSurrogate(next) && next >= 0xDC00 ? 12 : 0;
    }

    // The number in the escape "\uNNNN" that begins here; 0 for another character.
    std::uint32_t EscapedUnit(std::size_t at) const
    {
        std::uint32_t unit = 0;
        if (mText.substr(std::min(at, mText.size()), 2) == "\\u") {
            const std::string_view digits = mText.substr(at + 2, 4);
            std::from_chars(digits.data(), digits.data() + digits.size(), unit, 16);
        }
        return unit;
    }

    std::string Fault(const std::string& reason) const { return FaultAt(mText, mAt, reason); }

    std::string_view mText;
    bool mTakesAnyBytes;
    std::size_t mAt = 0;
};

std::optional<Json::Value> ParseWith(Json::CharReader& reader, std::string_view text, bool takesAnyBytes,
    unsigned deepest, std::string& problem)
{
    Json::Value value;
    Json::String errors;
    try {
        if (reader.parse(text.data(), text.data() + text.size(), &value, &errors)) {
            problem = Leniencies(text, takesAnyBytes).First();
            return problem.empty() ? std::optional(value) : std::nullopt;
        }
    } catch (const Json::Exception&) {
        problem = TooDeep(text, deepest);
        return std::nullopt;
    }
    problem = FirstError(errors);
    return std::nullopt;
}

std::optional<Json::Value> Parse(std::string_view text, bool takesAnyBytes, std::string& problem)
{
    // One reader for each thread: creating one takes longer than parsing a short text.
    thread_local const std::unique_ptr<Json::CharReader> reader = StrictReader();
    return ParseWith(*reader, text, takesAnyBytes, DEEPEST, problem);
}

} // namespace

std::optional<Json::Value> ParseJson(std::string_view text, std::string& problem)
{
    return Parse(text, false, problem);
}

std::optional<Json::Value> ParseEngineJson(std::string_view text, std::string& problem)
{
    return Parse(text, true, problem);
}

std::optional<Json::Value> ParseFlatJson(std::string_view text, unsigned deepest, std::string& problem)
{
    return ParseWith(*StrictReader(deepest), text, true, deepest, problem);
}

const char* JsonKind(const Json::Value& value)
{
    switch (value.type()) {
    case Json::nullValue:
        return "null";
    case Json::intValue:
    case Json::uintValue:
    case Json::realValue:
        return "a number";
    case Json::stringValue:
        return "a text";
    case Json::booleanValue:
        return "a truth value";
    case Json::arrayValue:
        return "a list";
    case Json::objectValue:
        return "an object";
    }
    return "nothing";
}

} // namespace diagnosis
