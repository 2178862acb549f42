#include "tools/arborist/render/cause_text.h"

#include <utility>

#include "diagnosis/results/rule_text.h"
#include "diagnosis/text/printable.h"
#include "tools/arborist/render/explanation_words.h"

namespace diagnosis::command {

namespace {

class CauseText {
public:
    CauseText(const TreeReport& report, const ExplanationView& view, Colour colour)
        : mReport(report), mTree(report.tree), mView(view), mColour(colour)
    {
    }

    std::string Text()
    {
        for (const DistinctCause& cause : ShownCauses(mTree, mView)) {
            const std::string name = NameOf(cause);
            Line(mColour.Bold("Root cause ") + mColour.Red(Joined(cause.ids, " + "))
                + (name.empty() ? "" : "  " + Printable(name)) + TimesText(cause.times, mColour));
            for (const std::size_t member : mTree.causes[cause.first].members) {
                WriteMember(member);
            }
            const std::string ids = IdsOf(cause);
            if (!ids.empty()) {
                Line("    " + ids);
            }
        }
        return mText;
    }

    std::string BriefText()
    {
        for (const DistinctCause& cause : ShownCauses(mTree, mView)) {
            mText += "  " + mColour.Bold(Shown(mReport.Id())) + ": " + mColour.Red(Joined(cause.ids, " + "));
            const std::string name = NameOf(cause);
            const std::string ids = IdsOf(cause);
            mText += (name.empty() ? "" : "  " + Printable(name)) + (ids.empty() ? "" : "  " + ids);
            mText += TimesText(cause.times, mColour) + "\n";
        }
        return mText;
    }

private:
    void Line(const std::string& text) { mText += "  " + text + "\n"; }

    std::string NameOf(const DistinctCause& cause) const
    {
        const auto& result = mTree.causes[cause.first].result;
        return result == nullptr ? "" : result->mNode->mName;
    }

    // The ids of its description, suggestions and repairs, with two blanks between them.
    std::string IdsOf(const DistinctCause& cause) const
    {
        const auto& result = mTree.causes[cause.first].result;
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

    void WriteMember(std::size_t member)
    {
        if (member == RecordedEvent::NONE) {
            return;
        }
        const RecordedEvent& event = mTree.events[member];
        Line("    " + Joined(mTree.PathIds(member), " / "));
        const Evidence::Event* evidence = mTree.EvidenceOf(event);
        if (evidence == nullptr) {
            return;
        }
        for (const PlacedRule& placed : RulesOf(*evidence)) {
            const Evidence::Rule& rule = placed.rule;
            if (rule.verdict == Evidence::Verdict::FIRED) {
                const std::string summary = RuleSummary(rule);
                Line("      rule " + Shown(rule.name) + ": " + Evidence::ReasonText(rule.reason)
                    + (summary.empty() ? "" : ", " + summary));
            }
        }
    }

    const TreeReport& mReport;
    const RecordedTree& mTree;
    const ExplanationView& mView;
    Colour mColour;
    std::string mText;
};

} // namespace

std::string CausesText(const TreeReport& report, const ExplanationView& view, Colour colour)
{
    return CauseText(report, view, colour).Text();
}

std::string BriefCausesText(const TreeReport& report, const ExplanationView& view, Colour colour)
{
    return CauseText(report, view, colour).BriefText();
}

} // namespace diagnosis::command
