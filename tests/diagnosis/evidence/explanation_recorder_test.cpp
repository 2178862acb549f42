#include "diagnosis/evidence/explanation_recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/time_zone.h"

namespace {

using diagnosis::ExplainedEvent;
using diagnosis::ExplanationRecorder;
using testing::ElementsAre;
using Observer = DetectionObserver;
using Folded = Observer::EventFolded;

class ExplanationRecorderTest : public testing::Test {
protected:
    void Decide(const std::string& id, Observer::Reason reason, const std::string& rule = "r")
    {
        mRecorder.OnEventAsked({id, ""});
        mRecorder.OnRuleAsked({id, rule, Observer::Family::NODE, 0, 0, false});
        mRecorder.OnRuleDecided({id, rule, Observer::Family::NODE, Observer::Verdict::NOT_FIRED, reason});
        mRecorder.OnEventDecided({id, false, Observer::Reason::NONE});
    }

    void Fold(std::size_t depth, const std::string& id, bool isLeaf = true)
    {
        mRecorder.OnEventFolded({depth, isLeaf ? Folded::Kind::BASIC : Folded::Kind::INTERMEDIATE,
            isLeaf ? Folded::GateKind::NONE : Folded::GateKind::OR, id, "", "", EventStatus::TRUE, false});
    }

    const diagnosis::ExplainedTree& Finish()
    {
        mRecorder.OnTreeFinished({"T", true});
        return mRecorder.GetExplanation()->trees.back();
    }

