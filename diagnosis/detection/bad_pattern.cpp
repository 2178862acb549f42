#include "diagnosis/detection/bad_pattern.h"

#include <regex>

namespace diagnosis {

namespace {

// The same limit as in the library: patterns are compiled recursively, so that a longer one could overflow the stack.
bool Compiles(const std::string& pattern)
{
    static constexpr std::size_t LONGEST = 4096;
    if (pattern.size() > LONGEST) {
        return false;
    }
    try {
        std::regex compiled(pattern, std::regex::ECMAScript);
        return true;
    } catch (const std::regex_error&) {
        return false;
    }
}

std::string RuleFile(const Evidence::RuleSet& ruleSet)
{
    for (const Evidence::RuleSetFile& file : ruleSet.files) {
        if (file.type == Evidence::RuleSetFileType::RULES) {
            return file.path + ": ";
        }
    }
    return "";
}

} // namespace

std::string BadPatternMessage(const Evidence::RuleSet& ruleSet, const std::string& reason)
{
    std::string bad;
    for (const Evidence::ExternalDatabase& known : ruleSet.databases) {
        if (!Compiles(known.pattern)) {
            bad += (bad.empty() ? "\"" : ", \"") + known.pattern + "\" of the defDBTable \"" + known.name + "\"";
        }
    }
    return RuleFile(ruleSet) + (bad.empty() ? "a dbName pattern " : "the dbName pattern " + bad + " ")
        + "is no regular expression: " + reason;
}

} // namespace diagnosis
