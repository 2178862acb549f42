#include "arborist/deduction/flat_tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/tree_builder.h"

namespace {

std::vector<std::string> Places(const FlatTree& tree)
{
    std::vector<std::string> places;
    for (FlatTree::Index place = 0; place < tree.Count(); ++place) {
        places.push_back(tree.GetPath(place) + " to " + std::to_string(tree.GetEnd(place)));
    }
    return places;
}

TEST(FlatTreeTest, ListsPlacesInPreOrderWithTheirEnds)
{
    const std::shared_ptr<Event> top = Inner("T", Or({Leaf("A"), Inner("G", And({Leaf("B"), Inner("H", Or({}))})),
                                                      Inner("I", nullptr), Undeveloped("C")}));
    EXPECT_THAT(Places(FlatTree(top)), testing::ElementsAre("T to 7", "T/A to 2", "T/G to 5", "T/G/B to 4",
                                                            "T/G/H to 5", "T/I to 6", "T/C to 7"));
}

TEST(FlatTreeTest, HasNoPlacesWithoutATop)
{
    const std::shared_ptr<Event> none;
    EXPECT_EQ(FlatTree(none).Count(), 0U);
}

TEST(FlatTreeTest, TakesNoTemporaryPointer)
{
    EXPECT_FALSE((std::is_constructible_v<FlatTree, std::shared_ptr<IntermediateEvent>>));
    EXPECT_FALSE((std::is_constructible_v<FlatTree, std::shared_ptr<Event>>));
}

TEST(FlatTreeTest, AnEventThatStandsTwiceHasTwoPlaces)
{
    const auto shared = Inner("G", Or({Leaf("A")}));
    const std::shared_ptr<Event> top = Inner("T", And({shared, shared}));
    EXPECT_THAT(Places(FlatTree(top)),
                testing::ElementsAre("T to 5", "T/G to 3", "T/G/A to 3", "T/G to 5", "T/G/A to 5"));
}

} // namespace
