#include "arborist/deduction/fault_tree_visitor.h"

#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/deduction/root_cause.h"
#include "arborist/frame/detection_observer.h"
#include "arborist/frame/fault_tree_result.h"
#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "tests/deduction/cause_text.h"
#include "tests/support/log_capture.h"
#include "tests/support/recording_observer.h"
#include "tests/support/settings_guard.h"
#include "tests/support/tree_builder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto TRUE = EventStatus::TRUE;

class FaultTreeVisitorTest : public testing::Test {
protected:
    void Deduce(std::shared_ptr<Gate> gate) { mVisitor.DeduceRootCause(TreeOf(Inner("T", std::move(gate)))); }
    std::vector<std::string> Causes() const { return TextOf(mVisitor.GetRootCauseList()); }
    std::vector<std::string> NodeIds() const
    {
        std::vector<std::string> ids;
        for (const auto& node : mVisitor.GetRootCauseNodeList()) {
            ids.push_back(node->mId);
        }
        return ids;
    }

    LogCapture mLog;
    FaultTreeVisitor mVisitor{nullptr};
};

TEST_F(FaultTreeVisitorTest, NothingFiredIsNoFaultAndLogsStatusAndSizeZero)
{
    Deduce(Or({Leaf("A"), Undeveloped("U")}));
    EXPECT_FALSE(mVisitor.IsFault());
    EXPECT_THAT(mVisitor.GetRootCauseNodeList(), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_INFO),
                ElementsAre("FUNc:FaultTreeVisitor::AnalyzeRootCause: status= 0 ",
                            "FUNc:FaultTreeVisitor::AnalyzeRootCause: mRootCauseList size= 0"));
}

TEST_F(FaultTreeVisitorTest, CausesBeyondTheLimitAreLeftOutAndTold)
{
    SettingsGuard settings;
    const auto deduce = [this] { Deduce(Or({Leaf("A", TRUE), Leaf("B", TRUE), Leaf("C", TRUE)})); };
    RecordingObserver observer;
    mVisitor.SetObserver(&observer);
    settings.Set(Settings::CAUSE_LIMIT, "2");
    deduce();
    EXPECT_TRUE(mVisitor.IsFault());
    EXPECT_THAT(NodeIds(), ElementsAre("A", "B"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre(
        "FUNc:FaultTreeVisitor::AnalyzeRootCause: the tree Tree has 3 root causes, only the first 2 are told."));
    EXPECT_THAT(observer.Lines("trouble"), ElementsAre("trouble causes Tree: 3"));
    mLog.Clear();
    mVisitor.SetObserver(nullptr);
    deduce();
    EXPECT_THAT(NodeIds(), ElementsAre("A", "B")) << "without an observer, too";
    mLog.Clear();
    for (const char* none : {"3", "0", "-1", "x", "", "2x", "2147483648", "4294967297", "18446744073709551617"}) {
        settings.Set(Settings::CAUSE_LIMIT, none);
        deduce();
        EXPECT_THAT(NodeIds(), ElementsAre("A", "B", "C")) << none;
    }
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), IsEmpty());
}

TEST_F(FaultTreeVisitorTest, TrueLeavesAreFaultsInCutSetOrder)
{
    Deduce(Or({Leaf("A", TRUE), Leaf("B"), Leaf("C", TRUE)}));
    EXPECT_TRUE(mVisitor.IsFault());
    EXPECT_THAT(Causes(), ElementsAre("A < T", "C < T"));
    EXPECT_THAT(NodeIds(), ElementsAre("A", "C"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_INFO),
                ElementsAre("FUNc:FaultTreeVisitor::AnalyzeRootCause: status= 1 ",
                            "FUNc:FaultTreeVisitor::AnalyzeRootCause: mRootCauseList size= 2"));
}

