#include "diagnosis/lint/reading/filters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace diagnosis::lint {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(FiltersTest, EntriesStandBetweenTheirDividers)
{
    EXPECT_THAT(EntriesOf(" A,B;;C|D\tE\n"), ElementsAre("A", "B", "C", "D", "E"));
    EXPECT_THAT(EntriesOf(" ,"), IsEmpty());
}

TEST(FiltersTest, ACommonEntryIsOneThatBothAccept)
{
    EXPECT_TRUE(HaveCommonEntry("", "A"));
    EXPECT_TRUE(HaveCommonEntry("A", ""));
    EXPECT_TRUE(HaveCommonEntry("A,B", "B,C"));
    EXPECT_TRUE(HaveCommonEntry("A", "LAP-A")) << "a device A passes both";
    EXPECT_TRUE(HaveCommonEntry("LAP-A", "A"));
    EXPECT_FALSE(HaveCommonEntry("A", "B"));
}

TEST(FiltersTest, OfFiltersThatAreTooLongNothingBadIsSaid)
{
    const std::string longest(4096, 'A');
    EXPECT_FALSE(HaveCommonEntry(longest, "B"));
    EXPECT_TRUE(HaveCommonEntry(longest + "A", "B"));
    EXPECT_TRUE(HaveCommonEntry("B", longest + "A"));
    EXPECT_TRUE(HasAllEntries("A", longest));
    EXPECT_FALSE(HasAllEntries("A", longest + "A"));
    EXPECT_FALSE(HasAllEntries(longest + "A", longest));
}

TEST(FiltersTest, AllEntriesAreThereOrNot)
{
    EXPECT_TRUE(HasAllEntries("A,B", "LAP-A,LAP-B"));
    EXPECT_FALSE(HasAllEntries("A,C", "LAP-A,LAP-B"));
    EXPECT_FALSE(HasAllEntries("", "A"));
}

TEST(FiltersTest, ACommonSceneIsADigitInBoth)
{
    EXPECT_TRUE(HaveCommonScene("12", "3,2"));
    EXPECT_FALSE(HaveCommonScene("12", "34"));
    EXPECT_FALSE(HaveCommonScene("", "1"));
}

} // namespace
} // namespace diagnosis::lint
