#include "arborist/model/event_rule.h"

#include "arborist/utilities/string_util.h"

namespace {

constexpr char COMMA[] = ",";

} // namespace

std::string NameOf(const OrRuleSingle& alternative)
{
    if (alternative.type == "singleRule") {
        return alternative.ruleName;
    }
    std::string joined;
    for (const std::string& name : alternative.ruleNameList) {
        joined += &name == &alternative.ruleNameList.front() ? "" : COMMA;
        joined += name;
    }
    return joined;
}

std::vector<std::string> RuleNamesIn(const std::string& alternativeName)
{
    return alternativeName.find(COMMA) == std::string::npos ? std::vector{alternativeName}
                                                            : StringUtil::Split(alternativeName, COMMA);
}

bool EventRule::CheckResult()
{
    if (ruleList.empty()) {
        ruleResult = false;
        return false;
    }
    for (const auto& alternative : ruleList) {
        if (alternative != nullptr && alternative->result) {
            ruleResult = true;
        }
    }
    return ruleResult;
}
