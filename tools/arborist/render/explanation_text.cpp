#include "tools/arborist/render/explanation_text.h"

#include <algorithm>
#include <cstdio>
#include <unordered_set>
#include <utility>

#include "tools/arborist/explanation/analysis/minimal_sets.h"
#include "tools/arborist/explanation/gate_logic.h"
#include "tools/arborist/render/colour.h"
#include "tools/arborist/render/rule_text.h"
#include "tools/arborist/text/printable.h"

namespace command {

namespace {

using Folded = ExplainedEvent::Folded;

constexpr std::size_t STATUS_WIDTH = 9;

std::string Shown(const std::string& text)
{
    return text.empty() ? "(empty)" : Printable(text);
}

std::string Joined(const std::vector<std::string>& texts, const char* separator)
{
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : separator) + Shown(text);
    }
    return joined;
}

std::string Number(std::uint64_t number, const std::string& one, const std::string& several)
{
    return std::to_string(number) + " " + (number == 1 ? one : several);
}

/// Writes one tree of an explanation.
class TreeText {
public:
    TreeText(const ExplainedTree& tree, const FaultTreeResult* result, const ExplanationView& view, Colour colour)
        : mTree(tree), mResult(result), mView(view), mColour(colour)
    {
    }

    std::string Text()
    {
        WriteHead();
        if (mView.IsNarrow()) {
            WriteShownEvents();
        } else {
            WriteTree();
        }
        WriteCauses();
        WriteCutOffs();
        WriteAnalyses();
        return mText;
    }

    std::string BriefText()
    {
        for (const DistinctCause& cause : ShownCauses(mTree, mView)) {
            mText += "  " + mColour.Bold(Shown(mTree.id)) + ": " + mColour.Red(Joined(cause.ids, " + "));
            const std::string name = NameOf(cause);
            const std::string ids = IdsOf(cause);
            mText += (name.empty() ? "" : "  " + Printable(name)) + (ids.empty() ? "" : "  " + ids);
            mText += Times(cause.times) + "\n";
        }
        if (!mTree.isFault) {
            mText += "  " + mColour.Bold(Shown(mTree.id)) + ": " + mColour.Green("no fault") + "\n";
        }
        WriteAnalyses();
        return mText;
    }

private:
    void Line(const std::string& text) { mText += "  " + text + "\n"; }

    std::string Status(EventStatus status) const
    {
        std::string word = GetElemTypeName(status);
        word.resize(std::max(word.size(), STATUS_WIDTH), ' ');
        return IsError(status) ? mColour.Red(word)
            : status == EventStatus::UNKNOWN ? mColour.Yellow(word) : mColour.Green(word);
    }

    std::string Verdict(const ExplainedRule& rule) const
    {
        const std::string word = VerdictWord(rule.verdict);
        switch (rule.verdict) {
        case DetectionObserver::Verdict::FIRED:
            return mColour.Red(word);
        case DetectionObserver::Verdict::NOT_FIRED:
            return mColour.Green(word);
        case DetectionObserver::Verdict::SKIPPED:
            return mColour.Yellow(word);
        }
        return word;
    }

    void WriteHead()
    {
        const std::size_t distinct = DistinctCausesOf(mTree).size();
        const std::string causes = Number(mTree.causes.size(), "root cause", "root causes")
            + (distinct == mTree.causes.size() ? "" : " (" + std::to_string(distinct) + " distinct)");
        Line(mColour.Bold(Shown(mTree.id)) + " (version " + Shown(mResult == nullptr ? mTree.version : mResult->mVersion) + "): "
            + (mTree.isFault ? mColour.Red("FAULT") + ", " + causes : mColour.Green("no fault")));
    }

    std::string GateText(std::size_t place) const
    {
        const ExplainedEvent& event = mTree.events[place];
        if (event.kind == Folded::Kind::UNDEVELOPED) {
            return " (undeveloped)";
        }
        if (event.IsLeaf()) {
            return "";
        }
        return event.gate == Folded::GateKind::OR ? " OR" : event.gate == Folded::GateKind::AND ? " AND" : " (no gate)";
    }

