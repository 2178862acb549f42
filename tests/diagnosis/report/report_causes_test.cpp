#include "diagnosis/report/report_causes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/evidence/recorded_tree.h"
#include "tests/support/case_name.h"

namespace {

using diagnosis::CauseCards;
using diagnosis::RecordedEvent;
using diagnosis::TreeReport;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::size_t Count(const std::string& text, const std::string& what)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++count;
    }
    return count;
}

std::vector<ToldEvent> Events(std::size_t count, bool isInError)
{
    std::vector<ToldEvent> events;
    for (std::size_t number = 0; number < count; ++number) {
        events.push_back(Event("E" + std::to_string(number), isInError));
    }
    return events;
}

// A report of the tree, with a result for each of its causes.
TreeReport ReportOf(diagnosis::RecordedTree tree)
{
    const auto result = std::make_shared<FaultTreeResult>("T");
    for (const diagnosis::RecordedCause& recorded : tree.causes) {
        auto& cause = result->mRootCauseResults.emplace_back(std::make_shared<FaultTreeResult::RootCauseResult>());
        cause->mNode = std::make_shared<FaultTreeNode>();
        cause->mNode->mId = recorded.id;
    }
    TreeReport report{nullptr, {}, std::move(tree)};
    report.SetResult(result);
    return report;
}

// A report whose only cause has a repair with this extra.
std::string CardWithExtra(const std::string& extra)
{
    auto tree = Told(GateEvent("T", true, {Event("E", true)}, true));
    AddCause(tree, {"E"});
    const TreeReport report = ReportOf(std::move(tree));
    report.result->mRootCauseResults[0]->mRepairInfos.push_back({"R", extra});
    return CauseCards(report);
}

// An event E with rules that fired, each with `files` node files.
TreeReport Explained(std::size_t rules, std::size_t files)
{
    auto tree = Told(GateEvent("T", true, {Event("E", true)}, true));
    AddCause(tree, {"E"});
    Evidence::Rule rule;
    rule.verdict = Evidence::Verdict::FIRED;
    rule.reason = Evidence::Reason::CONDITION_MET;
    Evidence::Node node;
    for (std::size_t number = 0; number < files; ++number) {
        node.files.push_back({"P" + std::to_string(number), "node", true, "1"});
    }
    rule.part = node;
    Evidence::Event evidence{"E", "", true, Evidence::Reason::NONE, {}};
    for (std::size_t number = 0; number < rules; ++number) {
        rule.name = "r" + std::to_string(number);
        evidence.alternatives.push_back({false, {rule}});
    }
    tree.evidence.push_back(evidence);
    tree.events[1].evidence = 0;
    return ReportOf(std::move(tree));
}

TEST(CauseCardsTest, OfTooManyCausesTheRestIsCounted)
{
    auto tree = Told(GateEvent("T", true, Events(203, true), true));
    for (int number = 0; number < 203; ++number) {
        AddCause(tree, {"E" + std::to_string(number)});
    }
    const std::string cards = CauseCards(ReportOf(tree));
    EXPECT_EQ(Count(cards, "<li class=\"card\">"), 200U);
    EXPECT_THAT(cards, AllOf(HasSubstr("<p>And 3 more; &quot;arborist explain --brief&quot; lists them all.</p>"),
        HasSubstr(">E199</h4>"), Not(HasSubstr(">E200</h4>"))));
    tree.causes.resize(200);
    EXPECT_THAT(CauseCards(ReportOf(tree)), Not(HasSubstr(" more; ")));
}

TEST(CauseCardsTest, OfALargeCutSetTheRestIsCounted)
{
    auto tree = Told(GateEvent("T", false, Events(52, true), true));
    std::vector<std::string> ids;
    for (const RecordedEvent& event : tree.events) {
        ids.push_back(event.id);
    }
    ids.erase(ids.begin());
    AddCause(tree, ids);
    const std::string cards = CauseCards(ReportOf(tree));
    EXPECT_THAT(cards, AllOf(HasSubstr("<p>Cut set of 52 events that are present together:</p>"),
        HasSubstr("<li class=\"quiet\">and 2 more</li></ul>"), HasSubstr(">E49</b>"), Not(HasSubstr(">E50</b>"))));
}

TEST(CauseCardsTest, ACauseWhosePathNamesNoEventHasNoWay)
{
    auto tree = Told(GateEvent("T", true, {Event("E", true)}, true));
    AddCause(tree, {"a/b"});
    tree.causes[0].members = {RecordedEvent::NONE};
    const std::string cards = CauseCards(ReportOf(tree));
    EXPECT_THAT(cards, AllOf(HasSubstr(">a/b</h4>"), Not(HasSubstr("Way to the top")), Not(HasSubstr("Why"))));
}

TEST(CauseCardsTest, ACauseWithoutAResultHasNoCard)
{
    auto tree = Told(GateEvent("T", true, {Event("E", true)}, true));
    AddCause(tree, {"E"});
    TreeReport stopped{std::make_shared<FaultTreeResult>("T"), {}, std::move(tree)};
    EXPECT_EQ(CauseCards(stopped), "<h3>Root causes</h3>\n<ol class=\"causes\">\n</ol>\n");
}

