#include "tools/arborist/render/explanation_text.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "diagnosis/analysis/gate_logic.h"
#include "diagnosis/results/rule_text.h"
#include "diagnosis/results/verdict_text.h"
#include "diagnosis/text/printable.h"
#include "tools/arborist/render/analysis_text.h"
#include "tools/arborist/render/cause_text.h"
#include "tools/arborist/render/explanation_words.h"
#include "tools/arborist/render/next_text.h"
#include "tools/arborist/terminal/colour.h"

namespace diagnosis::command {

namespace {


constexpr std::size_t STATUS_WIDTH = 9;

/// Writes one tree of an explanation.
class TreeText {
public:
    TreeText(const TreeReport& report, const ExplanationView& view, Colour colour)
        : mReport(report), mTree(report.tree), mView(view), mColour(colour)
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
        mText += CausesText(mReport, mView, mColour);
        WriteCutOffs();
        mText += AnalysisText(mTree, mView, mColour);
        WriteNext();
        return mText;
    }

    // No view leaves out what is open.
    std::string TextOfLeftOut()
    {
        if (!mReport.verdict.open.empty()) {
            WriteHead();
        }
        return mText;
    }

    std::string BriefText()
    {
        mText += BriefCausesText(mReport, mView, mColour);
        if (!mReport.IsFault()) {
            Line(mColour.Bold(Shown(mReport.Id())) + ": " + ColouredVerdict(mReport.verdict, mColour));
        } else if (!mReport.verdict.open.empty()) {
            Line(mColour.Bold(Shown(mReport.Id())) + ": " + VerdictWords(mReport.verdict).substr(2));
        }
        WriteOpen("  ");
        mText += AnalysisText(mTree, mView, mColour);
        WriteNext();
        return mText;
    }

private:
    void Line(const std::string& text) { mText += "  " + text + "\n"; }

    void WriteHead()
    {
        const std::size_t distinct = DistinctCausesOf(mTree).size();
        const std::string causes = Counted(mTree.causes.size(), "root cause", "root causes")
            + (distinct == mTree.causes.size() ? "" : " (" + std::to_string(distinct) + " distinct)");
        Line(mColour.Bold(Shown(mReport.Id())) + " (version " + Shown(mReport.result->mVersion) + "): "
            + (mReport.IsFault() ? mColour.Red("FAULT") + ", " + causes : "") + ColouredVerdict(mReport.verdict, mColour));
        WriteOpen("  ");
    }

    void WriteOpen(const std::string& indent)
    {
        for (const Evidence::OpenCheck& open : mReport.verdict.open) {
            Line(indent + mColour.Yellow("open") + ": " + OpenText(open));
        }
    }

    std::string GateText(std::size_t place) const
    {
        const RecordedEvent& event = mTree.events[place];
        if (event.type == Evidence::EventType::UNDEVELOPED) {
            return " (undeveloped)";
        }
        if (event.IsLeaf()) {
            return "";
        }
        return event.gate == Evidence::GateType::OR ? " OR" : event.gate == Evidence::GateType::AND ? " AND" : " (no gate)";
    }

    // How the gate evaluates the events below, and whether the event follows it.
    std::string LogicText(std::size_t place) const
    {
        const RecordedEvent& event = mTree.events[place];
        if (event.IsLeaf()) {
            const Reason reason = ReasonOfEvent(mTree, event);
            return reason == Reason::NONE ? "" : Evidence::ReasonText(reason);
        }
        const GateLogic logic = GateLogicOf(mTree, place);
        std::string text = std::to_string(logic.inError) + " of " + std::to_string(logic.below) + " in error";
        if (event.gate == Evidence::GateType::AND && logic.decider != RecordedEvent::NONE) {
            text += ", " + Shown(mTree.events[logic.decider].id) + " decides";
        }
        if (event.observable) {
            text += "; decided by its own rules";
            text += Evidence::IsInError(logic.outcome) == event.IsInError()
                ? "" : std::string(", its gate says ") + Evidence::StateText(logic.outcome);
        }
        return text;
    }

    std::string EventText(std::size_t place) const
    {
        const RecordedEvent& event = mTree.events[place];
        std::string text = (event.IsInError() ? mColour.Bold(Shown(event.id)) : Shown(event.id)) + GateText(place);
        text += event.name.empty() ? "" : "  " + Printable(event.name);
        const std::string logic = LogicText(place);
        return logic.empty() ? text : text + "  " + mColour.Faint("[" + logic + "]");
    }