    // What the gate makes of what is below, and whether the event follows it.
    std::string LogicText(std::size_t place) const
    {
        const ExplainedEvent& event = mTree.events[place];
        if (event.IsLeaf()) {
            const Reason reason = ReasonOfEvent(mTree, event);
            return reason == Reason::NONE ? "" : DetectionObserver::ReasonText(reason);
        }
        const GateLogic logic = GateLogicOf(mTree, place);
        std::string text = std::to_string(logic.inError) + " of " + std::to_string(logic.below) + " in error";
        if (event.gate == Folded::GateKind::AND && logic.decider != ExplainedEvent::NONE) {
            text += ", " + Shown(mTree.events[logic.decider].id) + " decides";
        }
        if (event.observable) {
            text += "; decided by its own rules";
            text += IsError(logic.outcome) == event.IsInError()
                ? "" : std::string(", its gate says ") + GetElemTypeName(logic.outcome);
        }
        return text;
    }

    std::string EventText(std::size_t place) const
    {
        const ExplainedEvent& event = mTree.events[place];
        std::string text = (event.IsInError() ? mColour.Bold(Shown(event.id)) : Shown(event.id)) + GateText(place);
        text += event.name.empty() ? "" : "  " + Printable(event.name);
        const std::string logic = LogicText(place);
        return logic.empty() ? text : text + "  " + mColour.Faint("[" + logic + "]");
    }

    void WriteTree()
    {
        std::vector<bool> isLastAt;
        for (std::size_t place = 0; place < mTree.events.size(); ++place) {
            const ExplainedEvent& event = mTree.events[place];
            const bool isLast = event.parent == ExplainedEvent::NONE || event.end == mTree.events[event.parent].end;
            isLastAt.resize(event.depth);
            std::string bars;
            for (std::size_t depth = 1; depth < event.depth; ++depth) {
                bars += isLastAt[depth] ? "   " : "│  ";
            }
            mText += "  " + Status(event.status) + mColour.Faint(bars + (event.depth == 0 ? "" : isLast ? "└─ " : "├─ "))
                + EventText(place) + "\n";
            isLastAt.push_back(isLast);
            const std::string below = bars + (event.depth == 0 ? "" : isLast ? "   " : "│  ")
                + (event.end > place + 1 ? "│  " : "   ");
            WriteRules(event, std::string(STATUS_WIDTH, ' ') + mColour.Faint(below));
        }
    }

    void WriteRules(const ExplainedEvent& event, const std::string& indent)
    {
        const ExplainedEvidence* evidence = mTree.EvidenceOf(event);
        if (evidence == nullptr || evidence->rules.empty()) {
            return;
        }
        if (!mToldEvidence.insert(event.evidence).second) {
            Line(indent + mColour.Faint("rules as above"));
            return;
        }
        for (const ExplainedRule& rule : evidence->rules) {
            if (IsShown(rule, mView)) {
                WriteRule(rule, indent);
            }
        }
    }

    void WriteRule(const ExplainedRule& rule, const std::string& indent)
    {
        const std::string family = DetectionObserver::FamilyText(rule.family);
        const std::string joint = rule.inGroup && rule.place > 0 ? "and " : "";
        Line(indent + joint + "rule " + Shown(rule.name) + (family.empty() ? "" : " (" + family + ")") + ": "
            + Verdict(rule) + " " + DetectionObserver::ReasonText(rule.reason));
        for (const std::string& line : RuleLines(rule)) {
            Line(indent + "    " + line);
        }
    }

    void WriteShownEvents()
    {
        for (const std::size_t place : ShownEvents(mTree, mView)) {
            const ExplainedEvent& event = mTree.events[place];
            Line(Status(event.status) + EventText(place));
            const std::string indent(STATUS_WIDTH + 3, ' ');
            Line(indent + mColour.Faint("path " + Joined(mTree.PathIds(place), " / ")));
            WriteRules(event, indent);
        }
    }

    std::string Times(std::uint64_t times) const
    {
        return times == 1 ? "" : "  " + mColour.Faint("(stands " + std::to_string(times) + " times in the list)");
    }

