#include "arborist/deduction/judge_tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/deduction/root_cause_search.h"
#include "bench/heap_gauge.h"
#include "tests/deduction/cause_text.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"
#include "tests/support/tree_builder.h"

namespace {

using Evidence::Check;
using Evidence::TreeVerdict;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Word = TreeVerdict::Word;

constexpr auto TRUE = EventStatus::TRUE;
constexpr auto FALSE = EventStatus::FALSE;
constexpr auto NONE = Check::NONE;
constexpr auto SURE = Check::DECIDED;
constexpr auto OPEN = Check::DATA_MISSING;

TreeVerdict Judge(std::shared_ptr<IntermediateEvent> top, const std::vector<Check>& checks)
{
    const auto tree = TreeOf(std::move(top));
    LogCapture log; // keeps the lines of the fold off the output
    tree->Check();
    return JudgeTree(*tree, !RootCauseSearch(*tree).Find().empty(), checks);
}

std::string TextOf(const TreeVerdict& verdict)
{
    return std::string(Evidence::TreeVerdictText(verdict.word)) + (verdict.isComplete ? "" : ", incomplete") +
        (verdict.isTrueWithoutCause ? ", true_without_cause" : "");
}

struct VerdictCase {
    const char* name;
    std::shared_ptr<IntermediateEvent> top;
    /// In pre-order.
    std::vector<Check> checks;
    const char* verdict;
};
void PrintTo(const VerdictCase& verdictCase, std::ostream* out) { *out << verdictCase.name; }
class Verdicts : public testing::TestWithParam<VerdictCase> {};

TEST_P(Verdicts, SayWhatTheyRestOn)
{
    EXPECT_EQ(TextOf(Judge(GetParam().top, GetParam().checks)), GetParam().verdict);
}

std::shared_ptr<IntermediateEvent> OrOf(const EventList& events) { return Inner("T", Or(events)); }
std::shared_ptr<IntermediateEvent> AndOf(const EventList& events) { return Inner("T", And(events)); }
std::shared_ptr<Event> Healthy() { return Leaf("healthy"); }

INSTANTIATE_TEST_SUITE_P(WithChecks, Verdicts, testing::Values(
    VerdictCase{"RootCause", OrOf({Leaf("A", TRUE)}), {NONE, SURE}, "fault"},
    VerdictCase{"RootCauseBesideAnOpenCheck", OrOf({Leaf("A", TRUE), Leaf("B")}), {NONE, SURE, OPEN},
                "fault, incomplete"},
    VerdictCase{"RootCauseBesideAnOpenCheckThatIsCutOff",
                OrOf({Leaf("A", TRUE), Inner("G", And({Leaf("B"), Healthy()}))}), {NONE, SURE, NONE, OPEN, SURE},
                "fault"},
    VerdictCase{"RootCauseOnADefault", OrOf({Leaf("A", TRUE)}), {NONE, OPEN}, "fault"},
    VerdictCase{"AllDecided", OrOf({Leaf("A"), Leaf("B")}), {NONE, SURE, SURE}, "no_fault"},
    VerdictCase{"OneDecidedOneFilteredByScene", OrOf({Leaf("A"), Leaf("B")}), {NONE, SURE, Check::NOT_SELECTED},
                "no_fault"},
    VerdictCase{"OneOpen", OrOf({Leaf("A"), Leaf("B")}), {NONE, SURE, OPEN}, "undecided, incomplete"},
    VerdictCase{"OneUnusable", OrOf({Leaf("A"), Leaf("B")}), {NONE, SURE, Check::RULE_UNUSABLE},
                "undecided, incomplete"},
    VerdictCase{"OneNotChecked", OrOf({Leaf("A"), Undeveloped("U")}), {NONE, SURE, Check::NOT_CHECKED},
                "undecided, incomplete"},
    VerdictCase{"OpenBesideADecidedMemberOfAnAnd", AndOf({Leaf("A"), Leaf("B")}), {NONE, SURE, OPEN}, "no_fault"},
    VerdictCase{"OpenBesideATrueMemberOfAnAnd", AndOf({Leaf("A", TRUE), Leaf("B")}), {NONE, SURE, OPEN},
                "undecided, incomplete"},
    VerdictCase{"OpenBelowAnObservableThatIsFalse",
                OrOf({Observable("G", FALSE, Or({Leaf("A")}))}), {NONE, SURE, OPEN}, "no_fault"},
    VerdictCase{"OpenObservableAboveATrueLeaf",
                OrOf({Observable("G", FALSE, Or({Leaf("A", TRUE)}))}), {NONE, OPEN, SURE}, "undecided, incomplete"},
    VerdictCase{"OpenObservableAboveAHealthyLeaf",
                OrOf({Leaf("A"), Observable("G", FALSE, And({Leaf("B"), Leaf("C")}))}), {NONE, SURE, OPEN, SURE, OPEN},
                // The event would be true, and nothing below explains it.
                "undecided, incomplete"},
    VerdictCase{"NoneApplies", OrOf({Leaf("A"), Leaf("B")}), {NONE, Check::NOT_APPLICABLE, Check::NOT_APPLICABLE},
                "not_applicable"},
    VerdictCase{"NoneIsSelected", OrOf({Leaf("A"), Leaf("B")}), {NONE, Check::NOT_SELECTED, Check::NOT_APPLICABLE},
                "undecided"},
    VerdictCase{"NothingDecidedAndAnOpenCheckThatIsCutOff",
                AndOf({Leaf("A"), Leaf("B")}), {NONE, Check::NOT_APPLICABLE, OPEN}, "undecided, incomplete"},
    VerdictCase{"NoRules", OrOf({Leaf("A"), Leaf("B")}), {NONE, Check::NOT_CHECKED, Check::NOT_CHECKED},
                "undecided, incomplete"}), CaseName());

INSTANTIATE_TEST_SUITE_P(OfOddTrees, Verdicts, testing::Values(
    VerdictCase{"NoEvents", OrOf({}), {NONE}, "undecided"},
    VerdictCase{"TrueWithoutEvents", AndOf({}), {NONE}, "undecided, true_without_cause"},
    VerdictCase{"TrueWithoutCause", OrOf({Leaf("A"), Inner("G", And({}))}), {NONE, SURE, NONE},
                "undecided, true_without_cause"},
    VerdictCase{"TrueWithoutCauseBesideAnOpenCheck", OrOf({Leaf("A"), Inner("G", And({}))}), {NONE, OPEN, NONE},
                "undecided, incomplete, true_without_cause"},
    VerdictCase{"TrueWithoutCauseWhateverAnOpenCheckSays",
                OrOf({Inner("G", And({})), Inner("H", And({Leaf("A"), Healthy()}))}), {NONE, NONE, NONE, OPEN, SURE},
                "undecided, true_without_cause"},
    VerdictCase{"PerhapsTrueWithoutCause", OrOf({Healthy(), Inner("G", And({Leaf("A"), Inner("H", And({}))}))}),
                {NONE, SURE, NONE, OPEN, NONE}, "undecided, incomplete"},
    VerdictCase{"NoGate", OrOf({Healthy(), Inner("G", nullptr)}), {NONE, SURE, Check::RULE_UNUSABLE},
                "undecided, incomplete"},
    VerdictCase{"NoGateThatNoCheckTells", OrOf({Healthy(), Inner("G", nullptr)}), {NONE, SURE, NONE},
                "undecided, incomplete"},
    VerdictCase{"NoGateWhereItCouldNotMatter", AndOf({Healthy(), Inner("G", nullptr)}),
                {NONE, SURE, Check::RULE_UNUSABLE}, "undecided, incomplete"},
    VerdictCase{"NoGateBesideARootCause", OrOf({Leaf("A", TRUE), Inner("G", nullptr)}),
                {NONE, SURE, Check::RULE_UNUSABLE}, "fault, incomplete"},
    VerdictCase{"TopWithoutGate", Inner("T", nullptr), {Check::RULE_UNUSABLE}, "undecided, incomplete"}), CaseName());

TEST(JudgeTreeTest, TreeWithoutATopEventIsUndecided)
{
    EXPECT_EQ(TextOf(JudgeTree(FaultTree("Tree", "1", "type"), false, {})), "undecided");
}

TEST(JudgeTreeTest, OrderCountsWhereAGateIsEmpty)
{
    // The empty gate is true but has no combination, so it drops the events before it from the cut sets.
    const auto empty = [] { return Inner("G", And({})); };
    const TreeVerdict behind = Judge(AndOf({empty(), Leaf("A"), Leaf("B")}), {NONE, NONE, OPEN, SURE});
    EXPECT_EQ(TextOf(behind), "no_fault");
    const TreeVerdict first = Judge(AndOf({empty(), Leaf("A"), Leaf("B", TRUE)}), {NONE, NONE, OPEN, SURE});
    ASSERT_THAT(first.possibleCauses, SizeIs(1));
    EXPECT_THAT(first.possibleCauses[0].cutSet, ElementsAre("T/A", "T/B"));
    const TreeVerdict between = Judge(AndOf({Leaf("A"), empty(), Leaf("B", TRUE)}), {NONE, OPEN, NONE, SURE});
    ASSERT_THAT(between.possibleCauses, SizeIs(1));
    EXPECT_THAT(between.possibleCauses[0].cutSet, ElementsAre("T/B"));
    const TreeVerdict last = Judge(AndOf({Leaf("A"), Leaf("B", TRUE), empty()}), {NONE, OPEN, SURE, NONE});
    EXPECT_THAT(last.possibleCauses, IsEmpty());
    EXPECT_EQ(TextOf(last), "undecided, incomplete");
}

TEST(JudgeTreeTest, PossibleCausesAreTheCutSetsThatWouldBeAdded)
{
    const TreeVerdict verdict = Judge(
        OrOf({Leaf("A", TRUE), Leaf("B"),
              Inner("G", And({Leaf("C", TRUE), Inner("H", Or({Leaf("D"), Leaf("E", TRUE)}))}))}),
        {NONE, SURE, OPEN, NONE, SURE, NONE, OPEN, SURE});
    ASSERT_THAT(verdict.possibleCauses, SizeIs(2));
    EXPECT_EQ(verdict.possibleCauses[0].id, "B");
    EXPECT_THAT(verdict.possibleCauses[0].cutSet, ElementsAre("T/B"));
    EXPECT_EQ(verdict.possibleCauses[1].id, "C");
    EXPECT_THAT(verdict.possibleCauses[1].cutSet, ElementsAre("T/G/C", "T/G/H/D"));
    EXPECT_FALSE(verdict.arePossibleCausesTruncated);
}

TEST(JudgeTreeTest, AHundredPossibleCausesAreToldAndNoMore)
{
    EventList leaves;
    std::vector<Check> checks{NONE};
    for (int leaf = 0; leaf < 100; ++leaf) {
        leaves.push_back(Leaf("A" + std::to_string(leaf)));
        checks.push_back(OPEN);
    }
    EXPECT_THAT(Judge(OrOf(leaves), checks).possibleCauses, SizeIs(100));
    EXPECT_FALSE(Judge(OrOf(leaves), checks).arePossibleCausesTruncated);
    leaves.push_back(Leaf("B"));
    checks.push_back(OPEN);
    EXPECT_THAT(Judge(OrOf(leaves), checks).possibleCauses, SizeIs(100));
    EXPECT_TRUE(Judge(OrOf(leaves), checks).arePossibleCausesTruncated);
}

TEST(JudgeTreeTest, CountsEachWord)
{
    const TreeVerdict verdict = Judge(
        OrOf({Leaf("A"), Leaf("B"), Leaf("C"), Leaf("D"), Leaf("E"), Leaf("F"), Leaf("G")}),
        {NONE, SURE, SURE, Check::NOT_APPLICABLE, Check::NOT_SELECTED, Check::NOT_CHECKED, OPEN, Check::RULE_UNUSABLE});
    EXPECT_EQ(verdict.checks.Total(), 7U);
    EXPECT_EQ(verdict.checks.Open(), 3U);
    EXPECT_EQ(verdict.checks.Of(SURE), 2U);
    for (const Check check : {Check::NOT_APPLICABLE, Check::NOT_SELECTED, Check::NOT_CHECKED, OPEN,
                              Check::RULE_UNUSABLE}) {
        EXPECT_EQ(verdict.checks.Of(check), 1U) << Evidence::CheckText(check);
    }
}

TEST(JudgeTreeTest, ATwentyfoldProductIsJudgedWithoutExpandingIt)
{
    EventList gates;
    std::vector<Check> checks{NONE};
    for (int gate = 0; gate < 20; ++gate) {
        EventList leaves;
        checks.push_back(NONE);
        for (int leaf = 0; leaf < 10; ++leaf) {
            leaves.push_back(Leaf("L" + std::to_string(leaf)));
            checks.push_back(OPEN);
        }
        gates.push_back(Inner("G" + std::to_string(gate), Or(leaves)));
    }
    // Trying the answers one after the other would not end: there are 10^20 cut sets.
    const auto top = AndOf(gates);
    const HeapGauge heap;
    const TreeVerdict verdict = Judge(top, checks);
    EXPECT_LT(heap.Peak(), 500'000.0) << "bytes, of which the paths of the hundred causes that are told take most";
    EXPECT_EQ(TextOf(verdict), "undecided, incomplete");
    ASSERT_THAT(verdict.possibleCauses, SizeIs(MOST_POSSIBLE_CAUSES));
    EXPECT_EQ(verdict.possibleCauses[13].cutSet[18], "T/G18/L1");
    EXPECT_EQ(verdict.possibleCauses[13].cutSet[19], "T/G19/L3");
    EXPECT_TRUE(verdict.arePossibleCausesTruncated);
}

TEST(JudgeTreeTest, WhatHasNoCheckIsNoOpenOne)
{
    EXPECT_EQ(TextOf(Judge(OrOf({Healthy(), Healthy()}), {NONE, OPEN})), "undecided, incomplete");
    EXPECT_EQ(TextOf(Judge(OrOf({Healthy(), Healthy()}), {NONE, SURE})), TextOf(Judge(OrOf({Healthy()}), {NONE, SURE})));
}

} // namespace
