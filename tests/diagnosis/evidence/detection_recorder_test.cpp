#include "diagnosis/evidence/detection_recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using diagnosis::RecordedEvent;
using diagnosis::DetectionRecorder;
using Evidence::Reason;
using testing::ElementsAre;

class DetectionRecorderTest : public testing::Test {
protected:
    DetectionRecorderTest() { mRecorder.OnTreeStarted({"T", "1", ""}); }

    void Decide(const std::string& id, Reason reason)
    {
        Evidence::Rule rule;
        rule.name = "r";
        rule.reason = reason;
        mRecorder.OnEventDecided({id, "", false, Reason::NONE, {{false, {rule}}}});
    }

    void Fold(std::size_t depth, const std::string& id, bool isLeaf = true,
        Evidence::EventState state = Evidence::EventState::PRESENT)
    {
        mEvents.push_back({depth, isLeaf ? Evidence::EventType::BASIC : Evidence::EventType::INTERMEDIATE,
            isLeaf ? Evidence::GateType::NONE : Evidence::GateType::OR, id, "", "", state, false});
    }

    const diagnosis::RecordedTree& Finish(const std::vector<Evidence::RootCause>& causes = {})
    {
        mRecorder.OnTreeFolded(mEvents);
        for (const Evidence::RootCause& cause : causes) {
            mRecorder.OnRootCause(cause);
        }
        mRecorder.OnTreeFinished({"T", true, {}});
        mTrees = mRecorder.TakeTrees();
        return mTrees.back().tree;
    }

    DetectionRecorder mRecorder{DetectionRecorder::Detail::EVIDENCE};
    std::vector<Evidence::FoldedEvent> mEvents;
    diagnosis::TreeReports mTrees;
};

TEST_F(DetectionRecorderTest, EventsKnowWhatIsAboveAndBelow)
{
    Fold(0, "T", false);
    Fold(1, "G", false);
    Fold(2, "A");
    Fold(2, "B");
    Fold(1, "C");
    const auto& tree = Finish();
    EXPECT_THAT(tree.ChildrenOf(0), ElementsAre(1, 4));
    EXPECT_THAT(tree.ChildrenOf(1), ElementsAre(2, 3));
    EXPECT_THAT(tree.PathIds(3), ElementsAre("T", "G", "B"));
    EXPECT_EQ(tree.events[0].parent, RecordedEvent::NONE);
    EXPECT_EQ(tree.events[0].end, 5U);
}

TEST_F(DetectionRecorderTest, EventsWithOneIdShareEvidenceWhileNothingDiffers)
{
    Decide("A", Reason::NO_VALUE);
    Decide("A", Reason::NO_VALUE);
    Decide("A", Reason::NO_NODES);
    Fold(0, "T", false);
    for (int count = 0; count < 3; ++count) {
        Fold(1, "A");
    }
    const auto& tree = Finish();
    EXPECT_EQ(tree.evidence.size(), 2U);
    EXPECT_EQ(tree.events[0].evidence, RecordedEvent::NONE);
    EXPECT_EQ(tree.events[1].evidence, tree.events[2].evidence);
    EXPECT_EQ(tree.EvidenceOf(tree.events[2])->alternatives[0].rules[0].reason, Reason::NO_VALUE);
    EXPECT_EQ(tree.EvidenceOf(tree.events[3])->alternatives[0].rules[0].reason, Reason::NO_NODES);
}

TEST_F(DetectionRecorderTest, MembersAreFoundByTheirPathsAlsoWithSeparatorsInIds)
{
    Fold(0, "T", false);
    Fold(1, "G", false);
    Fold(2, "A");
    Fold(1, "G/A", false);
    Fold(2, "B");
    const auto& tree = Finish({{"A", {"T/G/A", "T/G/A/B"}, {}}, {"X", {"T/X", "U/A"}, {}}});
    EXPECT_THAT(tree.causes[0].members, ElementsAre(2, 4));
    EXPECT_THAT(tree.causes[1].members, ElementsAre(RecordedEvent::NONE, RecordedEvent::NONE));
}

TEST_F(DetectionRecorderTest, OfSiblingsWithOneIdTheWayThatIsInErrorIsTaken)
{
    Fold(0, "T", false);
    Fold(1, "G", false);
    Fold(2, "B");
    Fold(1, "G", false, Evidence::EventState::ABSENT);
    Fold(2, "A");
    Fold(1, "G", false);
    Fold(2, "A");
    const auto& tree = Finish({{"A", {"T/G/A"}, {}}, {"B", {"T/G/B"}, {}}});
    EXPECT_THAT(tree.causes[0].members, ElementsAre(6));
    EXPECT_THAT(tree.causes[1].members, ElementsAre(2));
}

// Each "/" could separate two ids or belong to one; trying all possibilities would never end.
TEST_F(DetectionRecorderTest, IdsFullOfSeparatorsCostNoMoreThanTheirLength)
{
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
    const auto& tree = Finish({{"A", {path, path + "A"}, {}}});
    EXPECT_THAT(tree.causes[0].members, ElementsAre(899, RecordedEvent::NONE));
}

TEST_F(DetectionRecorderTest, RulesAreListedWithTheirPlaceInTheEvent)
{
    Evidence::Event event;
    event.alternatives = {{false, {{}}}, {true, {{}, {}}}};
    const auto rules = diagnosis::RulesOf(event);
    ASSERT_EQ(rules.size(), 3U);
    EXPECT_FALSE(rules[0].inGroup);
    EXPECT_EQ(rules[2].alternative, 1U);
    EXPECT_EQ(rules[2].place, 1U);
    EXPECT_TRUE(rules[2].inGroup);
    EXPECT_EQ(&rules[2].rule, &event.alternatives[1].rules[1]);
}

TEST_F(DetectionRecorderTest, CutSetsAreKeptOnRequestWhateverTheDetail)
{
    for (const bool isKept : {false, true}) {
        DetectionRecorder recorder(DetectionRecorder::Detail::VERDICT, isKept);
        recorder.OnTreeStarted({"T", "1", ""});
        recorder.OnRootCause({"A", {"T/A", "T/G/B"}, {}});
        recorder.OnRootCause({"C", {"T/C"}, {}});
        recorder.OnTreeFinished({"T", true, {}});
        const diagnosis::TreeReports trees = recorder.TakeTrees();
        std::vector<std::vector<std::string>> cutSets;
        for (const diagnosis::RecordedCause& cause : trees[0].tree.causes) {
            EXPECT_TRUE(cause.members.empty());
            cutSets.push_back(cause.cutSet);
        }
        EXPECT_EQ(cutSets, isKept
            ? (std::vector<std::vector<std::string>>{{"T/A", "T/G/B"}, {"T/C"}}) : std::vector<std::vector<std::string>>{});
    }
}

} // namespace
