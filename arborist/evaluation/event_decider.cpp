#include "arborist/evaluation/event_decider.h"

#include <cstddef>
#include <utility>

#include "arborist/evaluation/alternative_finder.h"
#include "arborist/evaluation/rule_check.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/log.h"
#include "arborist/model/event.h"

using Evidence::Reason;

bool EventDecider::IsFaultHappenedForEvent(const Event& event, const std::shared_ptr<EventRule>& eventRule)
{
    if (mRules.GetObserver() == nullptr) {
        return DecideEvent(event, eventRule.get(), nullptr, nullptr);
    }
    Evidence::Event record;
    record.id = event.GetId();
    record.name = event.GetName();
    EventCheck eventCheck;
    eventCheck.KeepTrue(mTreeChecks.GetTrueCheck(eventRule.get()));
    const bool fired = record.fired = DecideEvent(event, eventRule.get(), &eventCheck, &record);
    mTreeChecks.AddDecided(event, eventRule.get(), eventCheck, record);
    if (mRules.GetObserver() != nullptr) { // a code rule calls the host, which may have removed the observer
        mRules.GetObserver()->OnEventDecided(std::move(record));
    }
    return fired;
}

bool EventDecider::DecideEvent(
    const Event& event, EventRule* eventRule, EventCheck* eventCheck, Evidence::Event* record)
{
    Reason reason = Reason::NONE;
    bool fired = false;
    if (event.GetDetectMode() == DETECT_INTERACTION_RULE) {
        FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: event is code rule, skipped",
                                      "RuleEngine::IsFaultHappenedForEvent");
        reason = Reason::INTERACTION_EVENT;
    } else {
        const auto names = eventRule != nullptr ? RuleHelper::GetRuleNamesByRuleList(eventRule->GetRuleList())
                                                : std::vector<std::string>();
        reason = names.empty() ? Reason::NO_RULE_NAMES : Reason::NONE;
        fired = !names.empty() && AskRulesOfEvent(event.GetId(), *eventRule, names, eventCheck, record);
    }
    if (record != nullptr) {
        record->reason = reason;
    }
    return fired;
}

bool EventDecider::AskRulesOfEvent(const std::string& eventId, EventRule& eventRule,
    const std::vector<std::string>& names, EventCheck* eventCheck, Evidence::Event* record)
{
    AlternativeFinder finder(eventRule.GetRuleList());
    for (std::size_t number = 0; number < names.size(); ++number) {
        const std::string& name = names[number];
        Evidence::Alternative* const alternative = record == nullptr ? nullptr : &record->alternatives.emplace_back();
        const Entry entry = name.find(RuleHelper::TYPE_COMMA) != std::string::npos
            ? DoMultiRulesCheck(name, eventId, finder.Find(name), alternative)
            : DoSingleRuleCheck(name, eventId, finder, alternative);
        if (eventCheck != nullptr && entry != nullptr) {
            eventCheck->Land(entry.get(), entry->result, CheckOfAlternative(*alternative), number);
        }
    }
    return eventRule.CheckResult();
}

EventDecider::Entry EventDecider::DoSingleRuleCheck(const std::string& name, const std::string& eventId,
    AlternativeFinder& finder, Evidence::Alternative* alternative)
{
    const bool result = mRules.Fires(name, eventId, alternative);
    // An alternative with an empty name has no entry for its result. Its rule is run nevertheless.
    Entry entry = name.empty() ? nullptr : RuleHelper::OrLogMissing(finder.Find(name));
    if (entry != nullptr) {
        entry->result = result;
    }
    return entry;
}

// If all parts between the commas are empty, runs no rule and returns null.
EventDecider::Entry EventDecider::DoMultiRulesCheck(const std::string& names, const std::string& eventId,
    const Entry& entry, Evidence::Alternative* alternative)
{
    const auto parts = RuleNamesIn(names);
    std::size_t place = 0;
    bool result = true;
    for (; place < parts.size() && result; ++place) {
        result = mRules.Fires(parts[place], eventId, alternative);
        RuleHelper::OrLogMissing(entry);
    }
    if (entry != nullptr && !parts.empty()) {
        entry->result = result;
    }
    if (alternative != nullptr) {
        alternative->inGroup = true;
        for (; place < parts.size(); ++place) {
            mRules.SkipInGroup(parts[place], *alternative);
        }
    }
    return parts.empty() ? nullptr : entry;
}
