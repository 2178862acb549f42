#include "tools/arborist/render/analysis_text.h"

#include <cstdio>

#include "diagnosis/analysis/minimal_sets.h"
#include "diagnosis/results/rule_text.h"
#include "diagnosis/text/printable.h"
#include "tools/arborist/render/explanation_words.h"

namespace diagnosis::command {

namespace {

class AnalysisWriter {
public:
    AnalysisWriter(const RecordedTree& tree, const ExplanationView& view, Colour colour)
        : mTree(tree), mView(view), mColour(colour)
    {
    }

    std::string Text()
    {
        if (mView.nearMisses > 0) {
            WriteNearMisses();
        }
        if (mView.minimal) {
            WriteMinimalSets();
        }
        return mText;
    }

private:
    void Line(const std::string& text) { mText += "  " + text + "\n"; }

    void WriteNearMisses()
    {
        const NearMisses nearMisses = ShownNearMisses(mTree, mView);
        if (nearMisses.sets.empty()) {
            Line(mColour.Bold("Near misses") + ": none up to "
                + Counted(mView.nearMisses, "event", "events") + " short"
                + (nearMisses.isComplete ? "" : " among those that were looked at"));
        }
        for (const NearMiss& nearMiss : nearMisses.sets) {
            std::string text = mColour.Bold("Near miss") + ", " + Counted(nearMiss.missing.size(), "event", "events")
                + " short: " + mColour.Yellow(Joined(IdsAt(mTree, nearMiss.missing), " + "));
            if (!nearMiss.present.empty()) {
                text += " beside " + Joined(IdsAt(mTree, nearMiss.present), " + ");
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
        const RecordedEvent& event = mTree.events[place];
        Line("    " + Joined(mTree.PathIds(place), " / ") + "  " + Evidence::StateText(event.status));
        const Evidence::Event* evidence = mTree.EvidenceOf(event);
        const std::vector<PlacedRule> rules = evidence == nullptr ? std::vector<PlacedRule>() : RulesOf(*evidence);
        if (rules.empty()) {
            const Reason reason = ReasonOfEvent(mTree, event);
            if (reason != Reason::NONE) {
                Line(std::string("      ") + Evidence::ReasonText(reason));
            }
            return;
        }
        for (const PlacedRule& placed : rules) {
            const Evidence::Rule& rule = placed.rule;
            const std::string summary = RuleSummary(rule);
            Line("      rule " + Shown(rule.name) + ": " + VerdictText(rule, mColour) + " "
                + Evidence::ReasonText(rule.reason) + (summary.empty() ? "" : ", " + summary));
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
            + Counted(minimal.distinct, "distinct set", "distinct sets") + " and "
            + Counted(minimal.listed, "entry", "entries") + " of the list");
        for (const DistinctCause& set : minimal.sets) {
            Line("    " + Joined(set.ids, " + ") + TimesText(set.times, mColour));
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

    const RecordedTree& mTree;
    const ExplanationView& mView;
    Colour mColour;
    std::string mText;
};

} // namespace

std::string AnalysisText(const RecordedTree& tree, const ExplanationView& view, Colour colour)
{
    return AnalysisWriter(tree, view, colour).Text();
}

} // namespace diagnosis::command
