#include "arborist/model/event_rule.h"

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
