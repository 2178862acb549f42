#include "arborist/loading/named_rules.h"

#include <unordered_set>

#include "arborist/loading/tree_walk.h"
#include "arborist/model/event_rule.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/rule.h"

std::vector<std::shared_ptr<Rule>> FindNamedRules(const std::vector<std::shared_ptr<FaultTree>>& trees,
    const std::map<std::string, std::shared_ptr<EventRule>>& entries, const std::map<std::string, std::shared_ptr<Rule>>& rules)
{
    std::vector<std::shared_ptr<Rule>> named;
    std::unordered_set<const void*> met; // entries and rules
    const auto takeRule = [&](const std::string& name) {
        const auto rule = rules.find(name);
        if (rule != rules.end() && rule->second != nullptr && met.insert(rule->second.get()).second) {
            named.push_back(rule->second);
        }
    };
    const auto takeRulesOf = [&](const Event& event) {
        const auto entry = entries.find(event.GetId());
        if (entry == entries.end() || entry->second == nullptr || !met.insert(entry->second.get()).second) {
            return;
        }
        for (const auto& alternative : entry->second->GetRuleList()) {
            for (const std::string& name : RuleNamesIn(NameOf(*alternative))) {
                takeRule(name);
            }
        }
    };
    for (const auto& tree : trees) {
        ForEachEvent(*tree, takeRulesOf);
    }
    return named;
}
