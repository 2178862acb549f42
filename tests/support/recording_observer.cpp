#include "tests/support/recording_observer.h"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace {

template <typename... Pieces>
std::string Line(const Pieces&... pieces)
{
    std::ostringstream line;
    (line << ... << pieces);
    return line.str();
}

std::string Joined(const std::vector<std::string>& texts, const char* separator = ",")
{
    std::string joined;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        joined += (i == 0 ? "" : separator) + texts[i];
    }
    return joined;
}

// " [reason]", nothing for none.
std::string Why(DetectionObserver::Reason reason)
{
    return reason == DetectionObserver::Reason::NONE ? "" : Line(" [", DetectionObserver::ReasonText(reason), "]");
}

const char* Text(DetectionObserver::Verdict verdict)
{
    switch (verdict) {
    case DetectionObserver::Verdict::FIRED:
        return "TRUE";
    case DetectionObserver::Verdict::NOT_FIRED:
        return "FALSE";
    case DetectionObserver::Verdict::SKIPPED:
        return "SKIP";
    }
    return "";
}

const char* Text(DetectionObserver::RuleSetFile::State state)
{
    switch (state) {
    case DetectionObserver::RuleSetFile::State::LOADED:
        return "loaded";
    case DetectionObserver::RuleSetFile::State::MISSING:
        return "missing";
    case DetectionObserver::RuleSetFile::State::MALFORMED:
        return "malformed";
    }
    return "";
}

const char* Text(DetectionObserver::StartTimeSeen::Floor floor)
{
    switch (floor) {
    case DetectionObserver::StartTimeSeen::Floor::PERIOD:
        return "period";
    case DetectionObserver::StartTimeSeen::Floor::RESET:
        return "reset";
    case DetectionObserver::StartTimeSeen::Floor::UPDATE:
        return "update";
    case DetectionObserver::StartTimeSeen::Floor::REPAIR:
        return "repair";
    }
    return "";
}

const char* Text(DetectionObserver::EventFolded::Kind kind)
{
    switch (kind) {
    case DetectionObserver::EventFolded::Kind::BASIC:
        return "basic";
    case DetectionObserver::EventFolded::Kind::INTERMEDIATE:
        return "intermediate";
    case DetectionObserver::EventFolded::Kind::UNDEVELOPED:
        return "undeveloped";
    }
    return "";
}

const char* Text(DetectionObserver::EventFolded::GateKind gate)
{
    switch (gate) {
    case DetectionObserver::EventFolded::GateKind::NONE:
        return "";
    case DetectionObserver::EventFolded::GateKind::OR:
        return " or";
    case DetectionObserver::EventFolded::GateKind::AND:
        return " and";
    }
    return "";
}

} // namespace

std::vector<std::string> RecordingObserver::Lines(const std::string& word) const
{
    std::vector<std::string> lines;
    std::copy_if(mLines.begin(), mLines.end(), std::back_inserter(lines),
                 [&word](const std::string& line) { return line.rfind(word + ' ', 0) == 0; });
    return lines;
}

void RecordingObserver::OnRuleSetFile(const RuleSetFile& file)
{
    const char* kind = file.kind == RuleSetFile::Kind::TREES ? "trees" : "rules";
    mLines.push_back(Line("file ", kind, ' ', Text(file.state), ' ', file.path, " count ", file.count, " line ",
                          file.line, file.message.empty() ? "" : ": ", file.message));
}

void RecordingObserver::OnThresholds(const ThresholdsSeen& thresholds)
{
    mLines.push_back(Line("thresholds ", thresholds.commonPart, ' ', thresholds.thresholds, " by ",
                          thresholds.systemParams, thresholds.areSet ? " set" : " unset"));
}

void RecordingObserver::OnExternalDatabase(const ExternalDatabaseSeen& database)
{
    mLines.push_back(Line("database ", database.name, " '", database.pattern, "'"));
}

void RecordingObserver::OnTreeStarted(const TreeStarted& tree)
{
    mLines.push_back(Line("tree ", tree.treeId, " version ", tree.version, " type ", tree.type));
}

void RecordingObserver::OnEventAsked(const EventAsked& event)
{
    mLines.push_back(Line("event ", event.eventId, " (", event.eventName, ')'));
}

void RecordingObserver::OnRuleAsked(const RuleAsked& rule)
{
    mLines.push_back(Line("ask ", rule.eventId, ' ', rule.ruleName, ' ', FamilyText(rule.family), " #",
                          rule.alternative, rule.inGroup ? Line('.', rule.place) : ""));
}

void RecordingObserver::OnFilter(const FilterSeen& filter)
{
    mLines.push_back(Line("filter ", filter.ruleName, " '", filter.deviceValue, "' in '", filter.ruleText, '\'',
                          Why(filter.reason)));
}

void RecordingObserver::OnName(const NameSeen& name)
{
    mLines.push_back(Line("name '", name.name, '\'', Why(name.reason)));
}

