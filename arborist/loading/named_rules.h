#ifndef ARBORIST_LOADING_NAMED_RULES_H
#define ARBORIST_LOADING_NAMED_RULES_H

#include <map>
#include <memory>
#include <string>
#include <vector>

class EventRule;
class FaultTree;
class Rule;

/// The rules that the events of the trees name, each once, in the order in which a detection first comes to them. No
/// detection asks another rule of the rule set. Entries are found by event id, rules by name.
std::vector<std::shared_ptr<Rule>> FindNamedRules(const std::vector<std::shared_ptr<FaultTree>>& trees,
    const std::map<std::string, std::shared_ptr<EventRule>>& entries, const std::map<std::string, std::shared_ptr<Rule>>& rules);

#endif
