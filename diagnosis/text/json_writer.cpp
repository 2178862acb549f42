#include "diagnosis/text/json_writer.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "diagnosis/text/printable.h"

namespace diagnosis {

namespace {

void AppendCharacter(std::string& line, std::string_view character)
{
    switch (character[0]) {
    case '"':
        line += "\\\"";
        return;
    case '\\':
        line += "\\\\";
        return;
    case '\n':
        line += "\\n";
        return;
    case '\r':
        line += "\\r";
        return;
    case '\t':
        line += "\\t";
        return;
    default:
        break;
    }
    if (static_cast<unsigned char>(character[0]) < 0x20 || character[0] == 0x7F) {
        char escape[7];
        std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned int>(character[0]));
        line += escape;
        return;
    }
    line += character;
}

// A character of ASCII that stands for itself, as nearly all do.
bool IsPlain(char character)
{
    return character >= 0x20 && character < 0x7F && character != '"' && character != '\\';
}

void AppendQuoted(std::string& line, std::string_view text)
{
    line += '"';
    for (;;) {
        const auto plain = static_cast<std::size_t>(
            std::find_if_not(text.begin(), text.end(), IsPlain) - text.begin());
        line += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty()) {
            break;
        }
        const std::size_t length = Utf8Length(text);
        if (length == 0) {
            line += "\xEF\xBF\xBD";
        } else {
            AppendCharacter(line, text.substr(0, length));
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    line += '"';
}

} // namespace

void JsonWriter::Separate()
{
    if (mAfterKey) {
        mAfterKey = false;
        return;
    }
    if (!mHasMember.empty()) {
        if (mHasMember.back()) {
            mLine += ", ";
        }
        mHasMember.back() = true;
    }
}

JsonWriter& JsonWriter::BeginObject()
{
    Separate();
    mLine += '{';
    mHasMember.push_back(false);
    return *this;
}

JsonWriter& JsonWriter::EndObject()
{
    mLine += '}';
    mHasMember.pop_back();
    return *this;
}

JsonWriter& JsonWriter::BeginArray()
{
    Separate();
    mLine += '[';
    mHasMember.push_back(false);
    return *this;
}

JsonWriter& JsonWriter::EndArray()
{
    mLine += ']';
    mHasMember.pop_back();
    return *this;
}

JsonWriter& JsonWriter::Key(std::string_view key)
{
    Separate();
    AppendQuoted(mLine, key);
    mLine += ": ";
    mAfterKey = true;
    return *this;
}

JsonWriter& JsonWriter::Text(std::string_view text)
{
    Separate();
    AppendQuoted(mLine, text);
    return *this;
}

JsonWriter& JsonWriter::Number(std::int64_t number)
{
    return Raw(std::to_string(number));
}

JsonWriter& JsonWriter::Seconds(std::string_view key, double seconds)
{
    static constexpr std::int64_t MICROSECONDS = 1'000'000;
    const std::int64_t count = std::llround(std::max(seconds, 0.0) * static_cast<double>(MICROSECONDS));
    const std::string decimals = std::to_string(MICROSECONDS + count % MICROSECONDS).substr(1);
    return Key(key).Raw(std::to_string(count / MICROSECONDS) + "." + decimals);
}

JsonWriter& JsonWriter::Bool(bool value)
{
    return Raw(value ? "true" : "false");
}

JsonWriter& JsonWriter::Null()
{
    return Raw("null");
}

JsonWriter& JsonWriter::Raw(std::string_view json)
{
    Separate();
    mLine += json;
    return *this;
}

JsonWriter& JsonWriter::Texts(const std::vector<std::string>& texts)
{
    BeginArray();
    for (const std::string& text : texts) {
        Text(text);
    }
    return EndArray();
}

} // namespace diagnosis
