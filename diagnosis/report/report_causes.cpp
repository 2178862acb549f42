#include "diagnosis/report/report_causes.h"

#include <optional>
#include <unordered_set>

#include <json/writer.h>

#include "diagnosis/analysis/distinct_causes.h"
#include "diagnosis/analysis/gate_logic.h"
#include "diagnosis/drawing/event_label.h"
#include "diagnosis/report/html.h"
#include "diagnosis/results/rule_text.h"
#include "diagnosis/text/json_text.h"

namespace diagnosis {

namespace {

using Cause = FaultTreeResult::RootCauseResult;

// More cards than a person reads; the rest is only counted.
constexpr std::size_t MOST_CAUSES = 200;
constexpr std::size_t MOST_MEMBERS = 50;
constexpr std::size_t MOST_LINES = 20;

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

std::optional<Json::Value> ObjectIn(const std::string& text)
{
    std::string problem;
    auto value = ParseEngineJson(text, problem);
    return value && value->isObject() ? value : std::nullopt;
}

std::string JsonText(const Json::Value& value)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return value.isString() ? value.asString() : Json::writeString(builder, value);
}

// One row for each member. A member whose text is an object itself, as the extra of a repair has them by custom, has a
// row for each of that object's members.
std::string ExtraRows(const Json::Value& object)
{
    std::string rows;
    for (const std::string& name : object.getMemberNames()) {
        const std::string head = Html("th", name);
        const std::string text = JsonText(object[name]);
        const auto inner = ObjectIn(text);
        if (!inner || inner->empty()) {
            rows += "<tr>" + head + "<td colspan=\"2\"><code>" + Markup(text) + "</code></td></tr>";
            continue;
        }
        for (const std::string& member : inner->getMemberNames()) {
            rows += "<tr>" + head + Html("th", member) + "<td>" + Html("code", JsonText((*inner)[member])) + "</td></tr>";
        }
    }
    return rows;
}

// A table where the text is a JSON object; otherwise the text.
std::string ExtraMarkup(const std::string& extra)
{
    const auto object = ObjectIn(extra);
    if (object && !object->empty()) {
        return "<table class=\"extra\">" + ExtraRows(*object) + "</table>";
    }
    return (extra.empty() ? "" : ", extra " + Html("code", extra)) + "<br>";
}

std::string RepairMarkup(const FaultTreeResult::RepairInfo& repair)
{
    const std::string operation = repair.GetOperation();
    std::string markup = Html("span", ShownId(repair.mId), "id");
    markup += operation.empty() ? "" : ", operation " + Html("code", operation);
    return markup + ExtraMarkup(repair.mExtra);
}

std::string RuleHead(const Evidence::Rule& rule)
{
    const std::string family = Evidence::FamilyText(rule.GetFamily());
    return Markup(family + (family.empty() ? "rule " : " rule ")) + Html("span", ShownId(rule.name), "id") + ": "
        + Evidence::VerdictText(rule.verdict) + " " + Evidence::ReasonText(rule.reason);
}

// Lines that belong to the one before are indented.
std::string LookedAt(const Evidence::Rule& rule)
{
    const std::vector<std::string> lines = RuleLines(rule);
    std::string markup;
    for (std::size_t i = 0; i < lines.size() && i < MOST_LINES; ++i) {
        const auto text = lines[i].find_first_not_of(' ');
        markup += Html("li", text == std::string::npos ? "" : lines[i].substr(text), text == 0 ? "" : "sub");
    }
    markup += lines.size() > MOST_LINES ? "<li>and more</li>" : "";
    return markup.empty() ? "" : "<ul>" + markup + "</ul>";
}

/// Writes the cards of one tree.
class CardWriter {
public:
    explicit CardWriter(const RecordedTree& tree) : mTree(tree) {}

    std::string Card(const DistinctCause& distinct, const Cause& cause) const
    {
        std::string repairs;
        for (const FaultTreeResult::RepairInfo& repair : cause.mRepairInfos) {
            repairs += RepairMarkup(repair);
        }
        const FaultTreeNode& node = *cause.mNode;
        const std::vector<std::size_t> members = MembersOf(distinct);
        return "<li class=\"card\">\n" + Html("h4", ShownId(node.mId), "id") + Paragraph(node.mName) + "<dl>\n"
            + Term("Description", cause.mFaultDescription.empty() ? "" : Ids({cause.mFaultDescription}))
            + Term("Suggestions", Ids(cause.mSuggestions)) + Term("Repairs", repairs)
            + Term("User defined", node.mUserDefined.empty() ? "" : Html("code", node.mUserDefined))
            + Term("Way to the top", Ways(members)) + Term("Why", Why(members))
            + Term("In the list", distinct.times == 1 ? "" : std::to_string(distinct.times) + " times")
            + "</dl>\n</li>\n";
    }

private:
    // The members that a path names.
    std::vector<std::size_t> MembersOf(const DistinctCause& distinct) const
    {
        std::vector<std::size_t> members = mTree.causes[distinct.first].members;
        std::erase(members, RecordedEvent::NONE);
        return members;
    }

