#include "arborist/deduction/root_cause_search.h"

#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/deduction/root_cause.h"
#include "arborist/frame/stopping.h"
#include "tests/deduction/cause_text.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"
#include "tests/support/tree_builder.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Eq;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto TRUE = EventStatus::TRUE;

std::vector<std::string> CutSetsOf(const FaultTree& tree, std::size_t most = RootCauseSearch::NO_LIMIT)
{
    RootCauseSearch search(tree);
    const std::size_t causes = search.Find(most).size();
    MinimalCutSet cutSets;
    for (std::size_t cause = 0; cause < causes; ++cause) {
        cutSets.push_back(search.CutSetOf(cause));
    }
    return TextOf(cutSets);
}

std::shared_ptr<FaultTree> Folded(std::shared_ptr<FaultTree> tree)
{
    const LogCapture log; // keeps the lines of the fold off the output
    tree->Check();
    return tree;
}

std::vector<std::string> WaysUpFound(const std::shared_ptr<FaultTree>& tree)
{
    return TextOf(RootCauseSearch(*Folded(tree)).Find());
}

std::vector<std::string> CutSetsFound(const std::shared_ptr<FaultTree>& tree)
{
    return CutSetsOf(*Folded(tree));
}

struct SearchCase {
    const char* name;
    std::shared_ptr<Gate> gate;
    std::vector<std::string> cutSets;
};
void PrintTo(const SearchCase& searchCase, std::ostream* out) { *out << searchCase.name; }
class CutSetsThatQualify : public testing::TestWithParam<SearchCase> {};

TEST_P(CutSetsThatQualify, AreFoundInOrder)
{
    EXPECT_THAT(CutSetsFound(TreeOf(Observable("T", TRUE, GetParam().gate))), ElementsAreArray(GetParam().cutSets));
}

// Ids of healthy leaves have small letters.
INSTANTIATE_TEST_SUITE_P(Table, CutSetsThatQualify, testing::Values(
    SearchCase{"NoGate", nullptr, {}},
    SearchCase{"NoEvents", And({}), {}},
    SearchCase{"ProductInOrder",
               And({Inner("G", Or({Leaf("A", TRUE), Leaf("b"), Leaf("C", TRUE)})),
                    Inner("H", Or({Leaf("D", TRUE), Leaf("E", TRUE)}))}),
               {"T/G/A & T/H/D", "T/G/A & T/H/E", "T/G/C & T/H/D", "T/G/C & T/H/E"}},
    SearchCase{"HealthyMemberOfAnAnd", And({Leaf("A", TRUE), Leaf("b")}), {}},
    SearchCase{"EmptyBranchEndsWhatStandsBeforeIt",
               And({Leaf("a"), Inner("G", nullptr), Leaf("B", TRUE), Leaf("C", TRUE)}), {"T/B & T/C"}},
    SearchCase{"EmptyBranchAtTheEnd", And({Leaf("A", TRUE), Inner("G", Or({Inner("H", nullptr)}))}), {}},
    SearchCase{"HealthyBranchIsNotEmpty",
               And({Leaf("A", TRUE), Inner("G", Or({Leaf("b")})), Leaf("C", TRUE)}), {}},
    SearchCase{"EmptyBranchInError", And({Leaf("a"), Observable("G", TRUE, nullptr), Leaf("B", TRUE)}), {"T/B"}},
    SearchCase{"BranchWithAnEmptyEndIsEmpty",
               And({Leaf("a"), Inner("G", And({Leaf("B", TRUE), Inner("H", Or({}))})), Leaf("C", TRUE)}), {"T/C"}},
    SearchCase{"EmptyBranchUnderOr", Or({Inner("G", nullptr), Leaf("A", TRUE)}), {"T/A"}},
    SearchCase{"EqualIdsBesideEachOtherMeanTheFirst", Or({Leaf("A"), Leaf("A", TRUE)}), {}},
    SearchCase{"EqualIdsInErrorStandTwice", Or({Leaf("A", TRUE), Leaf("A")}), {"T/A", "T/A"}},
    SearchCase{"SlashMeansTheFirstWithThePath",
               Or({Leaf("G/A", TRUE), Inner("G", Or({Leaf("A")}))}), {"T/G/A", "T/G/A"}},
    SearchCase{"SlashOfAHealthyLeaf", Or({Leaf("G/A"), Inner("G", Or({Leaf("A", TRUE)}))}), {}},
    SearchCase{"AmpersandMakesMembers", Or({Leaf("A&T/B"), Leaf("A", TRUE), Leaf("B", TRUE)}),
               {"T/A & T/B", "T/A", "T/B"}},
    SearchCase{"AmpersandThatLeadsNowhere", Or({Leaf("A&B", TRUE)}), {}},
    SearchCase{"EmptyIds", Or({Leaf("", TRUE), Inner("G", Or({Leaf("", TRUE)}))}), {"T/", "T/G/"}}),
    CaseName());

