#ifndef ARBORIST_LOADING_NAMED_RULES_H
#define ARBORIST_LOADING_NAMED_RULES_H

#include <memory>
#include <vector>

class FaultTreeParser;
class Rule;

/// The rules that the events of the trees name, each once, in the order in which a detection first comes to them. No
/// detection asks another rule of the rule set.
std::vector<std::shared_ptr<Rule>> FindNamedRules(const FaultTreeParser& parser);

#endif
