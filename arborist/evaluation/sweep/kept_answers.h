#ifndef ARBORIST_EVALUATION_SWEEP_KEPT_ANSWERS_H
#define ARBORIST_EVALUATION_SWEEP_KEPT_ANSWERS_H

#include <map>
#include <set>
#include <string>
#include <utility>

#include "arborist/evaluation/rule_decider.h"

class Event;

/// The last answers of rules on derived tables: they hold until the tables change, however often the events of these rules
/// are decided for other reasons.
class KeptAnswers {
public:
    /// Asks each of these rules for the event and keeps what it answers. The event must be the current one.
    void Ask(RuleDecider& rules, const Event& event, const std::set<std::string>& ruleNames);

    /// Null for a rule that was never asked for this event. Valid until the event is asked again.
    const RuleAnswer* Find(const Event& event, const std::string& ruleName) const;

private:
    std::map<std::pair<const Event*, std::string>, RuleAnswer> mAnswers;
};

#endif