TEST(RootCauseSearchTest, ATopEventWithAnAmpersandIsNeverFound)
{
    EXPECT_THAT(WaysUpFound(TreeOf(Inner("T&U", Or({Leaf("A", TRUE)})))), IsEmpty());
}

TEST(RootCauseSearchTest, ATopEventWithASlashIsFound)
{
    EXPECT_THAT(WaysUpFound(TreeOf(Inner("T/U", Or({Leaf("A", TRUE)})))), ElementsAre("A < T/U"));
}

TEST(RootCauseSearchTest, TheRecordOfACauseHasItsLeafItsCutSetAndItsWayUp)
{
    const auto tree = Folded(TreeOf(
        Observable("T", TRUE, And({Inner("G", Or({Leaf("A"), Leaf("B", TRUE)})), Leaf("C", TRUE)}))));
    RootCauseSearch search(*tree);
    ASSERT_THAT(search.Find(), SizeIs(1));
    EXPECT_EQ(search.RecordOf(0), (Evidence::RootCause{"B", {"T/G/B", "T/C"}, {"B", "G", "T", "C"}}));
}

TEST(RootCauseSearchTest, AnEventInTwoPlacesHasTwoWaysUp)
{
    const auto leaf = Leaf("A", TRUE);
    const auto tree = TreeOf(Inner("T", Or({Inner("G", Or({leaf})), Inner("H", Or({leaf}))})));
    EXPECT_THAT(WaysUpFound(tree), ElementsAre("A < G < T", "A < H < T"));
}

TEST(RootCauseSearchTest, MoreIdsThanAFewAreToldApart)
{
    EventList leaves;
    for (int leaf = 0; leaf < 1000; ++leaf) {
        leaves.push_back(Leaf("E" + std::to_string(leaf), leaf % 2 == 0 ? TRUE : EventStatus::FALSE));
    }
    EXPECT_THAT(WaysUpFound(TreeOf(Inner("T", Or(leaves)))), SizeIs(500));
    // A healthy leaf of the same id before the others takes over the path of E998.
    leaves.insert(leaves.begin(), Leaf("E998"));
    EXPECT_THAT(WaysUpFound(TreeOf(Inner("T", Or(leaves)))), SizeIs(499));
}

// An AND over `branches` ORs of `width` leaves each; `isTrue` says which leaves of a branch are in error.
template <typename IsTrue>
std::shared_ptr<FaultTree> ProductTree(int branches, int width, IsTrue isTrue)
{
    EventList inner;
    for (int branch = 0; branch < branches; ++branch) {
        EventList leaves;
        for (int leaf = 0; leaf < width; ++leaf) {
            leaves.push_back(Leaf("E" + std::to_string(leaf), isTrue(branch, leaf) ? TRUE : EventStatus::FALSE));
        }
        inner.push_back(Inner("G" + std::to_string(branch), Or(leaves)));
    }
    return TreeOf(Observable("T", TRUE, And(inner)));
}

TEST(RootCauseSearchTest, ALimitFindsTheFirstOnesAndAllAreCounted)
{
    const auto leaves = [](const std::string& ids) {
        EventList events;
        for (const char id : ids) {
            events.push_back(Leaf(std::string(1, id), TRUE));
        }
        return Or(events);
    };
    const auto tree = TreeOf(Inner("T", Or({Leaf("X", TRUE),
        Inner("P", And({Inner("G", leaves("ABC")), Inner("H", And({Inner("I", leaves("DE")), Leaf("F", TRUE)})),
            Inner("J", leaves("GHI"))})),
        Leaf("Y", TRUE)})));
    const auto all = CutSetsFound(tree);
    ASSERT_THAT(all, SizeIs(20));
    EXPECT_EQ(RootCauseSearch(*tree).CountAll(), 20);
    for (std::size_t most = 1; most <= 21; ++most) {
        const auto expected = static_cast<std::ptrdiff_t>(std::min<std::size_t>(most, 20));
        EXPECT_THAT(CutSetsOf(*tree, most), ElementsAreArray(all.begin(), all.begin() + expected));
    }
}

