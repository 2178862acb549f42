#include "arborist/deduction/plain/root_cause_locator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/deduction/plain/cause_node.h"
#include "arborist/deduction/root_cause.h"
#include "arborist/frame/log.h"
#include "tests/deduction/cause_text.h"
#include "tests/support/log_capture.h"
#include "tests/support/tree_builder.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr auto TRUE = EventStatus::TRUE;

// Calls the steps that no run reaches, behind a test that always fails.
class RootCauseLocatorTest : public testing::Test {
protected:
    using DepthOfPath = std::map<std::string, int>;

    static std::vector<std::string> CausesOf(const std::shared_ptr<FaultTree>& tree, const MinimalCutSet& cutSets)
    {
        return TextOf(RootCauseLocator().FindRootCause(*tree, cutSets));
    }
    static std::shared_ptr<CauseNode> Mirror(const std::shared_ptr<Event>& top)
    {
        return RootCauseLocator().ParseEvent(top);
    }
    static std::shared_ptr<CauseNode> NodeAt(const std::shared_ptr<CauseNode>& top, const std::string& path)
    {
        return RootCauseLocator().GetChildNodeByXpath(top, path);
    }
    static bool IsRootCause(const std::shared_ptr<CauseNode>& node) { return RootCauseLocator().IsRootCause(node); }
    static int IsParentError(const std::string& path, const std::shared_ptr<CauseNode>& top, DepthOfPath& depths)
    {
        return RootCauseLocator().IsParentError(path, top, depths);
    }
    static std::shared_ptr<RootCause> AddEvent(const std::shared_ptr<RootCause>& rootCause,
                                               const std::shared_ptr<CauseNode>& node)
    {
        return RootCauseLocator().AddEvent(rootCause, node);
    }
    static std::vector<std::string> ChildRootCauses(const std::shared_ptr<CauseNode>& top, const DepthOfPath& depths,
                                                    std::vector<std::string>& usedPaths, int depth)
    {
        std::vector<std::shared_ptr<RootCause>> result;
        RootCauseLocator().FindChildRootCause(top, result, depths, usedPaths, depth);
        return TextOf(result);
    }
    // T above G, both in error, and G above A, which is not in error.
    static std::shared_ptr<CauseNode> HealthyLeafBelowErrors()
    {
        return Mirror(Observable("T", TRUE, Or({Observable("G", TRUE, Or({Leaf("A")})), Leaf("B", TRUE)})));
    }

    LogCapture mLog;
};