void RecordingObserver::OnStartTime(const StartTimeSeen& seen)
{
    mLines.push_back(Line("start ", seen.start, " of period ", seen.periodStart, " reset ", seen.resetTime, " update ",
                          seen.updateTime, " repair ", seen.repairTime, " by ", Text(seen.floor), " days ",
                          seen.periodDays, " flag '", seen.beginFlag, "' repair id '", seen.repairId, '\''));
}

void RecordingObserver::OnAlarmTest(const AlarmTestSeen& test)
{
    mLines.push_back(Line("test ", test.key, ' ', test.type, ' ', test.logic, " '", test.value, "' passed ",
                          test.rowsPassed, " of ", test.rowsTested));
}

void RecordingObserver::OnAlarmWindow(const AlarmWindowSeen& window)
{
    mLines.push_back(Line("window item ", window.item, " ids ", window.firstId, '-', window.lastId, ' ', window.window,
                          " days ", window.periodDays, " threshold ", window.threshold, " since ", window.start,
                          window.versionFilter ? " by version" : "", " rows ", window.rowsFound, " other version ",
                          window.rowsOfOtherVersion, " failed ", window.rowsFailedTest, " reached ", window.reached,
                          window.measure.empty() ? "" : " ", window.measure, " by ", window.reachedById, window.hit ? " hit" : " miss", Why(window.reason)));
}

void RecordingObserver::OnNodeFile(const NodeFileSeen& node)
{
    mLines.push_back(
        Line("node ", node.param, ' ', node.path, node.readable ? " = '" : " unreadable '", node.value, '\''));
}

void RecordingObserver::OnFormula(const FormulaSeen& formula)
{
    mLines.push_back(Line("formula ", formula.resultKey, " = ", formula.expression, " as ", formula.grouping, " -> ",
                          formula.result));
}

void RecordingObserver::OnQuery(const QuerySeen& query)
{
    mLines.push_back(
        Line("query ", query.database, query.opened ? "" : " not opened", " rows ", query.rows, ": ", query.sql,
             query.error.empty() ? "" : " failed: ", query.error));
}

void RecordingObserver::OnInterval(const IntervalSeen& interval)
{
    mLines.push_back(Line("interval ", interval.startKey, '=', interval.start, " to ", interval.endKey, '=',
                          interval.end, " days ", interval.days, interval.usable ? "" : " unusable"));
}

void RecordingObserver::OnParameter(const ParameterSeen& parameter)
{
    mLines.push_back(Line("parameter ", parameter.id, ' ', parameter.key, ' ', parameter.type, " '", parameter.raw,
                          "' -> '", parameter.value, '\''));
}

void RecordingObserver::OnComparison(const ComparisonSeen& seen)
{
    mLines.push_back(Line("compare ", seen.paramId, ' ', seen.key, ' ', seen.type, " '", seen.observed, "' ",
                          seen.logic, " '", seen.configured, '\'', seen.source.empty() ? "" : " from ", seen.source,
                          seen.sourceId.empty() ? "" : " ", seen.sourceId, seen.holds ? " holds" : " fails"));
}

void RecordingObserver::OnHits(const HitsSeen& hits)
{
    mLines.push_back(Line("hits ", hits.hits, " of ", hits.databases, ' ', hits.name, " needed ", hits.needed));
}

void RecordingObserver::OnCodeRun(const CodeRunSeen& run)
{
    mLines.push_back(Line("code ", run.detectCode, " faults ", Joined(run.faultDescriptionIds), " suggestions ",
                          Joined(run.suggestionIds), " repairs ", Joined(run.repairIds), " info '",
                          run.userDefinedInfo, run.answer ? "' yes" : "' no"));
}

void RecordingObserver::OnRuleDecided(const RuleDecided& rule)
{
    mLines.push_back(Line("rule ", rule.eventId, ' ', rule.ruleName, ' ', FamilyText(rule.family), ' ',
                          Text(rule.verdict), Why(rule.reason)));
}

void RecordingObserver::OnEventDecided(const EventDecided& event)
{
    mLines.push_back(Line("decided ", event.eventId, event.fired ? " TRUE" : " FALSE", Why(event.reason)));
}

void RecordingObserver::OnEventFolded(const EventFolded& event)
{
    mLines.push_back(Line("folded ", event.depth, ' ', Text(event.kind), Text(event.gate), ' ', event.id, " (",
                          event.name, ") ", GetElemTypeName(event.status), event.observable ? " observable" : "",
                          event.userDefined.empty() ? "" : " ", event.userDefined));
}

void RecordingObserver::OnRootCause(const RootCauseSeen& rootCause)
{
    mLines.push_back(
        Line("cause ", rootCause.id, ": ", Joined(rootCause.cutSet, " & "), " up ", Joined(rootCause.wayUp)));
}

void RecordingObserver::OnTreeFinished(const TreeFinished& tree)
{
    mLines.push_back(Line("finished ", tree.treeId, tree.isFault ? " fault" : " no fault"));
}
