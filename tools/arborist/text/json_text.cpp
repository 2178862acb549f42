#include "tools/arborist/text/json_text.h"

#include <memory>
#include <regex>

#include <json/reader.h>

namespace command {

namespace {

std::unique_ptr<Json::CharReader> StrictReader()
{
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    return std::unique_ptr<Json::CharReader>(builder.newCharReader());
}

// The reader tells each error on two or three lines ("* Line 1, Column 2\n  reason\nSee ..."); the first is enough.
std::string FirstError(const std::string& errors)
{
    static const std::regex form("^\\* Line (\\d+), Column (\\d+)\\s*\\n\\s*([^\\n]*)");
    std::smatch parts;
    if (!std::regex_search(errors, parts, form)) {
        return errors.substr(0, errors.find('\n'));
    }
    return "line " + parts[1].str() + ", column " + parts[2].str() + ": " + parts[3].str();
}

} // namespace

std::optional<Json::Value> ParseJson(std::string_view text, std::string& problem)
{
    static const std::unique_ptr<Json::CharReader> reader = StrictReader();
    Json::Value value;
    Json::String errors;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &value, &errors)) {
            return value;
        }
    } catch (const Json::Exception& exception) {
        problem = exception.what(); // nested deeper than the reader goes
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

} // namespace command
