#include "arborist/deduction/possible_causes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/deduction/cause_text.h"
#include "tests/support/tree_builder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto TRUE = EventStatus::TRUE;

// Events whose ids begin with a small letter have an open check.
std::vector<std::string> CausesOf(const std::shared_ptr<Event>& top)
{
    const FlatTree tree(top);
    std::vector<bool> isOpen;
    for (FlatTree::Index place = 0; place < tree.Count(); ++place) {
        isOpen.push_back(tree.GetId(place)[0] >= 'a');
    }
    const VerdictFold fold(tree, isOpen);
    PossibleCauses causes(fold);
    std::vector<std::string> texts;
    while (const auto* leaves = causes.Next()) {
        std::vector<std::string> members;
        for (const auto leaf : *leaves) {
            members.push_back(tree.GetId(leaf));
        }
        texts.push_back(Joined(members, " & "));
    }
    EXPECT_EQ(causes.Next(), nullptr);
    return texts;
}

TEST(PossibleCausesTest, ComeInTheOrderOfExpansion)
{
    EXPECT_THAT(CausesOf(Inner("T", And({Inner("G", Or({Leaf("a"), Leaf("b")})), Leaf("C", TRUE),
                                         Inner("H", Or({Leaf("d"), Leaf("E"), Leaf("f")}))}))),
                ElementsAre("a & C & d", "a & C & f", "b & C & d", "b & C & f"));
}

TEST(PossibleCausesTest, CombineProductsOfSums)
{
    EXPECT_THAT(CausesOf(Inner("T", Or({Inner("G", And({Leaf("a"), Inner("H", Or({Leaf("b"), Leaf("c")}))})),
                                        Leaf("d")}))),
                ElementsAre("a & b", "a & c", "d"));
}

TEST(PossibleCausesTest, LeaveOutWhatIsFoundAlready)
{
    const auto gate = [] { return Or({Leaf("A", TRUE), Leaf("b")}); };
    const auto inError = [&](const char* id) { return Observable(id, TRUE, gate()); };
    EXPECT_THAT(CausesOf(Observable("T", TRUE, And({inError("G"), inError("H")}))),
                ElementsAre("A & b", "b & A", "b & b"));
}

TEST(PossibleCausesTest, HoldWhatAnOpenEventAboveCutsOff)
{
    EXPECT_THAT(CausesOf(Inner("T", Or({Observable("g", EventStatus::FALSE, Or({Leaf("A", TRUE)})), Leaf("B")}))),
                ElementsAre("A"));
}

TEST(PossibleCausesTest, AreNoneWithoutOpenChecks)
{
    EXPECT_THAT(CausesOf(Observable("T", TRUE, Or({Leaf("A", TRUE), Leaf("B")}))), IsEmpty());
    EXPECT_THAT(CausesOf(Inner("T", Or({}))), IsEmpty());
}

TEST(PossibleCausesTest, AreListedWithoutGoingThroughAllThatIsFound)
{
    // There are 10^12 cut sets already; the open check adds one more, which is the last.
    EventList gates;
    for (int gate = 0; gate < 12; ++gate) {
        EventList leaves;
        for (int leaf = 0; leaf < 10; ++leaf) {
            leaves.push_back(Leaf("A", TRUE));
            leaves.back()->SetId("A" + std::to_string(leaf));
        }
        gates.push_back(Observable("G" + std::to_string(gate), TRUE, Or(leaves)));
    }
    EXPECT_THAT(CausesOf(Observable("T", TRUE, Or({Observable("G", TRUE, And(gates)), Leaf("b")}))), ElementsAre("b"));
}

} // namespace
