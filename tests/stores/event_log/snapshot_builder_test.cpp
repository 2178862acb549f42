#include "arborist/stores/event_log/snapshot_builder.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using Row = SnapshotBuilder::Row;

constexpr std::int64_t NEVER = std::numeric_limits<std::int64_t>::max();

Row RowOf(std::int64_t id, std::int64_t time, std::int64_t rowId, std::int64_t version = 1)
{
    return {true, true, true, id, time, version, rowId};
}

Row DroppedRow(std::int64_t id, std::int64_t time, std::int64_t rowId)
{
    return {false, true, true, id, time, 1, rowId};
}

class SnapshotBuilderTest : public testing::Test {
protected:
    SnapshotBuilderTest() { mBuilder.AddVersion(1, true, "1.0"); }

    // "id: time time; id?; ..." with "?" for ids that need a query of their own.
    std::string Built()
    {
        mSnapshot = std::move(mBuilder).Build({});
        std::string text;
        for (std::size_t number = 0; number < mSnapshot->GetEntryCount(); ++number) {
            const EventLogSnapshot::Entry entry = mSnapshot->GetEntry(number);
            text += std::to_string(entry.eventId) + (entry.needsQuery ? "?" : ":");
            for (std::uint32_t row = entry.begin; row < entry.end; ++row) {
                text += " " + std::to_string(mSnapshot->GetTime(row));
            }
            text += "; ";
        }
        return text;
    }

    SnapshotBuilder mBuilder{100};
    std::shared_ptr<const EventLogSnapshot> mSnapshot;
};

TEST_F(SnapshotBuilderTest, RowsAreGroupedByIdInTheirOrder)
{
    mBuilder.Reserve(3);
    mBuilder.AddRow(RowOf(9, 30, 1));
    mBuilder.AddRow(RowOf(-2, 20, 2));
    mBuilder.AddRow(RowOf(9, 10, 3));
    EXPECT_EQ(Built(), "-2: 20; 9: 30 10; ");
    EXPECT_EQ(mSnapshot->GetRowId(2), 3);
    EXPECT_EQ(mSnapshot->GetOrigin().lastMoment, 100);
}

TEST_F(SnapshotBuilderTest, RowsAfterTheLastMomentAreLeftOut)
{
    mBuilder.AddRow(RowOf(9, 100, 1));
    mBuilder.AddRow(RowOf(9, 101, 2));
    EXPECT_EQ(Built(), "9: 100; ");
}

TEST_F(SnapshotBuilderTest, WhatTheSnapshotCannotHoldIsLeftToTheQuery)
{
    constexpr std::int64_t TOO_MUCH = std::int64_t{1} << 32;
    mBuilder = SnapshotBuilder(NEVER);
    mBuilder.AddVersion(1, true, "1.0");
    mBuilder.AddVersion(2, true, "1.0");
    mBuilder.AddVersion(2, true, "2.0");
    mBuilder.AddRow(RowOf(1, TOO_MUCH, 1));
    mBuilder.AddRow(RowOf(2, -1, 2));
    mBuilder.AddRow(RowOf(3, 10, TOO_MUCH));
    mBuilder.AddRow(RowOf(4, 10, 4, 2)); // of two versions
    mBuilder.AddRow(RowOf(5, 10, 5, 7)); // of none
    mBuilder.AddRow({true, true, false, 6, 10, 1, 6}); // of numbers that are no whole ones
    mBuilder.AddRow(RowOf(TOO_MUCH, 10, 7)); // no rule can name it
    mBuilder.LeaveToQuery(8);
    mBuilder.AddRow(RowOf(9, 10, 9));
    EXPECT_EQ(Built(), "1?; 2?; 3?; 4?; 5?; 6?; 8?; 9: 10; ");
}

TEST_F(SnapshotBuilderTest, DroppedRowsAreUnseen)
{
    mBuilder.AddRow(DroppedRow(7, 10, 1));
    mBuilder.AddRow(DroppedRow(7, 40, 2));
    mBuilder.AddRow({false, false, true, 8, 0, 1, 3});
    EXPECT_EQ(Built(), "");
    EXPECT_TRUE(mSnapshot->HasUnseen(7, 7, 40));
    EXPECT_FALSE(mSnapshot->HasUnseen(7, 7, 41));
    EXPECT_TRUE(mSnapshot->HasUnseen(8, 8, NEVER)) << "its time is not known";
    EXPECT_TRUE(mSnapshot->HasUnseen(8, 8, NEVER, 5));
    EXPECT_TRUE(mSnapshot->HasUnseen(7, 7, 40, 40));
    EXPECT_FALSE(mSnapshot->HasUnseen(7, 7, 0, mSnapshot->ListUnseen(7, 7).front() - 1));
    EXPECT_TRUE(mSnapshot->ListUnseen(8, 8).empty());
}