    void WriteTree()
    {
        std::vector<bool> isLastAt;
        for (std::size_t place = 0; place < mTree.events.size(); ++place) {
            const RecordedEvent& event = mTree.events[place];
            const bool isLast = event.parent == RecordedEvent::NONE || event.end == mTree.events[event.parent].end;
            isLastAt.resize(event.depth);
            std::string bars;
            for (std::size_t depth = 1; depth < event.depth; ++depth) {
                bars += isLastAt[depth] ? "   " : "│  ";
            }
            mText += "  " + ColouredStatus(event.status, STATUS_WIDTH, mColour)
                + mColour.Faint(bars + (event.depth == 0 ? "" : isLast ? "└─ " : "├─ "))
                + EventText(place) + "\n";
            isLastAt.push_back(isLast);
            const std::string below = bars + (event.depth == 0 ? "" : isLast ? "   " : "│  ")
                + (event.end > place + 1 ? "│  " : "   ");
            WriteRules(event, std::string(STATUS_WIDTH, ' ') + mColour.Faint(below));
        }
    }

    void WriteRules(const RecordedEvent& event, const std::string& indent)
    {
        const Evidence::Event* evidence = mTree.EvidenceOf(event);
        const std::vector<PlacedRule> rules = evidence == nullptr ? std::vector<PlacedRule>() : RulesOf(*evidence);
        if (rules.empty()) {
            return;
        }
        if (!mToldEvidence.insert(event.evidence).second) {
            Line(indent + mColour.Faint("rules as above"));
            return;
        }
        for (const PlacedRule& placed : rules) {
            if (IsShown(placed.rule, mView)) {
                WriteRule(placed, indent);
            }
        }
    }

    void WriteRule(const PlacedRule& placed, const std::string& indent)
    {
        const Evidence::Rule& rule = placed.rule;
        const std::string family = Evidence::FamilyText(rule.GetFamily());
        const std::string joint = placed.inGroup && placed.place > 0 ? "and " : "";
        Line(indent + joint + "rule " + Shown(rule.name) + (family.empty() ? "" : " (" + family + ")") + ": "
            + VerdictText(rule, mColour) + " " + Evidence::ReasonText(rule.reason));
        for (const std::string& line : RuleLines(rule)) {
            Line(indent + "    " + line);
        }
    }

    void WriteShownEvents()
    {
        for (const std::size_t place : ShownEvents(mTree, mView)) {
            const RecordedEvent& event = mTree.events[place];
            Line(ColouredStatus(event.status, STATUS_WIDTH, mColour) + EventText(place));
            const std::string indent(STATUS_WIDTH + 3, ' ');
            Line(indent + mColour.Faint("path " + Joined(mTree.PathIds(place), " / ")));
            WriteRules(event, indent);
        }
    }

    void WriteNext()
    {
        if (mView.next > 0) {
            mText += NextChecksText(mReport, mView.next, mColour);
        }
    }

    void WriteCutOffs()
    {
        if (mView.IsNarrow()) {
            return;
        }
        for (const CutOff& cutOff : CutOffsOf(mTree)) {
            Line(mColour.Bold("Cut off by ") + Shown(mTree.events[cutOff.event].id)
                + ", which its own rules keep from error: " + Joined(IdsAt(mTree, cutOff.leaves), ", "));
        }
    }

    const TreeReport& mReport;
    const RecordedTree& mTree;
    const ExplanationView& mView;
    Colour mColour;
    std::string mText;
    std::unordered_set<std::size_t> mToldEvidence;
};

// The narrowing options that were given: "--event A and --rule r".
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
    if (report.failure) {
        return text + "  " + colour.Yellow("NOT DIAGNOSED") + "\n";
    }
    text += view.next > 0 ? MissingSourcesText(report.trees, colour) : "";
    bool hasTree = false;
    for (const TreeReport& shown : report.trees) {
        TreeText tree(shown, view, colour);
        if (!HasShown(shown.tree, view)) {
            text += tree.TextOfLeftOut();
            continue;
        }
        const bool isFirst = !std::exchange(hasTree, true);
        text += view.brief ? tree.BriefText() : (isFirst ? "" : "\n") + tree.Text();
    }
    text += hasTree ? "" : "  nothing in any tree fits " + NarrowingOptions(view) + "\n";
    return text + "  " + TreesText(report.trees) + "\n";
}

} // namespace diagnosis::command
