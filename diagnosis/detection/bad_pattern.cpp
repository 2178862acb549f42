#include "diagnosis/detection/bad_pattern.h"

#include "arborist/frame/rule_set_summary.h"

namespace diagnosis {

namespace {

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
        if (!IsFileNamePattern(known.pattern)) {
            bad += (bad.empty() ? "\"" : ", \"") + known.pattern + "\" of the defDBTable \"" + known.name + "\"";
        }
    }
    return RuleFile(ruleSet) + (bad.empty() ? "a dbName pattern " : "the dbName pattern " + bad + " ")
        + "is no regular expression: " + reason;
}

} // namespace diagnosis
