#include "tools/arborist/detection/evidence_recorder.h"

#include <string_view>

#include "tools/arborist/bundle/moment.h"

namespace command {

namespace {

// "gt" and its kin as people write them.
std::string Comparison(std::string_view word)
{
    static const std::map<std::string_view, std::string> SIGNS = {{"gt", "greater than"}, {"lt", "less than"},
        {"ge", "at least"}, {"le", "at most"}, {"eq", "equal to"}, {"ne", "other than"}};
    const auto sign = SIGNS.find(word);
    return sign == SIGNS.end() ? std::string(word) : sign->second;
}

std::string Text(std::string_view text)
{
    return std::string(text);
}

// What a file holds ends in a line end as a rule.
std::string WithoutLineEnd(std::string_view text)
{
    return Text(text.substr(0, text.find_last_not_of("\r\n") + 1));
}

// Statements of rule files are often laid out over lines.
std::string OnOneLine(std::string_view text)
{
    std::string line;
    for (const char letter : text) {
        const bool isBlank = letter == ' ' || (letter >= '\t' && letter <= '\r');
        if (!isBlank) {
            line += letter;
        } else if (!line.empty() && line.back() != ' ') {
            line += ' ';
        }
    }
    return line;
}

} // namespace

void EvidenceRecorder::OnTreeStarted(const TreeStarted& tree)
{
    DetectionRecorder::OnTreeStarted(tree);
    mEvidence.emplace_back();
}

void EvidenceRecorder::OnEventAsked(const EventAsked&)
{
    mOfEvent.clear();
}

void EvidenceRecorder::OnRuleAsked(const RuleAsked& rule)
{
    DetectionRecorder::OnRuleAsked(rule);
    mFacts.clear();
}

void EvidenceRecorder::OnAlarmWindow(const AlarmWindowSeen& window)
{
    DetectionRecorder::OnAlarmWindow(window);
    if (!window.hit) {
        return;
    }
    const std::string ids = std::to_string(window.firstId)
        + (window.lastId == window.firstId ? "" : " to " + std::to_string(window.lastId));
    mFacts.push_back("event log, ids " + ids + ", window \"" + Text(window.window) + "\" since "
        + FormatMoment(window.start).value_or(std::to_string(window.start)) + ": reached "
        + std::to_string(window.reached) + ", needed " + std::to_string(window.threshold));
}

void EvidenceRecorder::OnNodeFile(const NodeFileSeen& node)
{
    DetectionRecorder::OnNodeFile(node);
    const std::string content = node.readable ? ": " + WithoutLineEnd(node.value) : " can't be read";
    mFacts.push_back("file " + Text(node.path) + content);
}

void EvidenceRecorder::OnFormula(const FormulaSeen& formula)
{
    mFacts.push_back("formula " + Text(formula.expression) + " = " + Text(formula.result));
}

void EvidenceRecorder::OnQuery(const QuerySeen& query)
{
    DetectionRecorder::OnQuery(query);
    mFacts.push_back("database " + Text(query.database) + ", " + std::to_string(query.rows) + " row"
        + (query.rows == 1 ? "" : "s") + " of: " + OnOneLine(query.sql));
}

void EvidenceRecorder::OnComparison(const ComparisonSeen& comparison)
{
    if (comparison.holds) {
        mFacts.push_back(Text(comparison.key.empty() ? comparison.paramId : comparison.key) + " is "
            + WithoutLineEnd(comparison.observed) + ", which is " + Comparison(comparison.logic) + " "
            + Text(comparison.configured));
    }
}

void EvidenceRecorder::OnCodeRun(const CodeRunSeen& run)
{
    if (run.answer) {
        mFacts.push_back("the host's test " + Text(run.detectCode) + " found the fault");
    }
}

void EvidenceRecorder::OnRuleDecided(const RuleDecided& rule)
{
    DetectionRecorder::OnRuleDecided(rule);
    if (rule.verdict == Verdict::FIRED) {
        mOfEvent.push_back({Text(rule.ruleName), FamilyText(rule.family), mFacts});
    }
}

void EvidenceRecorder::OnEventDecided(const EventDecided& event)
{
    if (event.fired && !mEvidence.empty()) {
        mEvidence.back()[Text(event.eventId)] = mOfEvent;
    }
}

} // namespace command