    ExplanationRecorder mRecorder{false};
};

TEST_F(ExplanationRecorderTest, EventsKnowWhatIsAboveAndBelow)
{
    mRecorder.OnTreeStarted({"T", "1", ""});
    Fold(0, "T", false);
    Fold(1, "G", false);
    Fold(2, "A");
    Fold(2, "B");
    Fold(1, "C");
    const auto& tree = Finish();
    EXPECT_THAT(tree.ChildrenOf(0), ElementsAre(1, 4));
    EXPECT_THAT(tree.ChildrenOf(1), ElementsAre(2, 3));
    EXPECT_THAT(tree.PathIds(3), ElementsAre("T", "G", "B"));
    EXPECT_EQ(tree.events[0].parent, ExplainedEvent::NONE);
    EXPECT_EQ(tree.events[0].end, 5U);
}

TEST_F(ExplanationRecorderTest, EventsWithOneIdShareEvidenceWhileNothingDiffers)
{
    mRecorder.OnTreeStarted({"T", "1", ""});
    Decide("A", Observer::Reason::NO_VALUE);
    Decide("A", Observer::Reason::NO_VALUE);
    Decide("A", Observer::Reason::NO_NODES);
    Fold(0, "T", false);
    for (int count = 0; count < 3; ++count) {
        Fold(1, "A");
    }
    const auto& tree = Finish();
    EXPECT_EQ(tree.evidence.size(), 2U);
    EXPECT_EQ(tree.events[0].evidence, ExplainedEvent::NONE);
    EXPECT_EQ(tree.events[1].evidence, tree.events[2].evidence);
    EXPECT_EQ(tree.EvidenceOf(tree.events[2])->rules[0].reason, Observer::Reason::NO_VALUE);
    EXPECT_EQ(tree.EvidenceOf(tree.events[3])->rules[0].reason, Observer::Reason::NO_NODES);
}

TEST_F(ExplanationRecorderTest, MembersAreFoundByTheirPathsAlsoWithSeparatorsInIds)
{
    mRecorder.OnTreeStarted({"T", "1", ""});
    Fold(0, "T", false);
    Fold(1, "G", false);
    Fold(2, "A");
    Fold(1, "G/A", false);
    Fold(2, "B");
    mRecorder.OnRootCause({"A", {"T/G/A", "T/G/A/B"}, {}});
    mRecorder.OnRootCause({"X", {"T/X", "U/A"}, {}});
    const auto& tree = Finish();
    EXPECT_THAT(tree.causes[0].members, ElementsAre(2, 4));
    EXPECT_THAT(tree.causes[1].members, ElementsAre(ExplainedEvent::NONE, ExplainedEvent::NONE));
}

TEST_F(ExplanationRecorderTest, OfSiblingsWithOneIdTheWayThatIsInErrorIsTaken)
{
    mRecorder.OnTreeStarted({"T", "1", ""});
    Fold(0, "T", false);
    Fold(1, "G", false);
    Fold(2, "B");
    mRecorder.OnEventFolded({1, Folded::Kind::INTERMEDIATE, Folded::GateKind::OR, "G", "", "", EventStatus::FALSE, false});
    Fold(2, "A");
    Fold(1, "G", false);
    Fold(2, "A");
    mRecorder.OnRootCause({"A", {"T/G/A"}, {}});
    mRecorder.OnRootCause({"B", {"T/G/B"}, {}});
    const auto& tree = Finish();
    EXPECT_THAT(tree.causes[0].members, ElementsAre(6));
    EXPECT_THAT(tree.causes[1].members, ElementsAre(2));
}

// Each "/" could part two ids or belong to one: trying them all would never end.
TEST_F(ExplanationRecorderTest, IdsFullOfSeparatorsCostNoMoreThanTheirLength)
{
    mRecorder.OnTreeStarted({"T", "1", ""});
    std::string path;
    std::size_t depth = 0;
    for (int level = 0; level < 300; ++level) {
        for (std::string id = "/"; id.size() <= 3; id += "/") {
            Fold(depth, id, false);
        }
        path += "///";
        path += level == 299 ? "" : "/";
        ++depth;
    }
    mRecorder.OnRootCause({"A", {path, path + "A"}, {}});
    const auto& tree = Finish();
    EXPECT_THAT(tree.causes[0].members, ElementsAre(899, ExplainedEvent::NONE));
}

TEST_F(ExplanationRecorderTest, RulesBehindTheEndOfTheirGroupStandBehindIt)
{
    mRecorder.OnTreeStarted({"T", "1", ""});
    mRecorder.OnEventAsked({"A", ""});
    mRecorder.OnRuleAsked({"A", "r", Observer::Family::CODE, 2, 0, true});
    mRecorder.OnRuleDecided(
        {"A", "r", Observer::Family::CODE, Observer::Verdict::NOT_FIRED, Observer::Reason::RUNNER_ANSWERED});
    mRecorder.OnRuleDecided(
        {"A", "s", Observer::Family::NONE, Observer::Verdict::SKIPPED, Observer::Reason::GROUP_ENDED});
    mRecorder.OnEventDecided({"A", false, Observer::Reason::NONE});
    Fold(0, "A");
    const auto& rules = Finish().evidence[0].rules;
    ASSERT_EQ(rules.size(), 2U);
    EXPECT_EQ(rules[1].alternative, 2U);
    EXPECT_EQ(rules[1].place, 1U);
    EXPECT_TRUE(rules[1].inGroup);
}

TEST_F(ExplanationRecorderTest, WindowsHaveTheirStartAndTests)
{
    mRecorder.OnTreeStarted({"T", "1", ""});
    mRecorder.OnEventAsked({"A", ""});
    mRecorder.OnRuleAsked({"A", "r", Observer::Family::ALARM, 0, 0, false});
    mRecorder.OnStartTime(
        {1700000000, 5, 0, 0, 1700000000, Observer::StartTimeSeen::Floor::REPAIR, 30, "4", "R1"});
    mRecorder.OnAlarmTest({"DROP", "int", "ge", "5", 3, 2});
    mRecorder.OnAlarmWindow({0, 7, 8, "latest", 30, 5, 1700000000, true, 4, 1, 1, 2, 7, false,
        Observer::Reason::WINDOW_SHORT});
    mRecorder.OnAlarmWindow({0, 7, 8, "duration", 0, 0, 0, false, 0, 0, 0, 0, 0, false,
        Observer::Reason::WINDOW_ABSENT});
    mRecorder.OnRuleDecided(
        {"A", "r", Observer::Family::ALARM, Observer::Verdict::NOT_FIRED, Observer::Reason::WINDOW_SHORT});
    mRecorder.OnEventDecided({"A", false, Observer::Reason::NONE});
    const auto& windows = Finish().evidence[0].rules[0].windows;
    ASSERT_EQ(windows.size(), 2U);
    EXPECT_EQ(windows[0].start->start.local, "2023-11-14 23:13:20");
    EXPECT_EQ(windows[0].start->repairId, "R1");
    EXPECT_EQ(windows[0].tests.size(), 1U);
    EXPECT_EQ(windows[0].Missing(), 3);
    EXPECT_FALSE(windows[1].start.has_value());
    EXPECT_EQ(windows[1].Missing(), 0);
}

struct WordCase {
    Observer::Reason reason;
    const char* word;
};
class WordsOfRecordsByHand : public testing::TestWithParam<WordCase> {};

// No rule file brings these; hosts that put records together by hand can.
TEST_P(WordsOfRecordsByHand, AreKeptAsTold)
{
    ExplanationRecorder recorder(false);
    recorder.OnTreeStarted({"T", "1", ""});
    recorder.OnEventAsked({"A", ""});
    recorder.OnRuleAsked({"A", "r", Observer::Family::NONE, 0, 0, false});
    recorder.OnRuleDecided({"A", "r", Observer::Family::NONE, Observer::Verdict::SKIPPED, GetParam().reason});
    recorder.OnEventDecided({"A", false, Observer::Reason::NONE});
    recorder.OnTreeFinished({"T", false});
    const auto& rule = recorder.GetExplanation()->trees[0].evidence[0].rules[0];
    EXPECT_STREQ(Observer::ReasonText(rule.reason), GetParam().word);
    EXPECT_STREQ(diagnosis::VerdictWord(rule.verdict), "SKIP");
}

INSTANTIATE_TEST_SUITE_P(Table, WordsOfRecordsByHand,
    testing::Values(WordCase{Observer::Reason::NO_CHECKER, "no_checker"},
        WordCase{Observer::Reason::UNKNOWN_CONDITION, "unknown_condition"},
        WordCase{Observer::Reason::NO_EVENT_ID, "no_event_id"}),
    [](const auto& word) {
        std::string name(word.param.word);
        std::erase(name, '_');
        return name;
    });

} // namespace