TEST_F(SnapshotBuilderTest, DroppedRowsAfterTheLastMomentAreMissedByNobody)
{
    mBuilder.AddRow(DroppedRow(7, 101, 1));
    mBuilder.AddRow(DroppedRow(8, 101, 2));
    mBuilder.AddRow(DroppedRow(8, 100, 3));
    mBuilder.LeaveDroppedToQueries();
    EXPECT_EQ(Built(), "7?; 8?; ");
    EXPECT_FALSE(mSnapshot->HasUnseen(7, 7, -1000));
    EXPECT_TRUE(mSnapshot->HasUnseen(8, 8, 100));
}

TEST_F(SnapshotBuilderTest, IdsAreLeftToQueriesWithTheirDroppedRowsOrAllTogether)
{
    mBuilder.AddRow(RowOf(1, 10, 1));
    mBuilder.AddRow(DroppedRow(2, 10, 2));
    SnapshotBuilder all = mBuilder;
    mBuilder.LeaveDroppedToQueries();
    EXPECT_EQ(Built(), "1: 10; 2?; ");
    mBuilder = all;
    mBuilder.LeaveAllToQueries();
    EXPECT_EQ(Built(), "1?; 2?; ");
}

TEST_F(SnapshotBuilderTest, IdsWhoseRowsCannotBeToldApartAreLeftToQueries)
{
    mBuilder.AddRow(RowOf(1, 10, 9));
    mBuilder.AddRow(RowOf(2, 10, 4));
    mBuilder.AddRow(RowOf(1, 20, 9));
    mBuilder.AddRow(RowOf(3, 10, 3));
    mBuilder.AddRow(DroppedRow(3, 10, 5));
    mBuilder.AddRow(RowOf(2, 20, 6));
    mBuilder.LeaveUnorderedToQueries();
    EXPECT_EQ(Built(), "1? 10 20; 2: 10 20; 3? 10; ");
    EXPECT_TRUE(mSnapshot->AreRowIdsAscending());
}

TEST_F(SnapshotBuilderTest, OrderIsThatOfAllRowIds)
{
    mBuilder.AddRow(RowOf(1, 10, 5));
    mBuilder.AddRow(DroppedRow(2, 10, 6));
    EXPECT_TRUE(mBuilder.IsInOrder());
    SnapshotBuilder twice = mBuilder;
    twice.AddRow(RowOf(1, 10, 6));
    EXPECT_FALSE(twice.IsInOrder());
    mBuilder.AddRow(RowOf(std::int64_t{1} << 40, 10, 4)); // counts for the order alone
    EXPECT_FALSE(mBuilder.IsInOrder());
}

TEST_F(SnapshotBuilderTest, VersionsAreKnownByTheirRowNumbers)
{
    mBuilder.AddVersion(-5, true, "2.0");
    mBuilder.AddVersion(1000000, true, "3.0");
    mBuilder.AddVersion(4, false, "4.0");
    EXPECT_TRUE(mBuilder.HasVersion(1));
    EXPECT_TRUE(mBuilder.HasVersion(-5));
    EXPECT_TRUE(mBuilder.HasVersion(1000000));
    EXPECT_FALSE(mBuilder.HasVersion(0));
    EXPECT_FALSE(mBuilder.HasVersion(4));
    mBuilder.AddRow(RowOf(1, 10, 1, -5));
    EXPECT_EQ(Built(), "1: 10; ");
    EXPECT_EQ(mSnapshot->Count({0, 1, true}, {0, mSnapshot->NumberOfVersion("2.0")}), 1U);
    EXPECT_NE(mSnapshot->NumberOfVersion("4.0"), EventLogSnapshot::UNNAMED_VERSION);
}

TEST_F(SnapshotBuilderTest, VersionOfTwoNamesStaysAmbiguous)
{
    mBuilder.AddVersion(2, true, "2.0");
    mBuilder.AddVersion(2, true, "3.0");
    mBuilder.AddVersion(2, true, "3.0");
    mBuilder.AddRow(RowOf(5, 10, 1, 2));
    EXPECT_EQ(Built(), "5?; ");
}

TEST_F(SnapshotBuilderTest, NamesThatAreKnownKeepTheirNumbersWhereThereAreTooMany)
{
    for (int number = 2; number <= 70000; ++number) {
        mBuilder.AddVersion(number, true, std::to_string(number));
    }
    mBuilder.AddVersion(80000, true, "2");
    mBuilder.AddRow(RowOf(5, 10, 1, 80000));
    mBuilder.AddRow(RowOf(6, 10, 2, 70000));
    EXPECT_EQ(Built(), "5: 10; 6?; ");
    EXPECT_EQ(mSnapshot->Count({0, 1, true}, {0, mSnapshot->NumberOfVersion("2")}), 1U);
}

} // namespace