TEST(RootCauseSearchTest, ALimitHoldsForMoreThanAnyMemoryTakes)
{
    const auto tree = Folded(ProductTree(10, 1000, [](int, int) { return true; }));
    RootCauseSearch search(*tree);
    EXPECT_DOUBLE_EQ(search.CountAll(), 1e30);
    ASSERT_THAT(search.Find(1500), SizeIs(1500));
    const CutSet last = search.CutSetOf(1499);
    EXPECT_EQ(last[8], "T/G8/E1");
    EXPECT_EQ(last[9], "T/G9/E499");
}

TEST(RootCauseSearchTest, AnExpansionOfTenToTheHundredIsNotExpanded)
{
    const auto one = ProductTree(100, 10, [](int, int leaf) { return leaf == 3; });
    EXPECT_THAT(WaysUpFound(one), SizeIs(1));
    const auto none = ProductTree(100, 10, [](int branch, int) { return branch != 50; });
    EXPECT_THAT(WaysUpFound(none), IsEmpty());
    EXPECT_EQ(RootCauseSearch(*none).CountAll(), 0);
    const auto some = ProductTree(100, 10, [](int branch, int leaf) { return leaf == 0 || (branch < 2 && leaf == 9); });
    EXPECT_THAT(WaysUpFound(some), SizeIs(4));
}

TEST(RootCauseSearchTest, OddIdsDoNotExpandEither)
{
    const auto tree = ProductTree(100, 10, [](int, int leaf) { return leaf == 3; });
    const auto& gate = tree->GetIntermediateEvent()->GetGate();
    gate->AddEvent(Inner("G&", Or({Leaf("A", TRUE)})));
    EXPECT_THAT(WaysUpFound(tree), IsEmpty());
    gate->AddEvent(Inner("empty", nullptr));
    gate->AddEvent(Leaf("G0/E3"));
    EXPECT_THAT(CutSetsFound(tree), ElementsAre("T/G0/E3"));
}

std::shared_ptr<FaultTree> DeepTree(int levels, const std::string& leafId)
{
    auto event = Inner("E0", Or({Leaf(leafId, TRUE)}));
    for (int level = 1; level < levels; ++level) {
        const std::string id = "E" + std::to_string(level);
        event = level % 2 == 0 ? Inner(id, Or({event, Leaf("L")})) : Inner(id, And({event, Leaf("L", TRUE)}));
    }
    return TreeOf(event);
}

TEST(RootCauseSearchTest, ThousandsOfLevelsAreWalked)
{
    for (const char* leafId : {"A", "A/B"}) {
        const auto tree = DeepTree(3000, leafId);
        tree->Check();
        RootCauseSearch search(*tree);
        const auto& found = search.Find();
        ASSERT_THAT(found, SizeIs(1));
        EXPECT_THAT(found[0]->GetPaths(), SizeIs(3002));
        EXPECT_THAT(found[0]->GetPaths().front(), Eq(leafId));
    }
}

// The second point lies in the product, the last one where the causes of its cut sets are collected.
TEST(RootCauseSearchTest, EndsWithTheDetectionOnItsWay)
{
    std::vector<std::shared_ptr<Event>> leaves;
    for (int leaf = 0; leaf < 100; ++leaf) {
        leaves.push_back(Leaf("E" + std::to_string(leaf), TRUE));
    }
    const auto tree = TreeOf(Inner("T", And({Inner("G", Or(leaves)), Inner("H", Or(leaves))})));
    tree->Check();
    StopRequest request;
    const StopScope scope(&request);
    request.Start(std::nullopt);
    EXPECT_THAT(RootCauseSearch(*tree).Find(), SizeIs(10'000));
    const std::uint64_t questions = request.GetQuestions();
    EXPECT_EQ(questions, 3 + 10'000U);
    for (const std::uint64_t question : {std::uint64_t{2}, questions}) {
        request.Start(std::nullopt);
        request.StopAtQuestion(question);
        EXPECT_THROW(RootCauseSearch(*tree).Find(), DetectionStopped);
    }
}

} // namespace
