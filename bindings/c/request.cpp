#include "bindings/c/request.h"

#include <algorithm>

#include "diagnosis/bundle/moment.h"
#include "diagnosis/text/json_text.h"
#include "diagnosis/text/near_match.h"

namespace diagnosis::bindings {

Request::Request(std::string_view text)
{
    std::string problem;
    // A request is flat, and the threads of a host may have small stacks.
    static constexpr unsigned DEEPEST = 17;
    const auto value = ParseFlatJson(text, DEEPEST, problem);
    if (!value || !value->isObject()) {
        Fail(value ? std::string("is ") + JsonKind(*value) + ", not an object" : problem);
        mObject = Json::objectValue;
    } else {
        mObject = *value;
    }
}

void Request::Fail(const std::string& message)
{
    if (!mFailure) {
        mFailure = Failure{FailureCode::BAD_REQUEST, "the request: " + message};
    }
}

const Json::Value& Request::Take(const std::string& key)
{
    mKnown.push_back(key);
    return mObject.isMember(key) ? mObject[key] : Json::Value::nullSingleton();
}

std::string Request::Text(const std::string& key)
{
    const Json::Value& value = Take(key);
    if (value.isNull()) {
        return "";
    }
    if (!value.isString()) {
        Fail("\"" + key + "\" is " + JsonKind(value) + ", not a text");
        return "";
    }
    std::string text = value.asString();
    if (text.find('\0') != std::string::npos) {
        Fail("\"" + key + "\" has a NUL character");
        return "";
    }
    return text;
}

std::string Request::Needed(const std::string& key)
{
    std::string text = Text(key);
    if (text.empty()) {
        Fail("\"" + key + "\" is missing or empty");
    }
    return text;
}

bool Request::Flag(const std::string& key)
{
    const Json::Value& value = Take(key);
    if (!value.isNull() && !value.isBool()) {
        Fail("\"" + key + "\" is " + JsonKind(value) + ", not true or false");
    }
    return value.isBool() && value.asBool();
}

std::size_t Request::Count(const std::string& key, std::size_t least, std::size_t most, std::size_t otherwise)
{
    const Json::Value& value = Take(key);
    if (value.isNull()) {
        return otherwise;
    }
    if (!value.isUInt64() || value.asUInt64() < least || value.asUInt64() > most) {
        Fail("\"" + key + "\" is no whole number from " + std::to_string(least) + " to " + std::to_string(most));
        return otherwise;
    }
    return static_cast<std::size_t>(value.asUInt64());
}

std::string Request::Moment(const std::string& key)
{
    const Json::Value& value = Take(key);
    std::string text = value.isInt64() ? std::to_string(value.asInt64()) : Text(key);
    if (!text.empty() && !IsMomentText(text)) {
        Fail("\"" + key + "\" is neither \"YYYY-MM-DD HH:MM:SS\" nor seconds since the epoch: " + text);
    }
    return text;
}

BundlePath Request::NeededBundle()
{
    return MakeBundlePath(Needed("bundle"));
}

BundleOverrides Request::Overrides()
{
    BundleOverrides overrides;
    overrides.now = Moment("now");
    overrides.asOf = Moment("asOf");
    overrides.tz = Text("tz");
    overrides.isLive = Flag("live");
    if (!overrides.tz.empty() && !IsTimeZone(overrides.tz)) {
        Fail("\"tz\" names no time zone that this machine knows: " + overrides.tz);
    }
    return overrides;
}

std::string Request::Rules()
{
    const std::string folder = Text("rules");
    return folder.empty() ? "" : MakeRulesPath(folder);
}

double Request::TimeLimit()
{
    const Json::Value& value = Take("timeLimit");
    if (value.isNull()) {
        return 0;
    }
    static constexpr double MOST = 86400;
    if (!value.isNumeric() || !(value.asDouble() >= 0 && value.asDouble() <= MOST)) {
        Fail("\"timeLimit\" is no number of seconds from 0 to 86400");
        return 0;
    }
    return value.asDouble();
}

std::optional<Failure> Request::End()
{
    for (const std::string& key : mObject.getMemberNames()) {
        if (std::find(mKnown.begin(), mKnown.end(), key) == mKnown.end()) {
            Fail("unknown key \"" + key + "\"" + DidYouMean(key, mKnown));
        }
    }
    return mFailure;
}

} // namespace diagnosis::bindings
