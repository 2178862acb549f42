#include "diagnosis/text/json_text.h"

#include <memory>

#include <json/reader.h>

namespace diagnosis {

namespace {

std::unique_ptr<Json::CharReader> StrictReader()
{
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    return std::unique_ptr<Json::CharReader>(builder.newCharReader());
}

// Reasons quote what they are about, however long it is.
std::string Cut(const std::string& reason)
{
    static constexpr std::size_t LONGEST = 200;
    return reason.size() <= LONGEST ? reason : reason.substr(0, LONGEST) + "...";
}

// The reader tells each error on two or three lines ("* Line 1, Column 2\n  reason\nSee ..."); the first is enough.
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

} // namespace diagnosis
