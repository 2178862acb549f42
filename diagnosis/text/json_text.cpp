#include "diagnosis/text/json_text.h"

#include <algorithm>
#include <memory>

#include <json/reader.h>

namespace diagnosis {

namespace {

constexpr unsigned DEEPEST = 1000;

std::unique_ptr<Json::CharReader> StrictReader()
{
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder.settings_["stackLimit"] = DEEPEST;
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
std::string TooDeep(std::string_view text)
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
            if (++depth == DEEPEST) {
                break;
            }
        } else if (text[at] == ']' || text[at] == '}') {
            --depth;
        }
    }
    return FaultAt(text, at, std::to_string(DEEPEST) + " brackets are open: nested too deep");
}

/// Finds what the reader accepts although it is no JSON: some comments, numbers like 01, control characters, and anything
/// behind a NUL. Expects a text that the reader has accepted, so that all strings and brackets are closed.
class Leniencies {
public:
    explicit Leniencies(std::string_view text) : mText(text) {}

    /// Position and reason of the first; empty if there is none.
    std::string First()
    {
        static constexpr std::string_view NUMBER = "+-.0123456789eE";
        for (; mAt < mText.size(); ++mAt) {
            if (mText[mAt] == '"') {
                if (!SkipText()) {
                    return Fault("a control character stands in a text");
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
    // Skips a string up to its closing quote; false at a control character.
    bool SkipText()
    {
        for (++mAt; mAt < mText.size() && mText[mAt] != '"'; ++mAt) {
            if (static_cast<unsigned char>(mText[mAt]) < 0x20) {
                return false;
            }
            mAt += mText[mAt] == '\\' ? 1 : 0;
        }
        return true;
    }

    std::string Fault(const std::string& reason) const { return FaultAt(mText, mAt, reason); }

    std::string_view mText;
    std::size_t mAt = 0;
};

} // namespace

std::optional<Json::Value> ParseJson(std::string_view text, std::string& problem)
{
    // One reader for each thread: creating one takes longer than parsing a short text.
    thread_local const std::unique_ptr<Json::CharReader> reader = StrictReader();
    Json::Value value;
    Json::String errors;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &value, &errors)) {
            problem = Leniencies(text).First();
            return problem.empty() ? std::optional(value) : std::nullopt;
        }
    } catch (const Json::Exception&) {
        problem = TooDeep(text);
        return std::nullopt;
    }
    problem = FirstError(errors);
    return std::nullopt;
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
