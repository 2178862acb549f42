#include "arborist/deduction/plain/minimal_cutset_parser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/deduction/cause_text.h"
#include "tests/support/tree_builder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> CutSetsBelow(std::shared_ptr<Gate> gate)
{
    return TextOf(MinimalCutsetParser::GetMcs(*TreeOf(Inner("T", std::move(gate)))));
}

TEST(MinimalCutsetParserTest, ATreeWithoutATopEventHasNoCutSets)
{
    EXPECT_THAT(MinimalCutsetParser::GetMcs(FaultTree()), IsEmpty());
}

TEST(MinimalCutsetParserTest, ATopEventWithoutAGateOrEventsHasNoCutSets)
{
    EXPECT_THAT(CutSetsBelow(nullptr), IsEmpty());
    EXPECT_THAT(CutSetsBelow(Or({})), IsEmpty());
    EXPECT_THAT(CutSetsBelow(And({})), IsEmpty());
}

TEST(MinimalCutsetParserTest, OrGivesACutSetForEachLeaf)
{
    EXPECT_THAT(CutSetsBelow(Or({Leaf("E1"), Leaf("E2")})), ElementsAre("T/E1", "T/E2"));
}

TEST(MinimalCutsetParserTest, AndGivesOneCutSetOfAllLeaves)
{
    EXPECT_THAT(CutSetsBelow(And({Leaf("E1"), Leaf("E2")})), ElementsAre("T/E1 & T/E2"));
}

TEST(MinimalCutsetParserTest, AndExtendsEachCombinationByALeaf)
{
    EXPECT_THAT(CutSetsBelow(And({Inner("G1", Or({Leaf("A"), Leaf("B")})), Leaf("E")})),
                ElementsAre("T/G1/A & T/E", "T/G1/B & T/E"));
}

TEST(MinimalCutsetParserTest, AndCombinesALeafWithEachCombination)
{
    EXPECT_THAT(CutSetsBelow(And({Leaf("E"), Inner("G1", Or({Leaf("A"), Leaf("B")}))})),
                ElementsAre("T/E & T/G1/A", "T/E & T/G1/B"));
}

TEST(MinimalCutsetParserTest, TheLeftBranchOfAProductIsOutermost)
{
    EXPECT_THAT(CutSetsBelow(And({Inner("G", Or({Leaf("A"), Leaf("B")})), Inner("H", Or({Leaf("C"), Leaf("D")}))})),
                ElementsAre("T/G/A & T/H/C", "T/G/A & T/H/D", "T/G/B & T/H/C", "T/G/B & T/H/D"));
}

TEST(MinimalCutsetParserTest, ALeafReachedByTwoBranchesStandsInBothAndNothingIsRemoved)
{
    const auto leaf = Leaf("A");
    EXPECT_THAT(CutSetsBelow(Or({Inner("G", Or({leaf})), Inner("H", And({leaf, Leaf("B")})), leaf, leaf})),
                ElementsAre("T/G/A", "T/H/A & T/H/B", "T/A", "T/A"));
}

TEST(MinimalCutsetParserTest, UndevelopedEventsAreLeaves)
{
    EXPECT_THAT(CutSetsBelow(Or({Undeveloped("U")})), ElementsAre("T/U"));
}

TEST(MinimalCutsetParserTest, AnEmptyBranchUnderOrAddsNothing)
{
    EXPECT_THAT(CutSetsBelow(Or({Leaf("A"), Inner("G", nullptr), Leaf("B")})), ElementsAre("T/A", "T/B"));
}

TEST(MinimalCutsetParserTest, AnEmptyBranchUnderAndEmptiesTheResultAndTheNextChildStartsAfresh)
{
    EXPECT_THAT(CutSetsBelow(And({Leaf("A"), Inner("G", nullptr)})), IsEmpty());
    EXPECT_THAT(CutSetsBelow(And({Leaf("A"), Inner("G", Or({})), Leaf("B"), Leaf("C")})), ElementsAre("T/B & T/C"));
}

TEST(MinimalCutsetParserTest, IdsWithSeparatorsAreSplitLikeAnyOtherText)
{
    EXPECT_THAT(CutSetsBelow(Or({Leaf("A&B"), Leaf("C/D"), Leaf("&")})), ElementsAre("T/A & B", "T/C/D", "T/"));
}

class ThirdKindOfGate : public Gate {
public:
    EventStatus Check() override { return EventStatus::TRUE; }
};

TEST(MinimalCutsetParserTest, AGateThatIsNoOrIsTakenForAnAnd)
{
    const auto gate = std::make_shared<ThirdKindOfGate>();
    gate->AddEvent(Leaf("A"));
    gate->AddEvent(Leaf("B"));
    EXPECT_THAT(CutSetsBelow(gate), ElementsAre("T/A & T/B"));
}

} // namespace
