#include "arborist/stores/event_log/event_log_index.h"

#include <gmock/gmock.h>

#include "arborist/stores/sql/sql_operator.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace {

using State = EventLogIndex::State;

class EventLogIndexTest : public testing::Test {
protected:
    State Read(const EventLogBuilder& builder)
    {
        builder.WriteTo(mPath);
        mDatabase.Open(mPath);
        return mIndex.Refresh();
    }

    // "id: time time; id: ..." with "?" for ids that need a query of their own.
    std::string Rows() const
    {
        std::string text;
        for (std::size_t number = 0; number < mIndex.GetEntryCount(); ++number) {
            const EventLogIndex::Entry entry = mIndex.GetEntry(number);
            text += (text.empty() ? "" : "; ") + std::to_string(entry.eventId) + (entry.needsQuery ? "?" : ":");
            for (std::uint32_t position = entry.begin; position < entry.end; ++position) {
                text += " " + std::to_string(mIndex.GetTime(position));
            }
        }
        return text;
    }

    std::size_t Count(const EventLogIndex::Filter& filter) const
    {
        return mIndex.Count(mIndex.GetEntry(0), filter);
    }

    TempDir mDir;
    LogCapture mLog;
    std::string mPath = mDir.Path("log.db");
    FT::sql::SqlDatabase mDatabase;
    EventLogIndex mIndex{mDatabase.GetHandle()};
};

TEST_F(EventLogIndexTest, GroupsRowsByIdInTheOrderOfTheLog)
{
    EXPECT_EQ(Read(EventLogBuilder().Rows({{30, 7, "", ""}, {20, -5, "", ""}, {10, 7, "", ""}, {40, 7, "", ""},
        {50, -5, "", ""}, {60, 9, "", ""}})), State::READY);
    EXPECT_EQ(Rows(), "-5: 20 50; 7: 30 10 40; 9: 60");
    EXPECT_TRUE(mIndex.GetEntry(0).isAscending);
    EXPECT_FALSE(mIndex.GetEntry(1).isAscending);
    EXPECT_EQ(mIndex.GetRowId(mIndex.GetEntry(2).begin), 6);
    EXPECT_THAT(mLog.Lines(), testing::IsEmpty());
}

TEST_F(EventLogIndexTest, CountsFromTheStartOnAndByVersion)
{
    ASSERT_EQ(Read(EventLogBuilder().Rows({{10, 7, "1", ""}, {20, 7, "2", ""}, {30, 7, "", ""}, {40, 7, "2", ""}})),
        State::READY);
    EXPECT_EQ(Count(EventLogIndex::FilterFor(20)), 3U);
    EXPECT_EQ(Count(EventLogIndex::FilterFor(21)), 2U);
    EXPECT_EQ(Count(EventLogIndex::FilterFor(-1)), 4U);
    EXPECT_EQ(Count(EventLogIndex::FilterFor(41)), 0U);
    EXPECT_EQ(Count(mIndex.FilterFor(0, "2")), 3U);
    EXPECT_EQ(Count(mIndex.FilterFor(0, "1")), 2U);
    EXPECT_EQ(Count(mIndex.FilterFor(20, "1")), 1U);
    EXPECT_EQ(Count(mIndex.FilterFor(0, "")), 1U);
    EXPECT_EQ(Count(mIndex.FilterFor(0, "unheard of")), 1U);
}

TEST_F(EventLogIndexTest, CountsRowsOutOfOrderOneByOne)
{
    ASSERT_EQ(Read(EventLogBuilder().Rows({{40, 7, "1", ""}, {20, 7, "2", ""}, {30, 7, "", ""}})), State::READY);
    EXPECT_EQ(Count(EventLogIndex::FilterFor(25)), 2U);
    EXPECT_EQ(Count(EventLogIndex::FilterFor(-7)), 3U);
    EXPECT_EQ(Count(mIndex.FilterFor(25, "2")), 1U);
    std::vector<std::uint32_t> positions;
    mIndex.Select(EventLogIndex::RangeOf(mIndex.GetEntry(0), 2), mIndex.FilterFor(25, "1"), positions);
    EXPECT_THAT(positions, testing::ElementsAre(0U, 2U));
}