TEST_F(FaultTreeVisitorTest, ANodeCopiesTheFirstEventsTexts)
{
    const auto leaf = Leaf("A", TRUE);
    leaf->SetName("Battery");
    leaf->SetUserDefined("{\"repair\":1}");
    Deduce(And({leaf, Leaf("B", TRUE)}));
    ASSERT_EQ(mVisitor.GetRootCauseNodeList().size(), 1U);
    const FaultTreeNode& node = *mVisitor.GetRootCauseNodeList()[0];
    EXPECT_EQ(node.mId, "A");
    EXPECT_EQ(node.mName, "Battery");
    EXPECT_EQ(node.mUserDefined, "{\"repair\":1}");
}

TEST_F(FaultTreeVisitorTest, ASecondDeductionReplacesBothLists)
{
    Deduce(Or({Leaf("A", TRUE), Leaf("B", TRUE)}));
    Deduce(Or({Leaf("C", TRUE)}));
    EXPECT_THAT(Causes(), ElementsAre("C < T"));
    EXPECT_THAT(NodeIds(), ElementsAre("C"));
    Deduce(Or({Leaf("C")}));
    EXPECT_THAT(Causes(), IsEmpty());
    EXPECT_THAT(NodeIds(), IsEmpty());
    EXPECT_FALSE(mVisitor.IsFault());
}

