#include "diagnosis/evidence/explanation_recorder.h"

#include "diagnosis/bundle/moment.h"

namespace diagnosis {

namespace {

ExplainedMoment Moment(std::int64_t seconds)
{
    return {seconds, seconds == 0 ? "" : FormatMoment(seconds).value_or("")};
}

} // namespace

void ExplanationRecorder::OnTreeStarted(const TreeStarted& tree)
{
    DetectionRecorder::OnTreeStarted(tree);
    mTree = ExplainedTree();
    mTree.id = tree.treeId;
    mTree.version = tree.version;
    mAsked.clear();
    mOpen.clear();
    mPaths.reset();
}

void ExplanationRecorder::OnEventAsked(const EventAsked& event)
{
    DetectionRecorder::OnEventAsked(event);
    mEvidence = ExplainedEvidence();
    mEvidence.eventId = event.eventId;
}

void ExplanationRecorder::OnRuleAsked(const RuleAsked& rule)
{
    DetectionRecorder::OnRuleAsked(rule);
    mRule = ExplainedRule();
    mRule.name = rule.ruleName;
    mRule.alternative = rule.alternative;
    mRule.place = rule.place;
    mRule.inGroup = rule.inGroup;
    mStart.reset();
    mTests.clear();
}

void ExplanationRecorder::OnFilter(const FilterSeen& filter)
{
    DetectionRecorder::OnFilter(filter);
    mRule.filter = ExplainedFilter{std::string(filter.deviceValue), std::string(filter.ruleText)};
}

void ExplanationRecorder::OnName(const NameSeen& name)
{
    DetectionRecorder::OnName(name);
    mRule.badName = name.name;
}

void ExplanationRecorder::OnStartTime(const StartTimeSeen& seen)
{
    DetectionRecorder::OnStartTime(seen);
    mStart = ExplainedStart{Moment(seen.start), Moment(seen.periodStart), Moment(seen.resetTime),
        Moment(seen.updateTime), Moment(seen.repairTime), seen.floor, seen.periodDays, std::string(seen.beginFlag),
        std::string(seen.repairId)};
}

void ExplanationRecorder::OnAlarmTest(const AlarmTestSeen& test)
{
    DetectionRecorder::OnAlarmTest(test);
    mTests.push_back({std::string(test.key), std::string(test.type), std::string(test.logic), std::string(test.value),
        test.rowsTested, test.rowsPassed});
}

void ExplanationRecorder::OnAlarmWindow(const AlarmWindowSeen& seen)
{
    DetectionRecorder::OnAlarmWindow(seen);
    ExplainedWindow window;
    window.item = seen.item;
    window.firstId = seen.firstId;
    window.lastId = seen.lastId;
    window.window = seen.window;
    window.periodDays = seen.periodDays;
    window.threshold = seen.threshold;
    window.start = std::move(mStart);
    window.versionFilter = seen.versionFilter;
    window.rowsFound = seen.rowsFound;
    window.rowsOfOtherVersion = seen.rowsOfOtherVersion;
    window.rowsFailedTest = seen.rowsFailedTest;
    window.reached = seen.reached;
    window.reachedById = seen.reachedById;
    window.measure = seen.measure;
    window.hit = seen.hit;
    window.reason = seen.reason;
    window.tests = std::move(mTests);
    mStart.reset();
    mTests.clear();
    mRule.windows.push_back(std::move(window));
}

void ExplanationRecorder::OnNodeFile(const NodeFileSeen& node)
{
    DetectionRecorder::OnNodeFile(node);
    mRule.nodeFiles.push_back(
        {std::string(node.param), std::string(node.path), node.readable, std::string(node.value)});
}

void ExplanationRecorder::OnFormula(const FormulaSeen& formula)
{
    DetectionRecorder::OnFormula(formula);
    mRule.formula = ExplainedFormula{std::string(formula.expression), std::string(formula.grouping),
        std::string(formula.result), std::string(formula.resultKey)};
}

void ExplanationRecorder::OnQuery(const QuerySeen& query)
{
    DetectionRecorder::OnQuery(query);
    mRule.queries.push_back({std::string(query.database), std::string(query.sql), query.opened, query.rows,
        std::string(query.error), {}, {}, {}});
    // The start time is worked out for every command rule, and asked for in the statements of some.
    if (mStart && query.sql.ends_with("occurrence_time >" + std::to_string(mStart->start.seconds))) {
        mRule.start = mStart;
    }
}

void ExplanationRecorder::OnInterval(const IntervalSeen& seen)
{
    DetectionRecorder::OnInterval(seen);
    LastQuery().interval = ExplainedInterval{
        std::string(seen.startKey), std::string(seen.endKey), seen.start, seen.end, seen.days, seen.usable};
}

void ExplanationRecorder::OnParameter(const ParameterSeen& seen)
{
    DetectionRecorder::OnParameter(seen);
    LastQuery().parameters.push_back({std::string(seen.id), std::string(seen.key), std::string(seen.type),
        std::string(seen.raw), std::string(seen.value)});
}

void ExplanationRecorder::OnComparison(const ComparisonSeen& seen)
{
    DetectionRecorder::OnComparison(seen);
    auto& comparisons = mRule.queries.empty() ? mRule.comparisons : LastQuery().comparisons;
    comparisons.push_back({std::string(seen.paramId), std::string(seen.key), std::string(seen.type),
        std::string(seen.logic), std::string(seen.observed), std::string(seen.configured), std::string(seen.source),
        std::string(seen.sourceId), seen.holds});
}

void ExplanationRecorder::OnHits(const HitsSeen& seen)
{
    DetectionRecorder::OnHits(seen);
    mRule.hits = ExplainedHits{std::string(seen.name), seen.databases, seen.hits, seen.needed};
}

void ExplanationRecorder::OnCodeRun(const CodeRunSeen& run)
{
    DetectionRecorder::OnCodeRun(run);
    mRule.codeRun = ExplainedCodeRun{std::string(run.detectCode), run.faultDescriptionIds, run.suggestionIds,
        run.repairIds, std::string(run.userDefinedInfo), run.answer};
}

void ExplanationRecorder::OnRuleDecided(const RuleDecided& rule)
{
    DetectionRecorder::OnRuleDecided(rule);
    if (rule.reason == Reason::GROUP_ENDED) { // was not asked: stands behind the one that ended its group
        const ExplainedRule before = mEvidence.rules.empty() ? ExplainedRule() : mEvidence.rules.back();
        mRule = ExplainedRule();
        mRule.name = rule.ruleName;
        mRule.alternative = before.alternative;
        mRule.place = before.place + 1;
        mRule.inGroup = true;
    }
    mRule.family = rule.family;
    mRule.verdict = rule.verdict;
    mRule.reason = rule.reason;
    mEvidence.rules.push_back(std::move(mRule));
    mRule = ExplainedRule();
}

void ExplanationRecorder::OnEventDecided(const EventDecided& event)
{
    DetectionRecorder::OnEventDecided(event);
    mEvidence.fired = event.fired;
    mEvidence.reason = event.reason;
    auto& runs = mAsked[mEvidence.eventId].runs;
    if (!runs.empty() && mTree.evidence[runs.back().first] == mEvidence) {
        ++runs.back().second;
        return;
    }
    runs.emplace_back(mTree.evidence.size(), 1);
    mTree.evidence.push_back(std::move(mEvidence));
    mEvidence = ExplainedEvidence();
}

void ExplanationRecorder::OnEventFolded(const EventFolded& event)
{
    DetectionRecorder::OnEventFolded(event);
    CloseEvents(event.depth);
    ExplainedEvent& explained = mTree.events.emplace_back();
    explained.depth = event.depth;
    explained.kind = event.kind;
    explained.gate = event.gate;
    explained.id = event.id;
    explained.name = event.name;
    explained.status = event.status;
    explained.observable = event.observable;
    explained.parent = mOpen.empty() ? ExplainedEvent::NONE : mOpen.back();
    explained.evidence = NextEvidence(explained.id);
    mOpen.push_back(mTree.events.size() - 1);
}

void ExplanationRecorder::OnRootCause(const RootCauseSeen& rootCause)
{
    DetectionRecorder::OnRootCause(rootCause);
    CloseEvents(0);
    if (!mPaths) {
        mPaths.emplace(mTree.events);
    }
    ExplainedCause& cause = mTree.causes.emplace_back();
    cause.id = rootCause.id;
    cause.members.reserve(rootCause.cutSet.size());
    for (const std::string& path : rootCause.cutSet) {
        cause.members.push_back(mPaths->Find(path));
    }
}

void ExplanationRecorder::OnTreeFinished(const TreeFinished& tree)
{
    DetectionRecorder::OnTreeFinished(tree);
    CloseEvents(0);
    mTree.isFault = tree.isFault;
    mPaths.reset();
    mExplanation->trees.push_back(std::move(mTree));
    mTree = ExplainedTree();
}

// Values are told after the statement that gave them.
ExplainedQuery& ExplanationRecorder::LastQuery()
{
    return mRule.queries.empty() ? mRule.queries.emplace_back() : mRule.queries.back();
}

// Events are asked and folded in the same order, so the nth with an id is the same event both times.
std::size_t ExplanationRecorder::NextEvidence(const std::string& id)
{
    const auto entry = mAsked.find(id);
    if (entry == mAsked.end() || entry->second.run == entry->second.runs.size()) {
        return ExplainedEvent::NONE;
    }
    Asked& asked = entry->second;
    const auto [evidence, length] = asked.runs[asked.run];
    if (++asked.taken == length) {
        asked.taken = 0;
        ++asked.run;
    }
    return evidence;
}

void ExplanationRecorder::CloseEvents(std::size_t depth)
{
    while (mOpen.size() > depth) {
        mTree.events[mOpen.back()].end = mTree.events.size();
        mOpen.pop_back();
    }
}

} // namespace diagnosis