    const FaultTreeResult::RootCauseResult* ResultOf(const DistinctCause& cause) const
    {
        const bool isThere = mResult != nullptr && cause.first < mResult->mRootCauseResults.size();
        return isThere ? mResult->mRootCauseResults[cause.first].get() : nullptr;
    }

    std::string NameOf(const DistinctCause& cause) const
    {
        const auto* result = ResultOf(cause);
        return result == nullptr ? "" : result->mNode->mName;
    }

    // Of its description, suggestions and repairs, with two blanks between.
    std::string IdsOf(const DistinctCause& cause) const
    {
        const auto* result = ResultOf(cause);
        if (result == nullptr) {
            return "";
        }
        std::vector<std::string> repairs;
        for (const auto& repair : result->mRepairInfos) {
            repairs.push_back(repair.mId);
        }
        const std::pair<const char*, std::string> all[] = {
            {"description ", Printable(result->mFaultDescription)},
            {"suggestions ", Joined(result->mSuggestions, ", ")}, {"repairs ", Joined(repairs, ", ")}};
        std::string text;
        for (const auto& [label, ids] : all) {
            text += ids.empty() ? "" : (text.empty() ? "" : "  ") + (label + ids);
        }
        return text;
    }

    void WriteCauses()
    {
        for (const DistinctCause& cause : ShownCauses(mTree, mView)) {
            const std::string name = NameOf(cause);
            Line(mColour.Bold("Root cause ") + mColour.Red(Joined(cause.ids, " + "))
                + (name.empty() ? "" : "  " + Printable(name)) + Times(cause.times));
            for (const std::size_t member : mTree.causes[cause.first].members) {
                WriteMember(member);
            }
            const std::string ids = IdsOf(cause);
            if (!ids.empty()) {
                Line("    " + ids);
            }
        }
    }

    void WriteMember(std::size_t member)
    {
        if (member == ExplainedEvent::NONE) {
            return;
        }
        const ExplainedEvent& event = mTree.events[member];
        Line("    " + Joined(mTree.PathIds(member), " / "));
        const ExplainedEvidence* evidence = mTree.EvidenceOf(event);
        if (evidence == nullptr) {
            return;
        }
        for (const ExplainedRule& rule : evidence->rules) {
            if (rule.verdict == DetectionObserver::Verdict::FIRED) {
                const std::string summary = RuleSummary(rule);
                Line("      rule " + Shown(rule.name) + ": " + DetectionObserver::ReasonText(rule.reason)
                    + (summary.empty() ? "" : ", " + summary));
            }
        }
    }

    std::vector<std::string> IdsAt(const std::vector<std::size_t>& places) const
    {
        std::vector<std::string> ids;
        for (const std::size_t place : places) {
            ids.push_back(mTree.events[place].id);
        }
        return ids;
    }

    void WriteCutOffs()
    {
        if (mView.IsNarrow()) {
            return;
        }
        for (const CutOff& cutOff : CutOffsOf(mTree)) {
            Line(mColour.Bold("Cut off by ") + Shown(mTree.events[cutOff.event].id)
                + ", which its own rules keep from error: " + Joined(IdsAt(cutOff.leaves), ", "));
        }
    }

    // What was asked for by its own option.
    void WriteAnalyses()
    {
        if (mView.nearMisses > 0) {
            WriteNearMisses();
        }
        if (mView.minimal) {
            WriteMinimalSets();
        }
    }

    void WriteNearMisses()
    {
        const NearMisses nearMisses = ShownNearMisses(mTree, mView);
        if (nearMisses.sets.empty()) {
            Line(mColour.Bold("Near misses") + ": none up to "
                + Number(mView.nearMisses, "event", "events") + " short"
                + (nearMisses.isComplete ? "" : " among those that were looked at"));
        }
        for (const NearMiss& nearMiss : nearMisses.sets) {
            std::string text = mColour.Bold("Near miss") + ", " + Number(nearMiss.missing.size(), "event", "events")
                + " short: " + mColour.Yellow(Joined(IdsAt(nearMiss.missing), " + "));
            if (!nearMiss.present.empty()) {
                text += " beside " + Joined(IdsAt(nearMiss.present), " + ");
            }
            Line(text);
            for (const std::size_t place : nearMiss.missing) {
                WriteMissing(place);
            }
        }
        if (nearMisses.leftOut > 0 || !nearMisses.isComplete) {
            Line((nearMisses.isComplete ? "" : "at least ") + std::to_string(nearMisses.leftOut) + " more left out");
        }
    }

