#include "diagnosis/sweep/sweep_recorder.h"

#include <algorithm>

namespace diagnosis {

namespace {

using Evidence::Reason;
using Word = Evidence::TreeVerdict::Word;

constexpr char NOT_SWEPT[] = "not_swept";

SweptState StateOf(Word word)
{
    switch (word) {
    case Word::FAULT:
        return SweptState::TRUE;
    case Word::NO_FAULT:
    case Word::NOT_APPLICABLE:
        return SweptState::FALSE;
    case Word::UNDECIDED:
        break;
    }
    return SweptState::NOT_JUDGED;
}

// A window that an item doesn't have is no reason where the item has another.
bool IsOnlyAbsent(const Evidence::Alarm& alarm, const Evidence::Window& absent)
{
    return std::none_of(alarm.windows.begin(), alarm.windows.end(), [&absent](const Evidence::Window& window) {
        return window.item == absent.item && window.reason != Reason::WINDOW_ABSENT;
    });
}

// All that a rule's check rests on, what decided first.
std::vector<Reason> ReasonsOf(const Evidence::Rule& rule)
{
    std::vector<Reason> reasons;
    const auto* const alarm = std::get_if<Evidence::Alarm>(&rule.part);
    if (alarm != nullptr && !alarm->windows.empty()) { // the rule's own reason is that of one of its windows
        for (const Evidence::Window& window : alarm->windows) {
            if (window.reason != Reason::WINDOW_ABSENT || IsOnlyAbsent(*alarm, window)) {
                reasons.push_back(window.reason);
            }
            reasons.insert(reasons.end(), window.notes.begin(), window.notes.end());
        }
    } else {
        reasons.push_back(rule.reason);
    }
    if (const auto* const command = std::get_if<Evidence::Command>(&rule.part)) {
        for (const Evidence::Statement& statement : command->statements) {
            reasons.push_back(statement.reason);
        }
    }
    reasons.insert(reasons.end(), rule.notes.begin(), rule.notes.end());
    return reasons;
}

// Why a rule has no answer, in the word of its explanation: the first reason with the check of the whole rule.
Reason OpenReasonOf(const Evidence::Rule& rule)
{
    const std::vector<Reason> reasons = ReasonsOf(rule);
    const auto first = std::find_if(
        reasons.begin(), reasons.end(), [&rule](Reason reason) { return Evidence::CheckOf(reason) == rule.check; });
    return first == reasons.end() ? rule.reason : *first;
}

SweptSource SourceOf(const Evidence::Rule& rule)
{
    if (rule.filter) {
        return SweptSource::CAPTURED;
    }
    const auto* const command = std::get_if<Evidence::Command>(&rule.part);
    if (command != nullptr) {
        return command->hits ? SweptSource::CAPTURED : SweptSource::TABLES;
    }
    return rule.GetFamily() == Evidence::Family::ALARM ? SweptSource::LOG : SweptSource::CAPTURED;
}

// In the first days of 1970 a period begins before 0, which stands for no repair.
bool BeginsAtRepair(const std::optional<Evidence::Start>& start)
{
    return start && start->floor == Evidence::Floor::REPAIR && start->repair.seconds != 0;
}

// True if the rule looked at no time before a repair.
bool IsFloored(const Evidence::Rule& rule)
{
    if (const auto* const alarm = std::get_if<Evidence::Alarm>(&rule.part)) {
        return std::any_of(alarm->windows.begin(), alarm->windows.end(),
            [](const Evidence::Window& window) { return BeginsAtRepair(window.start); });
    }
    const auto* const command = std::get_if<Evidence::Command>(&rule.part);
    return command != nullptr && BeginsAtRepair(command->start);
}

} // namespace

std::vector<std::string> NamesOf(const std::vector<SweptTree>& trees)
{
    std::map<std::string, std::size_t> all;
    for (const SweptTree& tree : trees) {
        ++all[tree.id];
    }
    std::map<std::string, std::size_t> named;
    std::vector<std::string> names;
    for (const SweptTree& tree : trees) {
        const std::size_t place = ++named[tree.id];
        const std::size_t count = all[tree.id];
        names.push_back(
            count == 1 ? tree.id : tree.id + " (" + std::to_string(place) + " of " + std::to_string(count) + ")");
    }
    return names;
}

SweptState SweepRecorder::Possible::StateOf(const CutSet& cutSet) const
{
    return areTruncated || causes.count(cutSet) != 0 ? SweptState::NOT_JUDGED : SweptState::FALSE;
}

void SweepRecorder::OnRuleSetRead(Evidence::RuleSet ruleSet)
{
    mWarnings.OnRuleSet(ruleSet);
    mRuleSet = std::move(ruleSet);
}

void SweepRecorder::OnPlan(SweepPlan plan)
{
    mPlan = std::move(plan);
    for (const SweepPlan::Unswept& rule : mPlan.unswept) {
        mUnswept.emplace(std::pair(rule.eventId, rule.ruleName), rule.reason);
    }
}

void SweepRecorder::OnEventDecided(std::int64_t moment, const Evidence::Event& event)
{
    mWarnings.OnEvent(event);
    for (const Evidence::Alternative& alternative : event.alternatives) {
        std::string unswept; // also for the rules of a group that are asked behind such a rule
        for (const Evidence::Rule& rule : alternative.rules) {
            const auto reason = mUnswept.find(std::pair(event.id, rule.name));
            unswept = reason == mUnswept.end() ? (unswept.empty() ? "" : NOT_SWEPT) : reason->second;
            TakeRule(moment, event.id, rule, unswept);
        }
    }
}

void SweepRecorder::TakeRule(
    std::int64_t moment, const std::string& eventId, const Evidence::Rule& rule, const std::string& unswept)
{
    const auto [known, isNew] = mRuleOf.emplace(std::pair(eventId, rule.name), mRules.size());
    if (isNew) {
        mRules.push_back({eventId, rule.name, SourceOf(rule), false, {}});
    }
    SweptRule& swept = mRules[known->second];
    if (rule.verdict != Evidence::Verdict::SKIPPED) {
        swept.source = SourceOf(rule);
    }
    swept.isFloored |= IsFloored(rule);
    if (!unswept.empty()) {
        swept.timeline.Set(moment, SweptState::NOT_JUDGED, unswept);
    } else if (rule.verdict == Evidence::Verdict::FIRED) {
        swept.timeline.Set(moment, SweptState::TRUE);
    } else if (rule.verdict == Evidence::Verdict::NOT_FIRED && !Evidence::IsOpen(rule.check)) {
        swept.timeline.Set(moment, SweptState::FALSE);
    } else {
        swept.timeline.Set(moment, SweptState::NOT_JUDGED, Evidence::ReasonText(OpenReasonOf(rule)));
    }
}

void SweepRecorder::OnTreeJudged(std::int64_t moment, std::size_t tree, const Evidence::TreeResult& result,
    const std::vector<Evidence::RootCause>& rootCauses)
{
    mWarnings.OnTreeFinished(result);
    while (mTrees.size() <= tree) {
        mTrees.emplace_back();
        mMemories.emplace_back();
    }
    SweptTree& swept = mTrees[tree];
    swept.id = result.id;
    swept.number = tree + 1;
    if (std::binary_search(mPlan.unsweptTrees.begin(), mPlan.unsweptTrees.end(), tree)) {
        swept.timeline.Set(moment, SweptState::NOT_JUDGED, NOT_SWEPT);
        return;
    }
    swept.timeline.Set(moment, StateOf(result.verdict.word), Evidence::TreeVerdictText(result.verdict.word));
    Possible possible{moment, {}, result.verdict.arePossibleCausesTruncated};
    for (const Evidence::TreeVerdict::PossibleCause& cause : result.verdict.possibleCauses) {
        possible.causes.insert(cause.cutSet);
    }
    mMemories[tree].possible.push_back(std::move(possible));
    TakeCauses(moment, tree, rootCauses);
}

void SweepRecorder::TakeCauses(
    std::int64_t moment, std::size_t tree, const std::vector<Evidence::RootCause>& rootCauses)
{
    SweptTree& swept = mTrees[tree];
    TreeMemory& memory = mMemories[tree];
    for (SweptCause& cause : swept.causes) {
        cause.timeline.Set(moment, memory.possible.back().StateOf(cause.cutSet));
    }
    for (const Evidence::RootCause& found : rootCauses) {
        const auto [known, isNew] = memory.causes.emplace(found.cutSet, swept.causes.size());
        if (isNew) {
            SweptCause& cause = swept.causes.emplace_back(SweptCause{found.id, found.cutSet, {}, found.wayUp});
            for (const Possible& before : memory.possible) {
                cause.timeline.Set(before.moment, before.StateOf(cause.cutSet));
            }
        }
        swept.causes[known->second].timeline.Set(moment, SweptState::TRUE);
    }
}

void SweepRecorder::Close(std::int64_t until)
{
    for (SweptTree& tree : mTrees) {
        tree.timeline.Close(until);
        for (SweptCause& cause : tree.causes) {
            cause.timeline.Close(until);
        }
        std::erase_if(tree.causes, [](const SweptCause& cause) { return !cause.timeline.GetFirst(); });
    }
    for (SweptRule& rule : mRules) {
        rule.timeline.Close(until);
    }
}

void SweepRecorder::TellGrounds(const std::vector<std::set<std::string>>& eventsOfTrees)
{
    std::map<std::string, Grounds> ofEvents;
    for (const SweptRule& rule : mRules) {
        ofEvents[rule.eventId].Add(rule.GetGrounds());
    }
    const auto addAll = [&ofEvents](const auto& events, Grounds& grounds) {
        for (const std::string& id : events) {
            if (const auto found = ofEvents.find(id); found != ofEvents.end()) {
                grounds.Add(found->second);
            }
        }
    };
    for (std::size_t place = 0; place < mTrees.size() && place < eventsOfTrees.size(); ++place) {
        addAll(eventsOfTrees[place], mTrees[place].grounds);
        for (SweptCause& cause : mTrees[place].causes) {
            addAll(cause.wayUp, cause.grounds);
        }
    }
}

} // namespace diagnosis