TEST_F(FaultTreeVisitorTest, ANullTreeChangesNothing)
{
    Deduce(Or({Leaf("A", TRUE)}));
    mLog.Clear();
    mVisitor.DeduceRootCause(nullptr);
    EXPECT_TRUE(mVisitor.IsFault());
    EXPECT_THAT(NodeIds(), ElementsAre("A"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(FaultTreeVisitorTest, AnEmptyTreeIsNoFault)
{
    Deduce(Or({Leaf("A", TRUE)}));
    mVisitor.DeduceRootCause(std::make_shared<FaultTree>());
    EXPECT_FALSE(mVisitor.IsFault());
    EXPECT_THAT(NodeIds(), IsEmpty());
}

TEST_F(FaultTreeVisitorTest, ATrueTopWithoutAQualifyingCutSetIsNoFault)
{
    mVisitor.DeduceRootCause(TreeOf(Observable("T", TRUE, Or({Leaf("A")}))));
    EXPECT_FALSE(mVisitor.IsFault());
    mVisitor.DeduceRootCause(TreeOf(Observable("T", TRUE, nullptr)));
    EXPECT_FALSE(mVisitor.IsFault());
}

TEST_F(FaultTreeVisitorTest, AnObservableFalseEventCutsOffWhatLiesBelow)
{
    Deduce(Or({Observable("G", EventStatus::FALSE, Or({Leaf("A", TRUE)}))}));
    EXPECT_FALSE(mVisitor.IsFault());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_INFO),
                ElementsAre("FUNc:IntermediateEvent::LogDetails: id: G is false, its children result is true.",
                            "FUNc:FaultTreeVisitor::AnalyzeRootCause: status= 0 ",
                            "FUNc:FaultTreeVisitor::AnalyzeRootCause: mRootCauseList size= 0"));
}

TEST_F(FaultTreeVisitorTest, AnAndWithOneHealthyMemberYieldsNothing)
{
    mVisitor.DeduceRootCause(TreeOf(Observable("T", TRUE, And({Leaf("A", TRUE), Leaf("B")}))));
    EXPECT_FALSE(mVisitor.IsFault());
}

class RecordingObserver : public DetectionObserver {
public:
    void OnTreeFolded(std::vector<Evidence::FoldedEvent> events) override
    {
        for (const Evidence::FoldedEvent& event : events) {
            std::ostringstream line;
            line << std::string(event.depth, ' ') << event.id << " " << Evidence::StateText(event.status) << " "
                 << static_cast<int>(event.type) << static_cast<int>(event.gate) << event.observable << event.name
                 << event.userDefined;
            mLines.push_back(line.str());
        }
    }
    void OnRootCause(Evidence::RootCause rootCause) override
    {
        mLines.push_back("cause " + rootCause.id + ": " + Joined(rootCause.cutSet, " & ") + ": " +
                         Joined(rootCause.wayUp, " < "));
    }
    std::vector<std::string> mLines;
};

TEST_F(FaultTreeVisitorTest, AnObserverSeesTheFoldedTreeThenTheRootCauses)
{
    RecordingObserver observer;
    mVisitor.SetObserver(&observer);
    const auto leaf = Leaf("A", TRUE);
    leaf->FillEventInfo("", "A", "Name", "{}", "");
    Deduce(Or({Inner("G", And({leaf, Leaf("B", TRUE)})), Undeveloped("U"),
               Observable("H", EventStatus::FALSE, nullptr), Leaf("C", TRUE)}));
    EXPECT_THAT(observer.mLines,
                ElementsAre("T TRUE 110", " G TRUE 120", "  A TRUE 000Name{}", "  B TRUE 000", " U UNKNOWN 200",
                            " H FALSE 101", " C TRUE 000", "cause A: T/G/A & T/G/B: A < G < T < B",
                            "cause C: T/C: C < T"));
}

TEST_F(FaultTreeVisitorTest, AnObserverOfAnEmptyTreeSeesNothing)
{
    RecordingObserver observer;
    mVisitor.SetObserver(&observer);
    mVisitor.DeduceRootCause(std::make_shared<FaultTree>());
    mVisitor.DeduceRootCause(nullptr);
    EXPECT_THAT(observer.mLines, IsEmpty());
}

/// Keeps what an observer is told of a folded tree.
class FoldKeeper : public DetectionObserver {
public:
    void OnTreeFolded(std::vector<Evidence::FoldedEvent> events) override { folded = std::move(events); }
    std::vector<Evidence::FoldedEvent> folded;
};

TEST_F(FaultTreeVisitorTest, FoldingANullTreeChangesNothing)
{
    Deduce(Or({Leaf("A", TRUE)}));
    mVisitor.FoldStatuses(nullptr, {});
    EXPECT_THAT(NodeIds(), ElementsAre("A"));
}

TEST_F(FaultTreeVisitorTest, AnObserverSeesEveryKindAndStatus)
{
    FoldKeeper keeper;
    mVisitor.SetObserver(&keeper);
    auto plain = std::make_shared<Event>();
    plain->SetId("P");
    mVisitor.FoldStatuses(TreeOf(Inner("T", Or({Leaf("A", EventStatus::INTERMEDIATE_TRUE), Undeveloped("U"), plain}))),
        {Evidence::Check::NOT_CHECKED, Evidence::Check::DECIDED});
    mVisitor.SetObserver(nullptr);
    ASSERT_EQ(keeper.folded.size(), 4U);
    EXPECT_EQ(keeper.folded[0].check, Evidence::Check::NOT_CHECKED);
    EXPECT_EQ(keeper.folded[1].check, Evidence::Check::DECIDED);
    EXPECT_EQ(keeper.folded[2].check, Evidence::Check::NONE);
    EXPECT_EQ(keeper.folded[1].status, Evidence::EventState::INTERMEDIATE_PRESENT);
    EXPECT_TRUE(keeper.folded[1].IsInError());
    EXPECT_TRUE(keeper.folded[1].IsLeaf());
    EXPECT_FALSE(keeper.folded[0].IsLeaf());
    EXPECT_EQ(keeper.folded[2].type, Evidence::EventType::UNDEVELOPED);
    EXPECT_EQ(keeper.folded[3].type, Evidence::EventType::BASIC) << "an event of no kind";
}

TEST_F(FaultTreeVisitorTest, AnOrOfEmptyBranchesDropsWhatStandsBeforeItAndNotBehind)
{
    const auto empty = Inner("O", Or({Observable("G", TRUE, nullptr), Inner("H", nullptr)}));
    Deduce(And({Leaf("A", TRUE), empty, Leaf("C", TRUE)}));
    EXPECT_THAT(Causes(), ElementsAre("C < T"));
}

} // namespace