    void WriteMissing(std::size_t place)
    {
        const ExplainedEvent& event = mTree.events[place];
        Line("    " + Joined(mTree.PathIds(place), " / ") + "  " + GetElemTypeName(event.status));
        const ExplainedEvidence* evidence = mTree.EvidenceOf(event);
        if (evidence == nullptr || evidence->rules.empty()) {
            const Reason reason = ReasonOfEvent(mTree, event);
            if (reason != Reason::NONE) {
                Line(std::string("      ") + DetectionObserver::ReasonText(reason));
            }
            return;
        }
        for (const ExplainedRule& rule : evidence->rules) {
            const std::string summary = RuleSummary(rule);
            Line("      rule " + Shown(rule.name) + ": " + Verdict(rule) + " "
                + DetectionObserver::ReasonText(rule.reason) + (summary.empty() ? "" : ", " + summary));
        }
    }

    void WriteMinimalSets()
    {
        const MinimalSets minimal = FindMinimalSets(mTree);
        if (minimal.sets.empty()) {
            Line(mColour.Bold("Minimal cut sets") + ": none");
            return;
        }
        Line(mColour.Bold("Minimal cut sets") + ": " + std::to_string(minimal.sets.size()) + ", of "
            + Number(minimal.distinct, "distinct set", "distinct sets") + " and "
            + Number(minimal.listed, "entry", "entries") + " of the list");
        for (const DistinctCause& set : minimal.sets) {
            Line("    " + Joined(set.ids, " + ") + Times(set.times));
        }
        Line(mColour.Bold("Share of the minimal cut sets"));
        for (const EventShare& share : minimal.shares) {
            char percent[16];
            std::snprintf(percent, sizeof percent, "%5.1f%%", share.share * 100);
            Line("    " + std::string(percent) + "  " + Shown(share.id));
        }
        Line(mColour.Bold("Repair ") + Joined(minimal.repairs.ids, ", ") + ": no root cause would remain"
            + (minimal.repairs.isSmallest ? "" : " (a small set; a smaller one may exist)"));
    }

    const ExplainedTree& mTree;
    const FaultTreeResult* mResult;
    const ExplanationView& mView;
    Colour mColour;
    std::string mText;
    std::unordered_set<std::size_t> mToldEvidence;
};

} // namespace

namespace {

// "--event A and --rule r" of those that were given.
std::string NarrowingOptions(const ExplanationView& view)
{
    std::string options;
    for (const auto& [option, word] : {std::pair("--event ", view.event), std::pair("--rule ", view.rule),
             std::pair("--cause ", view.cause)}) {
        options += word.empty() ? "" : (options.empty() ? "" : " and ") + (option + Shown(word));
    }
    return options;
}

} // namespace

std::string ExplanationText(const DetectionReport& report, const ExplanationView& view, bool isColoured)
{
    const Colour colour(isColoured);
    std::string text = colour.Bold(Shown(report.bundle)) + "\n";
    if (report.failure || report.explanation == nullptr) {
        return text + "  " + colour.Yellow("NOT DIAGNOSED") + "\n";
    }
    bool hasTree = false;
    for (std::size_t i = 0; i < report.explanation->trees.size(); ++i) {
        const FaultTreeResult* result = i < report.results.size() ? report.results[i].get() : nullptr;
        if (!HasShown(report.explanation->trees[i], view)) {
            continue;
        }
        TreeText tree(report.explanation->trees[i], result, view, colour);
        const bool isFirst = !std::exchange(hasTree, true);
        text += view.brief ? tree.BriefText() : (isFirst ? "" : "\n") + tree.Text();
    }
    return hasTree ? text : text + "  nothing in any tree fits " + NarrowingOptions(view) + "\n";
}

} // namespace command