    std::string Way(std::size_t member) const
    {
        std::string markup;
        for (; member != RecordedEvent::NONE; member = mTree.events[member].parent) {
            markup += (markup.empty() ? "" : " <span class=\"arrow\">&rarr;</span> ")
                + Html(markup.empty() ? "b" : "span", ShownId(mTree.events[member].id), "id");
        }
        return markup;
    }

    std::string Ways(const std::vector<std::size_t>& members) const
    {
        std::string markup = members.size() > 1
            ? Html("p", "Cut set of " + std::to_string(members.size()) + " events that are present together:") : "";
        markup += members.empty() ? "" : "<ul class=\"way\">";
        for (std::size_t i = 0; i < members.size() && i < MOST_MEMBERS; ++i) {
            markup += "<li>" + Way(members[i]) + "</li>";
        }
        markup += members.size() > MOST_MEMBERS
            ? Html("li", "and " + std::to_string(members.size() - MOST_MEMBERS) + " more", "quiet") : "";
        return markup + (members.empty() ? "" : "</ul>");
    }

    std::string Why(const std::vector<std::size_t>& members) const
    {
        std::string markup;
        std::unordered_set<std::size_t> told;
        for (std::size_t i = 0; i < members.size() && i < MOST_MEMBERS; ++i) {
            const RecordedEvent& event = mTree.events[members[i]];
            const Evidence::Event* evidence = mTree.EvidenceOf(event);
            if (evidence == nullptr || !told.insert(event.evidence).second) {
                continue;
            }
            for (const PlacedRule& placed : RulesOf(*evidence)) {
                if (placed.rule.verdict == Evidence::Verdict::FIRED) {
                    markup += "<p>" + Html("span", ShownId(event.id), "id") + ": " + RuleHead(placed.rule) + "</p>"
                        + LookedAt(placed.rule);
                }
            }
        }
        return markup;
    }

    const RecordedTree& mTree;
};

std::string CutOffLines(const RecordedTree& tree)
{
    const std::vector<CutOff> cutOffs = CutOffsOf(tree);
    std::string markup;
    for (std::size_t i = 0; i < cutOffs.size() && i < MOST_CAUSES; ++i) {
        const std::vector<std::size_t>& places = cutOffs[i].leaves;
        std::vector<std::string> leaves;
        for (std::size_t leaf = 0; leaf < places.size() && leaf < MOST_MEMBERS; ++leaf) {
            leaves.push_back(tree.events[places[leaf]].id);
        }
        markup += "<li>" + Ids({tree.events[cutOffs[i].event].id}) + ", which its own rules keep from error, cuts off "
            + Ids(leaves) + (places.size() > MOST_MEMBERS ? " and more" : "") + "</li>\n";
    }
    return markup.empty() ? "" : "<h3>Cut off</h3>\n<ul>\n" + markup + "</ul>\n";
}

} // namespace

std::string CauseCards(const TreeReport& report)
{
    const std::vector<DistinctCause> causes = DistinctCausesOf(report.tree);
    const CardWriter writer(report.tree);
    std::string cards;
    for (std::size_t i = 0; i < causes.size() && i < MOST_CAUSES; ++i) {
        const auto& cause = report.tree.causes[causes[i].first].result;
        cards += cause == nullptr ? "" : writer.Card(causes[i], *cause);
    }
    std::string markup = causes.empty() ? "" : "<h3>Root causes</h3>\n<ol class=\"causes\">\n" + cards + "</ol>\n";
    markup += causes.size() <= MOST_CAUSES ? "" : Paragraph("And " + std::to_string(causes.size() - MOST_CAUSES)
        + " more; \"arborist explain --brief\" lists them all.");
    return markup + CutOffLines(report.tree);
}

std::string RuleVerdicts(const Evidence::Event& evidence)
{
    std::string markup;
    for (const PlacedRule& placed : RulesOf(evidence)) {
        const std::string summary = RuleSummary(placed.rule);
        markup += "<p class=\"rule\">" + RuleHead(placed.rule) + Markup(summary.empty() ? "" : ", " + summary) + "</p>";
    }
    return markup;
}

} // namespace diagnosis