TEST_F(EventLogIndexTest, KeptCountsAreThoseOfTheirFilter)
{
    ASSERT_EQ(Read(EventLogBuilder().Rows({{10, 7, "1", ""}, {20, 7, "2", ""}, {30, 8, "2", ""}})), State::READY);
    for (int round = 0; round < 2; ++round) {
        for (std::int64_t start = 0; start < 40; ++start) {
            const auto all = mIndex.CountsFor(EventLogIndex::FilterFor(start));
            const auto ofVersion = mIndex.CountsFor(mIndex.FilterFor(start, "2"));
            for (std::size_t entry = 0; entry < 2; ++entry) {
                ASSERT_EQ(all.Of(entry), mIndex.Count(mIndex.GetEntry(entry), EventLogIndex::FilterFor(start)));
                ASSERT_EQ(ofVersion.Of(entry), mIndex.Count(mIndex.GetEntry(entry), mIndex.FilterFor(start, "2")));
            }
        }
    }
    EXPECT_EQ(mIndex.CountsFor(EventLogIndex::FilterFor(15)).Of(0), 1U);
}

TEST_F(EventLogIndexTest, FindsTheFirstEntryFromAnIdOn)
{
    ASSERT_EQ(Read(EventLogBuilder().Rows({{10, 8, "", ""}, {20, -7, "", ""}})), State::READY);
    EXPECT_EQ(mIndex.FirstEntryFrom(-8), 0U);
    EXPECT_EQ(mIndex.FirstEntryFrom(-7), 0U);
    EXPECT_EQ(mIndex.FirstEntryFrom(-6), 1U);
    EXPECT_EQ(mIndex.FirstEntryFrom(8), 1U);
    EXPECT_EQ(mIndex.FirstEntryFrom(2147483648), 2U);
}

TEST_F(EventLogIndexTest, RangesSinceAStartLeaveOutWhatCameBefore)
{
    ASSERT_EQ(Read(EventLogBuilder().Rows({{10, 7, "1", ""}, {20, 7, "2", ""}, {30, 7, "", ""}, {40, 8, "", ""},
        {25, 8, "1", ""}})), State::READY);
    std::vector<std::uint32_t> positions;
    const EventLogIndex::Range ascending = EventLogIndex::RangeOf(mIndex.GetEntry(0), 2);
    mIndex.Select(ascending, EventLogIndex::FilterFor(20), positions);
    EXPECT_THAT(positions, testing::ElementsAre(1U, 2U));
    mIndex.Select(ascending, mIndex.FilterFor(20, "1"), positions);
    EXPECT_THAT(positions, testing::ElementsAre(2U));
    mIndex.Select(EventLogIndex::RangeOf(mIndex.GetEntry(1), 1), EventLogIndex::FilterFor(26), positions);
    EXPECT_THAT(positions, testing::ElementsAre(3U));
}

TEST_F(EventLogIndexTest, DaysAreCountedAmongTheRowsThatCount)
{
    constexpr std::int64_t DAY = 86400;
    constexpr std::int64_t FIRST = 1700000000; // 14 November 2023, in the evening
    ASSERT_EQ(Read(EventLogBuilder().Rows({{FIRST, 7, "1", ""}, {FIRST + DAY, 7, "2", ""}, {FIRST + DAY, 7, "", ""},
        {FIRST + 31 * DAY, 7, "1", ""}, {FIRST + DAY, 8, "1", ""}, {FIRST, 8, "1", ""}})), State::READY);
    const auto days = [this](std::size_t entry, std::size_t found, const EventLogIndex::Filter& filter) {
        EventLogIndex::DayCounts counts{};
        mIndex.CountDays(EventLogIndex::RangeOf(mIndex.GetEntry(entry), found), filter, counts);
        std::string text;
        for (std::size_t day = 0; day < counts.size(); ++day) {
            text += counts[day] == 0 ? "" : std::to_string(day) + ":" + std::to_string(counts[day]) + " ";
        }
        return text;
    };
    EXPECT_EQ(days(0, 4, EventLogIndex::FilterFor(0)), days(0, 4, EventLogIndex::FilterFor(FIRST)));
    EXPECT_EQ(days(0, 4, EventLogIndex::FilterFor(0)), "14:1 15:3 ");
    EXPECT_EQ(days(0, 3, EventLogIndex::FilterFor(FIRST + 1)), "15:3 ");
    EXPECT_EQ(days(0, 4, mIndex.FilterFor(0, "1")), "14:1 15:2 ");
    EXPECT_EQ(days(1, 2, EventLogIndex::FilterFor(0)), "14:1 15:1 ");
    EXPECT_EQ(days(1, 1, EventLogIndex::FilterFor(FIRST + 1)), "15:1 ");
}

