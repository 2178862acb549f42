#ifndef ARBORIST_EVALUATION_EVENT_DECIDER_H
#define ARBORIST_EVALUATION_EVENT_DECIDER_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "arborist/evaluation/rule_decider.h"
#include "arborist/evaluation/tree_checks.h"
#include "arborist/model/event_rule.h"

class AlternativeFinder;
class Event;

/// Decides events by the alternatives of their entries: single rules, and groups whose rules must all fire. Stores the
/// results in the entries; with an observer also keeps what each event's answer rests on, and tells the observer.
class EventDecider {
public:
    /// Detect mode of events that are left to the host: their rules never run here.
    static constexpr std::string_view DETECT_INTERACTION_RULE = "2";

    explicit EventDecider(RuleDecider rules) : mRules(std::move(rules)) {}

    /// True if an alternative of the entry is true. `eventRule` may be null.
    bool IsFaultHappenedForEvent(const Event& event, const std::shared_ptr<EventRule>& eventRule);

    RuleDecider& GetRules() { return mRules; }
    /// The checks of the events of a tree; complete only with an observer.
    TreeChecks& GetTreeChecks() { return mTreeChecks; }
    const TreeChecks& GetTreeChecks() const { return mTreeChecks; }

private:
    using Entry = std::shared_ptr<OrRuleSingle>;

    // Without an observer `eventCheck` and `record` are null.
    bool DecideEvent(const Event& event, EventRule* eventRule, EventCheck* eventCheck, Evidence::Event* record);
    bool AskRulesOfEvent(const std::string& eventId, EventRule& eventRule, const std::vector<std::string>& names,
        EventCheck* eventCheck, Evidence::Event* record);
    // Both return the entry to which the result was written; null for nowhere.
    Entry DoSingleRuleCheck(const std::string& name, const std::string& eventId, AlternativeFinder& finder,
        Evidence::Alternative* alternative);
    Entry DoMultiRulesCheck(const std::string& names, const std::string& eventId, const Entry& entry,
        Evidence::Alternative* alternative);

    RuleDecider mRules;
    TreeChecks mTreeChecks;
};

#endif
