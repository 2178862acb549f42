#include "diagnosis/analysis/next_checks.h"

#include <algorithm>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/evidence/recorded_tree.h"

namespace {

using diagnosis::FindMissingSources;
using diagnosis::FindNextChecks;
using diagnosis::MissingSources;
using diagnosis::NextChecks;
using diagnosis::TreeReport;
using diagnosis::TreeReports;
using Evidence::Check;
using Evidence::Reason;
using testing::ElementsAre;
using testing::IsEmpty;

// An undecided tree in which each leaf has an open check, for the reason and detail behind a colon of its id: "A:log"
// lacks the event log, "A:table" a table derived from it, "A:x" the node file x, "A" a rule.
TreeReport Undecided(const ToldEvent& top)
{
    TreeReport report;
    report.tree = Told(top);
    report.verdict.word = Evidence::TreeVerdict::Word::UNDECIDED;
    for (auto& event : report.tree.events) {
        if (!event.IsLeaf()) {
            continue;
        }
        const std::size_t colon = std::min(event.id.find(':'), event.id.size());
        const std::string source = event.id.substr(std::min(colon + 1, event.id.size()));
        event.id.resize(colon);
        event.check = source.empty() ? Check::NOT_CHECKED : Check::DATA_MISSING;
        const Reason reason = source.empty() ? Reason::NO_EVENT_RULE
            : source == "log"                ? Reason::LOG_UNAVAILABLE
            : source == "table"              ? Reason::NO_VALUE
                                             : Reason::NODE_UNREADABLE;
        const std::string detail = source == "log" ? ""
            : source == "table" ? "data/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db" : source;
        report.verdict.open.push_back({event.id, "", event.check, reason, detail, false});
    }
    return report;
}

// The same where the named leaves are decided by one open rule each.
TreeReport WithRules(TreeReport report, const std::map<std::string, std::string>& ruleOfEvent)
{
    for (auto& event : report.tree.events) {
        const auto found = ruleOfEvent.find(event.id);
        if (found == ruleOfEvent.end()) {
            continue;
        }
        event.evidence = report.tree.evidence.size();
        Evidence::Event& evidence = report.tree.evidence.emplace_back();
        evidence.check = event.check;
        Evidence::Rule& rule = evidence.alternatives.emplace_back().rules.emplace_back();
        rule.name = found->second;
        rule.check = event.check;
    }
    return report;
}

// Takes the open check of an event for one that is not for this device, or was decided false.
void Close(const std::string& id, Check check, TreeReport& report)
{
    for (auto& event : report.tree.events) {
        if (event.id == id) {
            event.check = check;
            report.verdict.checks.Add(check);
        }
    }
    std::erase_if(report.verdict.open, [&id](const Evidence::OpenCheck& open) { return open.eventId == id; });
}

ToldEvent Leaf(const std::string& id) { return Event(id, false); }
ToldEvent AnyOf(std::vector<ToldEvent> below) { return GateEvent("T", true, std::move(below)); }
ToldEvent AllOf(std::vector<ToldEvent> below) { return GateEvent("T", false, std::move(below)); }

std::vector<std::string> IdsOf(const TreeReport& report, std::size_t most)
{
    std::vector<std::string> ids;
    for (const auto& check : FindNextChecks(report, most).checks) {
        ids.push_back(report.tree.events[check.event].id);
    }
    return ids;
}

std::vector<std::string> Sources(const TreeReports& reports)
{
    const MissingSources missing = FindMissingSources(reports);
    std::vector<std::string> texts;
    for (const auto& source : missing.sources) {
        texts.push_back(std::string(Evidence::ReasonText(source.reason)) + " " + source.detail + ": "
            + std::to_string(source.decides) + " of " + std::to_string(missing.undecided) + ", "
            + std::to_string(source.checks));
    }
    return texts;
}

TEST(NextChecksTest, FollowWithAnswersThatLeaveTheTreeOpen)
{
    EXPECT_THAT(IdsOf(Undecided(AnyOf({Leaf("A"), Leaf("B"), Leaf("C")})), 9), ElementsAre("A", "B", "C"));
    EXPECT_THAT(IdsOf(Undecided(AllOf({Leaf("A"), Leaf("B"), Leaf("C")})), 2), ElementsAre("A", "B"));
    EXPECT_THAT(IdsOf(Undecided(AnyOf({Event("A", true)})), 0), IsEmpty());
}

TEST(NextChecksTest, HaveTheNumbersBeforeEach)
{
    const NextChecks next = FindNextChecks(Undecided(AnyOf({Leaf("A"), AllOf({Leaf("B"), Leaf("C")})})), 9);
    ASSERT_EQ(next.checks.size(), 3U);
    EXPECT_EQ(next.fewest, (diagnosis::FewestChecks{1, 2}));
    EXPECT_EQ(next.checks[1].before, (diagnosis::FewestChecks{2, 1}));
    EXPECT_EQ(next.checks[2].before, (diagnosis::FewestChecks{1, 1}));
}

TEST(NextChecksTest, AreBoundsWhereAnIdOrASourceIsRepeated)
{
    EXPECT_FALSE(FindNextChecks(Undecided(AnyOf({Leaf("A:x"), Leaf("B:y"), Leaf("C"), Leaf("D")})), 1).isAtMost);
    EXPECT_TRUE(FindNextChecks(Undecided(AnyOf({Leaf("A:x"), Leaf("B:x")})), 1).isAtMost);
    EXPECT_TRUE(FindNextChecks(Undecided(AnyOf({Leaf("A"), AllOf({Leaf("A"), Leaf("B")})})), 1).isAtMost);
}

TEST(NextChecksTest, AreAboutTheTopEventWhereNoRootCauseIsPossible)
{
    const NextChecks next = FindNextChecks(Undecided(AllOf({Leaf("A"), GateEvent("G", false, {})})), 1);
    EXPECT_EQ(next.aim, NextChecks::Aim::TOP_EVENT);
    EXPECT_EQ(next.checks.size(), 1U);
}

TEST(NextChecksTest, AreBoundsWhereARuleDecidesSeveralEvents)
{
    const TreeReport report = Undecided(AllOf({Leaf("A"), Leaf("B"), Leaf("C")}));
    EXPECT_FALSE(FindNextChecks(WithRules(report, {{"A", "r"}, {"B", "s"}, {"C", "t"}}), 1).isAtMost);
    EXPECT_TRUE(FindNextChecks(WithRules(report, {{"A", "r"}, {"B", "s"}, {"C", "r"}}), 1).isAtMost);
}

TEST(NextChecksTest, AreBoundsWhereAGroupEndedAtAnOpenRule)
{
    TreeReport report = WithRules(Undecided(AllOf({Leaf("A"), Leaf("B")})), {{"A", "r"}});
    auto& rules = report.tree.evidence[0].alternatives[0].rules;
    rules.emplace_back().reason = Reason::GROUP_ENDED;
    EXPECT_TRUE(FindNextChecks(report, 1).isAtMost);
    rules[0].check = Check::DECIDED;
    EXPECT_FALSE(FindNextChecks(report, 1).isAtMost);
}

TEST(NextChecksTest, DoNotNameARuleAgainThatOneOfThemAnswers)
{
    const TreeReport report = Undecided(AllOf({Leaf("A"), Leaf("B"), Leaf("C")}));
    EXPECT_THAT(IdsOf(WithRules(report, {{"A", "r"}, {"B", "r"}, {"C", "t"}}), 9), ElementsAre("A", "C"));
    EXPECT_THAT(IdsOf(WithRules(report, {{"A", "r"}, {"B", "r"}, {"C", "r"}}), 9), ElementsAre("A"));
}

TEST(NextChecksTest, NameAnyOpenCheckWhereNothingWasDecided)
{
    TreeReport report = Undecided(AllOf({Leaf("A"), Leaf("B"), Leaf("C")}));
    Close("A", Check::NOT_APPLICABLE, report);
    const NextChecks next = FindNextChecks(report, 9);
    EXPECT_EQ(next.aim, NextChecks::Aim::FIRST_ANSWER);
    EXPECT_EQ(next.fewest, (diagnosis::FewestChecks{diagnosis::FewestChecks::NEVER, 1}));
    EXPECT_THAT(IdsOf(report, 9), ElementsAre("B"));
    EXPECT_THAT(IdsOf(report, 0), IsEmpty());
}

TEST(NextChecksTest, NameTheCheckThatNeedsTheFewestAnswersWhereNothingWasDecided)
{
    TreeReport report = WithRules(Undecided(AllOf({Leaf("A"), Leaf("B"), Leaf("C")})), {{"B", "r"}});
    auto& rules = report.tree.evidence[0].alternatives[0].rules;
    rules.push_back(rules[0]); // B needs both
    rules.push_back(rules[0]);
    report.tree.evidence[0].alternatives.push_back(report.tree.evidence[0].alternatives[0]);
    Close("A", Check::NOT_APPLICABLE, report);
    EXPECT_THAT(IdsOf(report, 9), ElementsAre("C"));
    Close("C", Check::NOT_SELECTED, report);
    EXPECT_THAT(IdsOf(report, 9), ElementsAre("B"));
    EXPECT_EQ(FindNextChecks(report, 9).fewest.toRuleOut, 2U);
}

TEST(NextChecksTest, AreNoneWhereNoAnswerDecides)
{
    TreeReport nothingOpen = Undecided(AllOf({Leaf("A"), Leaf("B")}));
    Close("A", Check::NOT_APPLICABLE, nothingOpen);
    Close("B", Check::NOT_SELECTED, nothingOpen);
    EXPECT_EQ(FindNextChecks(nothingOpen, 9).fewest.toRuleOut, diagnosis::FewestChecks::NEVER);
    EXPECT_THAT(IdsOf(nothingOpen, 9), IsEmpty());

    TreeReport withoutGate = Undecided(AllOf({Leaf("A"), Leaf("B")}));
    Close("A", Check::NOT_APPLICABLE, withoutGate);
    withoutGate.verdict.open[0].reason = Reason::NO_GATE;
    EXPECT_THAT(IdsOf(withoutGate, 9), IsEmpty());
}

TEST(MissingSourcesTest, AreThoseThatDecideTreesMostTreesFirst)
{
    EXPECT_THAT(Sources({Undecided(AnyOf({Leaf("A:x"), Leaf("B:x"), Leaf("C:x")})), Undecided(Leaf("A:y")),
                    Undecided(AnyOf({Leaf("B:y"), Leaf("C:z")})), Undecided(Leaf("D:y"))}),
        ElementsAre("node_unreadable y: 2 of 4, 3", "node_unreadable x: 1 of 4, 3"));
}

TEST(MissingSourcesTest, CountTablesToTheLogFromWhichTheyAreDerived)
{
    EXPECT_THAT(Sources({Undecided(AnyOf({Leaf("A:log"), Leaf("B:table")}))}), ElementsAre("log_unavailable : 1 of 1, 2"));
    EXPECT_THAT(Sources({Undecided(AnyOf({Leaf("A:x"), Leaf("B:table")}))}), IsEmpty());
}

TEST(MissingSourcesTest, DecideATreeInWhichNothingWasDecided)
{
    TreeReport report = Undecided(AllOf({Leaf("A:x"), Leaf("B:y")}));
    Close("B", Check::NOT_APPLICABLE, report);
    EXPECT_THAT(Sources({report}), ElementsAre("node_unreadable x: 1 of 1, 1"));
}

TEST(MissingSourcesTest, DecideNoTreeWhoseTopEventIsTrueWithoutACause)
{
    TreeReport report = Undecided(AnyOf({GateEvent("G", false, {}), AllOf({Leaf("A:x"), Leaf("B")})}));
    Close("B", Check::DECIDED, report);
    EXPECT_THAT(IdsOf(report, 9), IsEmpty());
    EXPECT_THAT(Sources({report}), IsEmpty());
}

TEST(MissingSourcesTest, DecideNoTreeThatLacksAGate)
{
    TreeReport report = Undecided(AnyOf({Leaf("A:x"), Leaf("B")}));
    EXPECT_THAT(Sources({report}), IsEmpty());
    Close("B", Check::DECIDED, report);
    EXPECT_THAT(Sources({report}), ElementsAre("node_unreadable x: 1 of 1, 1"));
    report.verdict.open.push_back({"G", "", Check::RULE_UNUSABLE, Reason::NO_GATE, "", false});
    EXPECT_THAT(Sources({report}), IsEmpty());
}

TEST(MissingSourcesTest, LookAtUndecidedTreesAlone)
{
    TreeReport decided = Undecided(Leaf("A:x"));
    decided.verdict.word = Evidence::TreeVerdict::Word::FAULT;
    EXPECT_THAT(Sources({decided}), IsEmpty());
}

} // namespace