TEST_F(EventLogIndexTest, TimesAndRowNumbersFarApartKeepTheirValues)
{
    EXPECT_EQ(Read(EventLogBuilder().Rows({{1700000000, 7, "", ""}, {0, 7, "", ""}, {4294967295, 7, "", ""},
        {1699999999, 8, "", ""}, {1500000000, 8, "", ""}})
        .Sql("update event_info set _ID = 4294967295 where _ID = 5")
        .Sql("update event_info_flow set _ID = 4294967295 where _ID = 5")), State::READY);
    EXPECT_EQ(Rows(), "7: 1700000000 0 4294967295; 8: 1699999999 1500000000");
    EXPECT_EQ(mIndex.GetRowId(mIndex.GetEntry(0).begin), 1);
    EXPECT_EQ(mIndex.GetRowId(mIndex.GetEntry(1).end - 1), 4294967295);
}

TEST_F(EventLogIndexTest, ManyIdsAreGroupedToo)
{
    // More ids than two bytes can number.
    EventLogBuilder builder;
    builder.Sql("insert into event_version values (1, '1')").Sql("with recursive n(i) as (select 1 union all select i + 1 "
        "from n where i < 70000) insert into event_info select i, 70001 - i, '', 1 from n")
        .Sql("insert into event_info_flow select _ID, _ID, _ID from event_info");
    ASSERT_EQ(Read(builder), State::READY);
    ASSERT_EQ(mIndex.GetEntryCount(), 70000U);
    for (const std::int32_t id : {1, 2, 4000, 65536, 65537, 70000}) {
        const EventLogIndex::Entry entry = mIndex.GetEntry(mIndex.FirstEntryFrom(id));
        EXPECT_EQ(entry.eventId, id);
        EXPECT_EQ(entry.end - entry.begin, 1U);
        EXPECT_EQ(mIndex.GetTime(entry.begin), 70001 - id);
        EXPECT_EQ(mIndex.GetRowId(entry.begin), 70001 - id);
    }
}

TEST_F(EventLogIndexTest, RowsWithoutPartnersAreInvisible)
{
    EXPECT_EQ(Read(EventLogBuilder().Rows({{10, 7, "", ""}, {20, 8, "", ""}, {30, 9, "", ""}})
        .Sql("delete from event_info_flow where _ID = 1").Sql("update event_info set version_id = 99 where _ID = 2")),
        State::READY);
    EXPECT_EQ(Rows(), "9: 30");
}

TEST_F(EventLogIndexTest, NullsAndIdsOfMoreThan32BitsMatchNoQuery)
{
    EXPECT_EQ(Read(EventLogBuilder().Rows({{10, 7, "", ""}, {20, 8, "", ""}, {30, 3000000000, "", ""}, {40, 9, "", ""}})
        .Sql("update event_info set event_id = null where _ID = 1")
        .Sql("update event_info_flow set occurrence_time = null where _ID = 2")), State::READY);
    EXPECT_EQ(Rows(), "9: 40");
}

TEST_F(EventLogIndexTest, IdsWithRowsThatDoNotFitNeedTheirOwnQuery)
{
    EXPECT_EQ(Read(EventLogBuilder()
        .Rows({{10, 1, "", ""}, {20, 2, "", ""}, {30, 3, "", ""}, {40, 4, "", ""}, {50, 4, "", ""}, {60, 5, "", ""}})
        .Sql("update event_info_flow set occurrence_time = 'soon' where _ID = 1")
        .Sql("update event_info_flow set occurrence_time = 1.5 where _ID = 2")
        .Sql("update event_info_flow set occurrence_time = -1 where _ID = 3")
        .Sql("update event_info_flow set occurrence_time = 4294967296 where _ID = 4")), State::READY);
    EXPECT_EQ(Rows(), "1?; 2?; 3?; 4? 50; 5: 60");
}

TEST_F(EventLogIndexTest, VersionRowsWithoutAUniqueNumberNeedAQuery)
{
    EXPECT_EQ(Read(EventLogBuilder()
        .Schema("CREATE TABLE event_version (_ID, VERSION_NAME text);"
            "CREATE TABLE event_info (_ID integer primary key, event_id integer, extra text, version_id);"
            "CREATE TABLE event_info_flow (_ID integer primary key, event_pid integer, occurrence_time integer);")
        .Rows({{10, 1, "a", ""}, {20, 2, "b", ""}, {30, 3, "c", ""}})
        .Sql("insert into event_version values (1, 'other'), (2, 'b'), ('x', 'd')")
        .Sql("insert into event_info values (4, 4, '', 'x')").Sql("insert into event_info_flow values (4, 4, 40)")),
        State::READY);
    EXPECT_EQ(Rows(), "1?; 2: 20 20; 3: 30; 4?");
}