TEST(CauseCardsTest, WithoutCausesThereIsNothing)
{
    EXPECT_THAT(CauseCards(ReportOf(Told(GateEvent("T", true, {Event("E", false)})))), IsEmpty());
}

TEST(CauseCardsTest, TheUserDefinedTextStandsOnTheCard)
{
    auto tree = Told(GateEvent("T", true, {Event("E", true)}, true));
    AddCause(tree, {"E"});
    const TreeReport report = ReportOf(std::move(tree));
    report.result->mRootCauseResults[0]->mNode->mUserDefined = R"({"a": 1})";
    EXPECT_THAT(CauseCards(report), HasSubstr("<dt>User defined</dt><dd><code>{&quot;a&quot;: 1}</code></dd>"));
}

TEST(CauseCardsTest, ACauseThatTheListRepeatsHasItsNumber)
{
    auto tree = Told(GateEvent("T", true, {Event("E", true), Event("E", true)}, true));
    AddCause(tree, {"E"});
    AddCause(tree, {"E"});
    EXPECT_THAT(CauseCards(ReportOf(tree)), HasSubstr("<dt>In the list</dt><dd>2 times</dd>"));
}

TEST(CauseCardsTest, OfARuleWithManyLinesTheFirstStandThere)
{
    const std::string cards = CauseCards(Explained(1, 21));
    EXPECT_THAT(cards, AllOf(HasSubstr("<li>P19 = 1 from node</li><li>and more</li></ul>"), Not(HasSubstr("P20"))));
    EXPECT_THAT(CauseCards(Explained(1, 20)), Not(HasSubstr("and more")));
}

TEST(CauseCardsTest, ARuleThatLookedAtNothingHasNoList)
{
    const std::string cards = CauseCards(Explained(2, 0));
    EXPECT_THAT(cards, AllOf(HasSubstr("<span class=\"id\">r0</span>: TRUE condition_met</p><p>"), Not(HasSubstr("<ul><li>"))));
}

TEST(CauseCardsTest, EventsThatShareTheirEvidenceTellItOnce)
{
    auto report = Explained(1, 1);
    auto& tree = report.tree;
    tree.events.push_back(tree.events[1]);
    tree.events[0].end = tree.events[2].end = 3;
    tree.causes[0].members = {1, 2};
    EXPECT_EQ(Count(CauseCards(report), "node rule"), 1U);
}

struct ExtraCase { const char* name; const char* extra; const char* markup; };
void PrintTo(const ExtraCase& extra, std::ostream* out) { *out << extra.name; }
class ExtraOfARepair : public testing::TestWithParam<ExtraCase> {};

TEST_P(ExtraOfARepair, IsShown)
{
    EXPECT_THAT(CardWithExtra(GetParam().extra), HasSubstr(std::string("<dt>Repairs</dt><dd><span class=\"id\">R</span>")
        + GetParam().markup + "</dd>"));
}

INSTANTIATE_TEST_SUITE_P(Table, ExtraOfARepair, testing::Values(
    ExtraCase{"Nothing", "", "<br>"},
    ExtraCase{"NoJson", "a<b", ", extra <code>a&lt;b</code><br>"},
    ExtraCase{"AList", "[1]", ", extra <code>[1]</code><br>"},
    ExtraCase{"AnEmptyObject", "{}", ", extra <code>{}</code><br>"},
    ExtraCase{"MembersOfEachType", R"({"a": 5, "b": "{}", "c": "x", "d": {"e": null}})",
        "<table class=\"extra\"><tr><th>a</th><td colspan=\"2\"><code>5</code></td></tr>"
        "<tr><th>b</th><td colspan=\"2\"><code>{}</code></td></tr>"
        "<tr><th>c</th><td colspan=\"2\"><code>x</code></td></tr>"
        "<tr><th>d</th><th>e</th><td><code>null</code></td></tr></table>"}),
    CaseName());

TEST(CutOffLinesTest, NameTheEventThatCutsOffAndTheFirstLeaves)
{
    const auto cut = [](std::size_t leaves) {
        return CauseCards(ReportOf(Told(GateEvent("T", true, {GateEvent("G", true, Events(leaves, true), false, true)}))));
    };
    EXPECT_EQ(cut(2), "<h3>Cut off</h3>\n<ul>\n<li><span class=\"id\">G</span>, which its own rules keep from error, cuts "
        "off <span class=\"id\">E0</span>, <span class=\"id\">E1</span></li>\n</ul>\n");
    EXPECT_THAT(cut(51), AllOf(HasSubstr("<span class=\"id\">E49</span> and more</li>"), Not(HasSubstr("E50"))));
}

TEST(CutOffLinesTest, AreAtMostTwoHundred)
{
    std::vector<ToldEvent> gates;
    for (int number = 0; number < 201; ++number) {
        gates.push_back(GateEvent("G" + std::to_string(number), true, {Event("E", true)}, false, true));
    }
    EXPECT_EQ(Count(CauseCards(ReportOf(Told(GateEvent("T", true, gates)))), "cuts off"), 200U);
}

} // namespace
