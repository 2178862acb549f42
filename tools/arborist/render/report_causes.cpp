#include "tools/arborist/render/report_causes.h"

#include <map>
#include <set>
#include <string_view>

#include "tools/arborist/drawing/event_label.h"
#include "tools/arborist/render/html.h"

namespace command {

namespace {

using Cause = FaultTreeResult::RootCauseResult;

// What a person still reads; the rest is counted.
constexpr std::size_t MOST_CAUSES = 200;
constexpr std::size_t MOST_CUT_SETS = 5;
constexpr std::size_t MOST_FACTS = 20;

std::string Term(const std::string& label, const std::string& markup)
{
    return markup.empty() ? "" : Html("dt", label) + "<dd>" + markup + "</dd>\n";
}

std::string Ids(const std::vector<std::string>& ids)
{
    std::string markup;
    for (const std::string& id : ids) {
        markup += (markup.empty() ? "" : ", ") + Html("span", ShownId(id), "id");
    }
    return markup;
}

std::string RepairMarkup(const FaultTreeResult::RepairInfo& repair)
{
    const std::string operation = repair.GetOperation();
    std::string markup = Html("span", ShownId(repair.mId), "id");
    markup += operation.empty() ? "" : ", operation " + Html("code", operation);
    return markup + (repair.mExtra.empty() ? "" : ", extra " + Html("code", repair.mExtra)) + "<br>";
}

/// Writes the cards of one tree.
class CardWriter {
public:
    CardWriter(const DrawnTree& tree, const TreeEvidence& evidence) : mTree(tree), mEvidence(evidence)
    {
        for (std::size_t place = 0; place < tree.events.size(); ++place) {
            if (tree.events[place].isInCutSet) {
                mPlaces.emplace(PathOf(tree, place), place);
            }
        }
        for (const RecordedCause& cause : tree.tree->causes) {
            mCutSets[cause.id].push_back(&cause);
        }
    }

    std::string Card(const Cause& cause) const
    {
        const FaultTreeNode& node = *cause.mNode;
        std::string repairs;
        for (const FaultTreeResult::RepairInfo& repair : cause.mRepairInfos) {
            repairs += RepairMarkup(repair);
        }
        const std::vector<const RecordedCause*> cutSets = CutSetsOf(node.mId);
        return "<li class=\"card\">\n" + Html("h4", ShownId(node.mId), "id") + Paragraph(node.mName) + "<dl>\n"
            + Term("Description", cause.mFaultDescription.empty() ? "" : Ids({cause.mFaultDescription}))
            + Term("Suggestions", Ids(cause.mSuggestions)) + Term("Repairs", repairs)
            + Term("User defined", node.mUserDefined.empty() ? "" : Html("code", node.mUserDefined))
            + Term("Way to the top", Ways(cutSets)) + Term("Why", Why(cutSets)) + "</dl>\n</li>\n";
    }

private:
    std::vector<const RecordedCause*> CutSetsOf(const std::string& id) const
    {
        const auto found = mCutSets.find(id);
        return found == mCutSets.end() ? std::vector<const RecordedCause*>() : found->second;
    }

    std::string Way(const std::string& path) const
    {
        const auto place = mPlaces.find(path);
        if (place == mPlaces.end()) {
            return Html("span", path, "id");
        }
        std::string markup;
        for (const std::size_t step : WayUp(mTree, place->second)) {
            markup += (markup.empty() ? "" : " <span class=\"arrow\">&rarr;</span> ")
                + Html(markup.empty() ? "b" : "span", ShownId(mTree.events[step].event->id), "id");
        }
        return markup;
    }

    std::string Ways(const std::vector<const RecordedCause*>& cutSets) const
    {
        std::string markup;
        for (std::size_t i = 0; i < cutSets.size() && i < MOST_CUT_SETS; ++i) {
            const RecordedCause& cutSet = *cutSets[i];
            markup += cutSet.cutSet.size() > 1 ? Html("p", "Cut set of " + std::to_string(cutSet.cutSet.size())
                + " events that are present together:") : "";
            markup += "<ul class=\"way\">";
            for (const std::string& path : cutSet.cutSet) {
                markup += "<li>" + Way(path) + "</li>";
            }
            markup += "</ul>";
        }
        return cutSets.size() <= MOST_CUT_SETS ? markup
            : markup + Html("p", "and " + std::to_string(cutSets.size() - MOST_CUT_SETS) + " more cut sets", "quiet");
    }

    std::string Why(const std::vector<const RecordedCause*>& cutSets) const
    {
        std::string markup;
        std::set<std::string_view> told;
        for (std::size_t i = 0; i < cutSets.size() && i < MOST_CUT_SETS; ++i) {
            for (const std::string& path : cutSets[i]->cutSet) {
                const auto place = mPlaces.find(path);
                if (place != mPlaces.end() && told.insert(mTree.events[place->second].event->id).second) {
                    markup += EvidenceOf(mTree.events[place->second].event->id);
                }
            }
        }
        return markup;
    }

    std::string EvidenceOf(const std::string& id) const
    {
        const auto rules = mEvidence.find(id);
        if (rules == mEvidence.end()) {
            return "";
        }
        std::string markup;
        for (const RuleEvidence& rule : rules->second) {
            markup += "<p>" + Html("span", ShownId(id), "id") + ": " + Markup(rule.family) + " rule "
                + Html("span", ShownId(rule.rule), "id") + " fired</p><ul>";
            for (std::size_t i = 0; i < rule.facts.size() && i < MOST_FACTS; ++i) {
                markup += Html("li", rule.facts[i]);
            }
            markup += rule.facts.size() > MOST_FACTS ? "<li>and more</li></ul>" : "</ul>";
        }
        return markup;
    }

    const DrawnTree& mTree;
    const TreeEvidence& mEvidence;
    std::map<std::string, std::size_t> mPlaces;
    std::map<std::string, std::vector<const RecordedCause*>> mCutSets;
};

} // namespace

std::vector<const Cause*> DistinctCauses(const FaultTreeResult& result)
{
    std::vector<const Cause*> causes;
    std::set<std::string_view> ids;
    for (const auto& cause : result.mRootCauseResults) {
        if (ids.insert(cause->mNode->mId).second) {
            causes.push_back(cause.get());
        }
    }
    return causes;
}

std::string CauseCards(const DrawnTree& tree, const FaultTreeResult& result, const TreeEvidence& evidence)
{
    const std::vector<const Cause*> causes = DistinctCauses(result);
    const CardWriter writer(tree, evidence);
    std::string markup = "<h3>Root causes</h3>\n<ol class=\"causes\">\n";
    for (std::size_t i = 0; i < causes.size() && i < MOST_CAUSES; ++i) {
        markup += writer.Card(*causes[i]);
    }
    markup += "</ol>\n";
    return causes.size() <= MOST_CAUSES ? markup : markup + Paragraph("And "
        + std::to_string(causes.size() - MOST_CAUSES) + " more; \"arborist detect\" lists them all.");
}

} // namespace command