TEST_F(EventLogIndexTest, LogWithoutRowNumbersNeedsQueries)
{
    EXPECT_EQ(Read(EventLogBuilder()
        .Schema("CREATE TABLE event_version (_ID integer primary key, VERSION_NAME text);"
            "CREATE TABLE event_info (_ID integer primary key, event_id integer, extra text, version_id integer)"
            " WITHOUT ROWID;"
            "CREATE TABLE event_info_flow (_ID integer primary key, event_pid integer, occurrence_time integer);")
        .Row({10, 1, "a", ""})), State::READY);
    EXPECT_EQ(Rows(), "1?");
}

TEST_F(EventLogIndexTest, ChangeByAnotherConnectionIsSeen)
{
    ASSERT_EQ(Read(EventLogBuilder().Row({10, 7, "", ""})), State::READY);
    const std::uint64_t generation = mIndex.GetGeneration();
    EXPECT_EQ(mIndex.Refresh(), State::READY);
    EXPECT_EQ(mIndex.GetGeneration(), generation);
    EXPECT_TRUE(mIndex.IsCurrent());
    EventLogBuilder::Run(mPath, "update event_info_flow set occurrence_time = 20");
    EXPECT_FALSE(mIndex.IsCurrent());
    EXPECT_EQ(mIndex.Refresh(), State::READY);
    EXPECT_NE(mIndex.GetGeneration(), generation);
    EXPECT_EQ(Rows(), "7: 20");
}

TEST_F(EventLogIndexTest, LogThatCannotBeAskedIsUnreadable)
{
    EXPECT_EQ(mIndex.Refresh(), State::UNREADABLE) << "closed";
    EXPECT_EQ(Read(EventLogBuilder().Row({10, 7, "", ""}).Sql("drop table event_version")), State::UNREADABLE);
    EventLogBuilder().Row({10, 7, "", ""}).Sql("alter table event_info drop column extra").WriteTo(mPath);
    mDatabase.Open(mPath);
    EXPECT_EQ(mIndex.Refresh(), State::UNREADABLE);
    EXPECT_THAT(mIndex.GetIds(), testing::IsEmpty());
    EXPECT_THAT(mLog.Lines(), testing::IsEmpty());
}

TEST_F(EventLogIndexTest, LockedLogIsUnreadableUntilItIsUnlocked)
{
    ASSERT_EQ(Read(EventLogBuilder().Row({10, 7, "", ""})), State::READY);
    FT::sql::SqlDatabase other;
    ASSERT_TRUE(other.Open(mPath));
    FT::sql::SqlOperator writer(other.GetHandle());
    ASSERT_TRUE(writer.ExecuteNoCallback("BEGIN EXCLUSIVE"));
    EXPECT_EQ(mIndex.Refresh(), State::UNREADABLE);
    ASSERT_TRUE(writer.ExecuteNoCallback("ROLLBACK"));
    EXPECT_EQ(mIndex.Refresh(), State::READY);
    EXPECT_EQ(Rows(), "7: 10");
}

TEST_F(EventLogIndexTest, DamageInTheMiddleLeavesTheRowsBefore)
{
    EventLogBuilder builder;
    for (int row = 1; row <= 2000; ++row) {
        builder.Row({row, 7, "", std::string(100, 'x')});
    }
    builder.WriteTo(mPath);
    std::string file = mDir.Read("log.db");
    file.replace(file.size() / 2, 4096, 4096, '\xFF');
    mDir.Write("log.db", file);
    mDatabase.Open(mPath);
    EXPECT_EQ(mIndex.Refresh(), State::BROKEN_OFF);
    EXPECT_EQ(mIndex.GetError(), "database disk image is malformed");
    EXPECT_GT(mIndex.GetRowCount(), 100U);
    EXPECT_LT(mIndex.GetRowCount(), 2000U);
    EXPECT_EQ(mIndex.Refresh(), State::BROKEN_OFF) << "not read again";
    EXPECT_EQ(mIndex.GetGeneration(), 1U);
}

} // namespace
