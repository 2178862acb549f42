#include "diagnosis/cases/case_json.h"

#include <algorithm>
#include <cstdio>

#include "diagnosis/text/json_text.h"
#include "diagnosis/text/near_match.h"

namespace diagnosis::cases {

namespace {

constexpr char EVENTS[] = "events";

// Keys that each case has for itself: no default may set them.
bool IsForOneCase(const std::string& key)
{
    return key == "cases" || key == "name" || key == "expect";
}

} // namespace

CaseProblems::CaseProblems(std::string file, const std::string& text) : mFile(std::move(file)), mText(text)
{
    for (auto end = text.find('\n'); end != std::string::npos; end = text.find('\n', end + 1)) {
        mLineStarts.push_back(static_cast<std::ptrdiff_t>(end) + 1);
    }
}

void CaseProblems::Add(const Json::Value& value, const std::string& message)
{
    if (mFailures.size() >= MOST || !mKnown.emplace(value.getOffsetStart(), message).second) {
        return;
    }
    const int line = LineOf(value);
    const auto column = value.getOffsetStart() - mLineStarts[static_cast<std::size_t>(line) - 1] + 1;
    mFailures.push_back(
        {FailureCode::BAD_CASE, mFile + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + message});
}

void CaseProblems::AddUnparsed(const std::string& problem)
{
    int line = 0;
    int column = 0;
    int end = 0;
    const bool hasPlace = std::sscanf(problem.c_str(), "line %d, column %d: %n", &line, &column, &end) == 2 && end > 0;
    const std::string place = hasPlace ? ":" + std::to_string(line) + ":" + std::to_string(column) : "";
    mFailures.push_back({FailureCode::BAD_JSON, mFile + place + ": " + problem.substr(static_cast<std::size_t>(end))});
}

int CaseProblems::LineOf(const Json::Value& value) const
{
    const auto behind = std::upper_bound(mLineStarts.begin(), mLineStarts.end(), value.getOffsetStart());
    return static_cast<int>(behind - mLineStarts.begin());
}

bool CaseObject::Text(const char* key, std::string& target)
{
    const Json::Value* const value = Find(key, &Json::Value::isString, "a text");
    return value != nullptr && ReadText(*value, mPrefix + key, target, mProblems);
}

void CaseObject::Texts(const char* key, std::vector<std::string>& target)
{
    const Json::Value* const list = FindList(key);
    for (Json::ArrayIndex i = 0; list != nullptr && i < list->size(); ++i) {
        std::string text;
        if (ReadText((*list)[i], mPrefix + key, text, mProblems)) {
            target.push_back(text);
        }
    }
}

void CaseObject::Bool(const char* key, bool& target)
{
    const Json::Value* const value = Find(key, &Json::Value::isBool, "true or false");
    target = value == nullptr ? target : value->asBool();
}

void CaseObject::Missing(const char* key)
{
    // A missing key is probably misspelt, which is reported on its own.
    mProblems.Add(mObject, "\"" + mPrefix + key + "\" is missing");
}

void CaseObject::Wrong(const std::string& key, const Json::Value& value, const char* wanted)
{
    mProblems.Add(value, "\"" + mPrefix + key + "\" must be " + wanted + ", not " + JsonKind(value));
}

void CaseObject::RefuseUnknownKeys()
{
    for (const std::string& name : mObject.getMemberNames()) {
        if (std::find(mKnown.begin(), mKnown.end(), name) == mKnown.end()) {
            mProblems.Add(mObject[name], "unknown key \"" + mPrefix + name + "\"" + DidYouMean(name, mKnown));
        }
    }
}

bool ReadText(const Json::Value& value, const std::string& what, std::string& target, CaseProblems& problems)
{
    if (!value.isString()) {
        problems.Add(value, "\"" + what + "\" must be a text, not " + JsonKind(value));
        return false;
    }
    std::string text = value.asString();
    if (text.find('\0') != std::string::npos) {
        problems.Add(value, "\"" + what + "\" holds a NUL character");
        return false;
    }
    target = std::move(text);
    return true;
}

Json::Value WithDefaults(const Json::Value& own, const Json::Value& defaults)
{
    Json::Value joined = own;
    for (const std::string& key : defaults.getMemberNames()) {
        const Json::Value& given = defaults[key];
        if (IsForOneCase(key)) {
            continue;
        }
        if (!own.isMember(key)) {
            joined[key] = given;
        } else if (given.isObject() && own[key].isObject()) {
            for (const std::string& member : given.getMemberNames()) {
                joined[key][member] = own[key].isMember(member) ? own[key][member] : given[member];
            }
        } else if (key == EVENTS && given.isArray() && own[key].isArray()) {
            joined[key] = given;
            for (const Json::Value& event : own[key]) {
                joined[key].append(event);
            }
        }
    }
    return joined;
}

} // namespace diagnosis::cases
