#ifndef ARBORIST_DIAGNOSIS_RESULTS_DB_LINE_MEMBERS_H
#define ARBORIST_DIAGNOSIS_RESULTS_DB_LINE_MEMBERS_H

#include <algorithm>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <json/value.h>

#include "diagnosis/text/json_text.h"

namespace diagnosis::results_db {

/// The longest wall time that a line may have, in seconds.
inline constexpr double MOST_SECONDS = 1e9;

/// Takes members of one JSON object and notes the first that is missing or of another type.
class Members {
public:
    Members(const Json::Value& object, std::string where, std::string& problem)
        : mObject(object), mWhere(std::move(where)), mProblem(problem)
    {
        if (!object.isObject()) {
            Note((mWhere.empty() ? "the line" : mWhere) + " must be an object, not " + JsonKind(object));
        }
    }

    std::string Text(const char* key)
    {
        const Json::Value* value = Find(key, &Json::Value::isString, "a text");
        return value == nullptr ? "" : value->asString();
    }

    /// A text that is one of these.
    std::string Word(const char* key, std::initializer_list<std::string_view> words)
    {
        const std::string text = Text(key);
        if (std::find(words.begin(), words.end(), text) == words.end()) {
            Note(Place(key) + " is not known: \"" + text.substr(0, LONGEST_QUOTE) + "\"");
        }
        return text;
    }

    bool Bool(const char* key)
    {
        const Json::Value* value = Find(key, &Json::Value::isBool, "true or false");
        return value != nullptr && value->asBool();
    }

    std::int64_t Count(const char* key)
    {
        const auto isCount = [](const Json::Value& value) { return value.isInt64() && value.asInt64() >= 0; };
        const Json::Value* value = Find(key, isCount, "a whole number from 0");
        return value == nullptr ? 0 : value->asInt64();
    }

    double Seconds(const char* key)
    {
        const auto isDuration = [](const Json::Value& value) {
            return value.isNumeric() && value.asDouble() >= 0 && value.asDouble() <= MOST_SECONDS;
        };
        const Json::Value* value = Find(key, isDuration, "a number from 0 to 1e9");
        return value == nullptr ? 0 : value->asDouble();
    }

    std::vector<std::string> Texts(const char* key)
    {
        std::vector<std::string> texts;
        ForEachValue(key, [&](const Json::Value& value, const std::string& where) {
            if (!value.isString()) {
                Note(where + " must be a text, not " + JsonKind(value));
                return;
            }
            texts.push_back(value.asString());
        });
        return texts;
    }

    /// Calls `take` with the members of each object of a list; stops at the first problem.
    template <typename Take>
    void ForEach(const char* key, Take take)
    {
        ForEachValue(key, [&](const Json::Value& value, const std::string& where) {
            const Members members(value, where, mProblem);
            if (mProblem.empty()) {
                take(members);
            }
        });
    }

    Members Object(const char* key)
    {
        static const Json::Value nothing(Json::objectValue);
        const Json::Value* value = Find(key, &Json::Value::isObject, "an object");
        return Members(value == nullptr ? nothing : *value, Place(key), mProblem);
    }

    bool Has(const char* key) const { return mObject.isObject() && mObject.isMember(key); }

    /// The text of this object in the text that it was read from.
    std::string_view In(std::string_view text) const
    {
        const auto start = static_cast<std::size_t>(mObject.getOffsetStart());
        return text.substr(start, static_cast<std::size_t>(mObject.getOffsetLimit()) - start);
    }

private:
    // Longest piece of a foreign text in a message.
    static constexpr std::size_t LONGEST_QUOTE = 60;

    template <typename Take>
    void ForEachValue(const char* key, Take take)
    {
        const Json::Value* list = Find(key, &Json::Value::isArray, "a list");
        for (Json::ArrayIndex index = 0; list != nullptr && index < list->size() && mProblem.empty(); ++index) {
            take((*list)[index], Place(key) + "[" + std::to_string(index) + "]");
        }
    }

    template <typename Predicate>
    const Json::Value* Find(const char* key, Predicate isWanted, const char* wanted)
    {
        if (!mProblem.empty()) {
            return nullptr;
        }
        const Json::Value* value = mObject.find(key, key + std::char_traits<char>::length(key));
        if (value == nullptr) {
            Note(Place(key) + " is missing");
            return nullptr;
        }
        if (!std::invoke(isWanted, *value)) {
            Note(Place(key) + " must be " + wanted + ", not " + JsonKind(*value));
            return nullptr;
        }
        return value;
    }

    std::string Place(const char* key) const { return mWhere.empty() ? key : mWhere + "." + key; }

    void Note(const std::string& problem)
    {
        if (mProblem.empty()) {
            mProblem = problem;
        }
    }

    const Json::Value& mObject;
    std::string mWhere;
    std::string& mProblem;
};

} // namespace diagnosis::results_db

#endif
