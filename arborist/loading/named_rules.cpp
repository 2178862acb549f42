#include "arborist/loading/named_rules.h"

#include <string>
#include <unordered_set>

#include "arborist/loading/fault_tree_parser.h"
#include "arborist/loading/tree_walk.h"

std::vector<std::shared_ptr<Rule>> FindNamedRules(const FaultTreeParser& parser)
{
    std::vector<std::shared_ptr<Rule>> rules;
    std::unordered_set<const void*> met; // entries and rules
    const auto takeRule = [&](const std::string& name) {
        const auto& rule = parser.GetRuleByRuleName(name);
        if (rule != nullptr && met.insert(rule.get()).second) {
            rules.push_back(rule);
        }
    };
    const auto takeRulesOf = [&](const Event& event) {
        const auto& entry = parser.GetEventRuleByEventId(event.GetId());
        if (entry == nullptr || !met.insert(entry.get()).second) {
            return;
        }
        for (const auto& alternative : entry->GetRuleList()) {
            for (const std::string& name : RuleNamesIn(NameOf(*alternative))) {
                takeRule(name);
            }
        }
    };
    for (const auto& tree : parser.GetFaultTrees()) {
        ForEachEvent(*tree, takeRulesOf);
    }
    return rules;
}