TEST_F(RootCauseLocatorTest, AnEmptyTreeYieldsNothingInSilence)
{
    EXPECT_THAT(CausesOf(std::make_shared<FaultTree>(), {{"T/A"}}), IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RootCauseLocatorTest, ATrueLeafYieldsItsWayUpLeafFirstAndTopLast)
{
    const auto leaf = Leaf("A", TRUE);
    const auto inner = Observable("G", TRUE, Or({leaf}));
    const auto top = Observable("T", TRUE, Or({inner}));
    const auto causes = RootCauseLocator().FindRootCause(*TreeOf(top), {{"T/G/A"}});
    ASSERT_EQ(causes.size(), 1U);
    EXPECT_THAT(causes[0]->GetLeaf(), ElementsAre(leaf, inner, top));
    EXPECT_THAT(causes[0]->GetPaths(), ElementsAre("A", "G", "T"));
}

TEST_F(RootCauseLocatorTest, MembersListWhatTheyShareOnce)
{
    const auto tree = TreeOf(Observable("T", TRUE, And({Leaf("A", TRUE), Leaf("B", TRUE)})));
    EXPECT_THAT(CausesOf(tree, {{"T/A", "T/B"}}), ElementsAre("A < T < B"));
}

TEST_F(RootCauseLocatorTest, AnIdThatIsAlreadyThereAddsNothingWhoeverHasIt)
{
    const auto tree = TreeOf(Observable("T", TRUE, And({Observable("A", TRUE, Or({Leaf("A", TRUE)}))})));
    EXPECT_THAT(CausesOf(tree, {{"T/A/A"}}), ElementsAre("A < T"));
}

TEST_F(RootCauseLocatorTest, OneHealthyMemberDropsTheCutSetAndTheMembersBeforeIt)
{
    const auto tree = TreeOf(Observable("T", TRUE, And({Leaf("A", TRUE), Leaf("B"), Leaf("C", TRUE)})));
    EXPECT_THAT(CausesOf(tree, {{"T/A", "T/B"}, {"T/C"}}), ElementsAre("C < T"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RootCauseLocatorTest, AHealthyEventAboveDropsTheCutSet)
{
    const auto tree = TreeOf(Observable("T", TRUE, Or({Observable("G", EventStatus::FALSE, Or({Leaf("A", TRUE)}))})));
    EXPECT_THAT(CausesOf(tree, {{"T/G/A"}}), IsEmpty());
}

TEST_F(RootCauseLocatorTest, APathThatIsNotInTheTreeDropsTheCutSet)
{
    const auto tree = TreeOf(Observable("T", TRUE, Or({Leaf("A", TRUE)})));
    EXPECT_THAT(CausesOf(tree, {{"T/A", "T/nowhere"}, {""}, {"A"}}), IsEmpty());
}

TEST_F(RootCauseLocatorTest, DuplicatesYieldTheirRootCauseEachTime)
{
    const auto tree = TreeOf(Observable("T", TRUE, Or({Leaf("A", TRUE), Leaf("B", TRUE)})));
    EXPECT_THAT(CausesOf(tree, {{"T/B"}, {"T/A"}, {"T/B"}}), ElementsAre("B < T", "A < T", "B < T"));
}

TEST_F(RootCauseLocatorTest, OfEqualPathsTheFirstInTheOrderOfTheLeavesIsMeant)
{
    const auto tree = TreeOf(Observable("T", TRUE, Or({Leaf("A"), Leaf("A", TRUE)})));
    EXPECT_THAT(CausesOf(tree, {{"T/A"}}), IsEmpty());
}

TEST_F(RootCauseLocatorTest, TheMirrorHasEveryEventWithItsPath)
{
    const auto mirror = Mirror(Inner("T", Or({Inner("G", And({Leaf("A")})), Inner("H", nullptr), Undeveloped("U")})));
    std::vector<std::string> paths;
    for (const auto& leaf : mirror->GetAllChildNodes()) {
        paths.push_back(leaf->GetPath());
    }
    EXPECT_THAT(paths, ElementsAre("T/G/A", "T/H", "T/U"));
}

TEST_F(RootCauseLocatorTest, LookUpFindsLeavesAndTheEventsAboveThem)
{
    const auto mirror = HealthyLeafBelowErrors();
    EXPECT_EQ(NodeAt(mirror, "T"), mirror);
    EXPECT_EQ(NodeAt(mirror, "T/G")->GetEvent()->GetId(), "G");
    EXPECT_EQ(NodeAt(mirror, "T/G/A")->GetEvent()->GetId(), "A");
    EXPECT_EQ(NodeAt(mirror, ""), nullptr);
    EXPECT_EQ(NodeAt(nullptr, "T"), nullptr);
}

TEST_F(RootCauseLocatorTest, ANullNodeIsNoRootCause)
{
    EXPECT_FALSE(IsRootCause(nullptr));
}

TEST_F(RootCauseLocatorTest, IntermediateTrueCountsAsError)
{
    EXPECT_TRUE(IsRootCause(Mirror(Leaf("A", EventStatus::INTERMEDIATE_TRUE))));
    EXPECT_FALSE(IsRootCause(Mirror(Undeveloped("U"))));
}

TEST_F(RootCauseLocatorTest, AddEventTakesNullForNothing)
{
    const auto rootCause = std::make_shared<RootCause>();
    EXPECT_EQ(AddEvent(rootCause, nullptr), rootCause);
    EXPECT_THAT(rootCause->GetPaths(), IsEmpty());
    EXPECT_EQ(AddEvent(nullptr, Mirror(Leaf("A"))), nullptr);
}

TEST_F(RootCauseLocatorTest, WithAnEmptyMapNoAncestorIsEverFound)
{
    DepthOfPath depths;
    EXPECT_EQ(IsParentError("T/G/A", HealthyLeafBelowErrors(), depths), -1);
    EXPECT_THAT(depths, IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RootCauseLocatorTest, BehindTheEmptyMapTheNearestAncestorInErrorIsEntered)
{
    DepthOfPath depths{{"X", 1}};
    EXPECT_EQ(IsParentError("T/G/A", HealthyLeafBelowErrors(), depths), 2);
    EXPECT_THAT(depths, ElementsAre(Pair("T/G", 2), Pair("X", 1)));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_INFO),
                ElementsAre("FUNc:RootCauseLocator::IsParentError: parent node is error Xpath: T/G , depth: 2 "));
}

TEST_F(RootCauseLocatorTest, BehindTheEmptyMapAnOuterAncestorIsEnteredButNotAnswered)
{
    const auto mirror = Mirror(Observable("T", TRUE, Or({Inner("G", Or({Leaf("A", TRUE)}))})));
    DepthOfPath depths{{"X", 1}};
    EXPECT_EQ(IsParentError("T/G/A", mirror, depths), -1);
    EXPECT_THAT(depths, ElementsAre(Pair("T", 1), Pair("X", 1)));
}

TEST_F(RootCauseLocatorTest, BehindTheEmptyMapWhatHasNoParentAnswersMinusOne)
{
    DepthOfPath depths{{"X", 1}};
    const auto mirror = HealthyLeafBelowErrors();
    EXPECT_EQ(IsParentError("", mirror, depths), -1);
    EXPECT_EQ(IsParentError("T", mirror, depths), -1);
    EXPECT_EQ(IsParentError("T/nowhere/A", mirror, depths), -1);
    EXPECT_EQ(IsParentError("T/A", nullptr, depths), -1);
    EXPECT_THAT(depths, ElementsAre(Pair("X", 1)));
}

TEST_F(RootCauseLocatorTest, AnAncestorOfTheDepthBecomesARootCauseOfItsOwn)
{
    std::vector<std::string> usedPaths;
    EXPECT_THAT(ChildRootCauses(HealthyLeafBelowErrors(), {{"T/G", 2}, {"T", 1}}, usedPaths, 2),
                ElementsAre("G < T"));
    EXPECT_THAT(usedPaths, ElementsAre("T/G"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RootCauseLocatorTest, AnAncestorOfAUsedPathIsPassedOverWithALine)
{
    std::vector<std::string> usedPaths{"T/B"};
    EXPECT_THAT(ChildRootCauses(HealthyLeafBelowErrors(), {{"T", 1}}, usedPaths, 1), IsEmpty());
    EXPECT_THAT(
        mLog.Lines(FT::LEVEL_INFO),
        ElementsAre("FUNc:RootCauseLocator::FindChildRootCause: child isContains parent node, xpath : T"));
}
