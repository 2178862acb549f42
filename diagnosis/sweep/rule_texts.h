#ifndef ARBORIST_DIAGNOSIS_SWEEP_RULE_TEXTS_H
#define ARBORIST_DIAGNOSIS_SWEEP_RULE_TEXTS_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include "diagnosis/bundle/bundle.h"

namespace diagnosis {

/// What a sweep reads in the two files of a rule set itself.
struct RuleTexts {
    /// The rules whose statements may change without the log: the reason by the name of the rule; see ClockUseOf.
    std::map<std::string, std::string> rulesOfTheClock;
    /// The ids of the events of each tree, in the order of the results of a detection.
    std::vector<std::set<std::string>> eventsOfTrees;
    /// The ids of the trees, in the same order.
    std::vector<std::string> trees;
    /// The rules that events of the trees name; a sweep need not ask them all.
    std::vector<std::string> rules;
    /// False if a file can't be read.
    bool areRead = false;
};

/// Reads the rule set of a bundle that is entered. A file that can't be read has nothing.
RuleTexts ReadRuleTexts(const Bundle& bundle);

} // namespace diagnosis

#endif
