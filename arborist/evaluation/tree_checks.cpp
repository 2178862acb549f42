#include "arborist/evaluation/tree_checks.h"

#include <string>
#include <utility>

#include "arborist/evaluation/event_decider.h"
#include "arborist/evaluation/rule_check.h"
#include "arborist/model/event.h"

namespace {

using Evidence::Check;
using Evidence::OpenCheck;
using Evidence::Reason;

bool LacksGate(const Event& event)
{
    const IntermediateEvent* intermediate = event.AsIntermediate();
    return intermediate != nullptr && intermediate->GetGate() == nullptr;
}

// The reason of an event without an entry; NONE for one that has no check.
Reason ReasonWithoutEntry(const Event& event)
{
    if (LacksGate(event)) {
        return Reason::NO_GATE;
    }
    if (event.AsIntermediate() != nullptr) {
        return Reason::NONE;
    }
    return event.GetDetectMode() == EventDecider::DETECT_INTERACTION_RULE ? Reason::INTERACTION_EVENT
                                                                        : Reason::NO_EVENT_RULE;
}

const Evidence::Rule* FindRule(const Evidence::Alternative& alternative, Check check)
{
    for (const Evidence::Rule& rule : alternative.rules) {
        if (rule.check == check) {
            return &rule;
        }
    }
    return nullptr;
}

} // namespace

void TreeChecks::StartTree()
{
    mChecks.clear();
    mUnanswered.clear();
}

void TreeChecks::AddWithoutEntry(const Event& event)
{
    const Reason reason = ReasonWithoutEntry(event);
    Add({event.GetId(), {}, Evidence::CheckOf(reason), reason, {}, false});
}

void TreeChecks::AddStopped(const Event& event)
{
    Add({event.GetId(), {}, Evidence::CheckOf(Reason::STOPPED), Reason::STOPPED, {}, false});
}

void TreeChecks::AddDecided(
    const Event& event, const EventRule* entry, const EventCheck& eventCheck, Evidence::Event& record)
{
    OpenCheck check = WordOf(entry, eventCheck.GetWord(), record);
    if (LacksGate(event)) {
        check = {{}, {}, Check::RULE_UNUSABLE, Reason::NO_GATE, {}, false};
    }
    check.eventId = event.GetId();
    check.restsOnDefault = record.fired && Evidence::IsOpen(check.check);
    record.check = check.check;
    if (record.fired && entry != nullptr) {
        OpenCheck& kept = mTrueChecks[entry];
        kept = check;
        kept.check = eventCheck.GetTrueCheck();
    }
    Add(std::move(check));
}

OpenCheck TreeChecks::WordOf(const EventRule* entry, const EventCheck::Word& word, const Evidence::Event& record) const
{
    OpenCheck check;
    check.check = word.check;
    check.reason = record.reason;
    if (word.alternative) {
        const Evidence::Rule* const rule = FindRule(record.alternatives[*word.alternative], word.check);
        if (rule != nullptr) {
            check.ruleName = rule->name;
            check.reason = ReasonOfCheck(*rule);
            check.detail = DetailOfCheck(*rule);
        }
        return check;
    }
    const auto kept = mTrueChecks.find(entry);
    if (kept != mTrueChecks.end() && kept->second.check == word.check) {
        return kept->second;
    }
    if (word.check != Check::NONE) {
        return check;
    }
    // No result was written to any entry: none of the names in the event's entry could be used.
    check.reason = record.reason == Reason::NONE ? Reason::NO_RULE_NAMES : record.reason;
    check.check = Evidence::CheckOf(check.reason);
    return check;
}

Check TreeChecks::GetTrueCheck(const EventRule* entry) const
{
    const auto found = mTrueChecks.find(entry);
    return found == mTrueChecks.end() ? Check::NONE : found->second.check;
}

std::vector<OpenCheck> TreeChecks::ListOpen(const Evidence::CheckCounts& counts) const
{
    if (counts.Total() == 0) {
        return {{mTopId, {}, Check::NOT_CHECKED, Reason::NO_EVENT_RULE, {}, false}};
    }
    std::vector<OpenCheck> open;
    const bool isAnythingDecided = counts.Open() != 0 || counts.Of(Check::DECIDED) != 0;
    for (const OpenCheck& check : mUnanswered) {
        if (!isAnythingDecided || Evidence::IsOpen(check.check)) {
            open.push_back(check);
        }
    }
    return open;
}

void TreeChecks::Add(OpenCheck check)
{
    if (mChecks.empty()) {
        mTopId = check.eventId;
    }
    mChecks.push_back(check.check);
    if (Evidence::IsOpen(check.check) || check.check == Check::NOT_SELECTED) {
        mUnanswered.push_back(std::move(check));
    }
}
