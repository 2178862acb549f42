#ifndef ARBORIST_DIAGNOSIS_CASES_CASE_TEXT_H
#define ARBORIST_DIAGNOSIS_CASES_CASE_TEXT_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace diagnosis::cases {

/// Writes a case file for people: a line for each key, and for each member of what may be long.
class CaseText {
public:
    /// Adds a member with a value that is JSON.
    void Add(std::string_view key, const std::string& json);
    void AddText(std::string_view key, std::string_view text);
    /// Adds an object or a list of values that are JSON; nothing for an empty one.
    void AddObject(std::string_view key, const std::map<std::string, std::string>& members);
    void AddList(std::string_view key, const std::vector<std::string>& values);
    void Begin(std::string_view key);
    void End();

    /// The whole file. Call it once, at the end.
    std::string Finish();

private:
    void StartLine();

    std::string mText = "{";
    std::size_t mDepth = 1;
    bool mIsFirst = true;
};

/// A text as JSON.
std::string QuotedJson(std::string_view text);

} // namespace diagnosis::cases

#endif
