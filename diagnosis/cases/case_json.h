#ifndef ARBORIST_DIAGNOSIS_CASES_CASE_JSON_H
#define ARBORIST_DIAGNOSIS_CASES_CASE_JSON_H

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <json/value.h>

#include "diagnosis/problem.h"

namespace diagnosis::cases {

/// What is wrong in one case file, each with its place: "file:line:column: message".
class CaseProblems {
public:
    static constexpr std::size_t MOST = 20;

    /// `text` must outlive the object.
    CaseProblems(std::string file, const std::string& text);

    /// Adds a problem at a value of the text. A value that several cases share is reported once, and at most MOST
    /// problems.
    void Add(const Json::Value& value, const std::string& message);
    /// Adds a problem of the text itself, in the words of ParseJson.
    void AddUnparsed(const std::string& problem);

    int LineOf(const Json::Value& value) const;
    const std::string& File() const { return mFile; }
    /// The text of the file, to which the offsets of its values refer.
    const std::string& Text() const { return mText; }
    bool IsEmpty() const { return mFailures.empty(); }
    const std::vector<Failure>& Failures() const { return mFailures; }

private:
    std::string mFile;
    const std::string& mText;
    /// The offsets at which lines begin.
    std::vector<std::ptrdiff_t> mLineStarts{0};
    std::set<std::pair<std::ptrdiff_t, std::string>> mKnown;
    std::vector<Failure> mFailures;
};

/// Reads the members of one JSON object strictly: reports values of a wrong type and unknown keys.
class CaseObject {
public:
    /// `object` must be an object; both must outlive the reader. `prefix` precedes keys in messages: "device.".
    CaseObject(const Json::Value& object, std::string prefix, CaseProblems& problems)
        : mObject(object), mPrefix(std::move(prefix)), mProblems(problems)
    {
    }

    bool Has(const char* key) const { return mObject.isMember(key); }
    /// The member if it exists and has the wanted type; otherwise null.
    template <typename Predicate>
    const Json::Value* Find(const char* key, Predicate isWanted, const char* wanted)
    {
        mKnown.emplace_back(key);
        const Json::Value* const value = mObject.find(key, key + std::char_traits<char>::length(key));
        if (value == nullptr || std::invoke(isWanted, *value)) {
            return value;
        }
        Wrong(key, *value, wanted);
        return nullptr;
    }
    const Json::Value* FindObject(const char* key) { return Find(key, &Json::Value::isObject, "an object"); }
    const Json::Value* FindList(const char* key) { return Find(key, &Json::Value::isArray, "a list"); }
    /// Copies a text without NUL characters to `target`; false if there is none.
    bool Text(const char* key, std::string& target);
    /// Copies a list of texts.
    void Texts(const char* key, std::vector<std::string>& target);
    void Bool(const char* key, bool& target);

    /// Reports a missing member, at the object.
    void Missing(const char* key);
    /// Reports a value of a wrong type.
    void Wrong(const std::string& key, const Json::Value& value, const char* wanted);
    /// Reports every key that was not read. Call it after all others.
    void RefuseUnknownKeys();

private:
    const Json::Value& mObject;
    std::string mPrefix;
    CaseProblems& mProblems;
    std::vector<std::string> mKnown;
};

/// A text of a value that is a text without NUL characters; reports anything else.
bool ReadText(const Json::Value& value, const std::string& what, std::string& target, CaseProblems& problems);

/// Joins what a file says for all of its cases with what one case says: objects member by member, the case's lists of
/// events behind the file's, everything else as the case says. Values keep their places in the text.
Json::Value WithDefaults(const Json::Value& own, const Json::Value& defaults);

} // namespace diagnosis::cases

#endif
