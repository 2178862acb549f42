#include "arborist/stores/event_log/event_log_snapshot.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

struct Row { std::int32_t id; std::uint32_t time; std::uint16_t version = 0; };

// Version "v1" has number 1 and so on.
EventLogSnapshot Snapshot(const std::vector<Row>& rows)
{
    std::vector<std::int32_t> ids;
    std::vector<std::uint32_t> idNumbers;
    EventLogSnapshot::Columns columns;
    for (const Row& row : rows) {
        const auto known = std::find(ids.begin(), ids.end(), row.id);
        idNumbers.push_back(static_cast<std::uint32_t>(known - ids.begin()));
        if (known == ids.end()) {
            ids.push_back(row.id);
        }
        columns.times.push_back(row.time);
        columns.versions.push_back(row.version);
        columns.rowIds.push_back(0x10000U * static_cast<std::uint32_t>(columns.times.size()) + 7);
    }
    const std::vector<bool> needsQuery(ids.size());
    return EventLogSnapshot(ids, needsQuery, idNumbers, columns, {{"", 0}, {"v1", 1}, {"v2", 2}}, {}, {});
}

class SnapshotOf {
public:
    explicit SnapshotOf(const std::vector<Row>& rows) : mSnapshot(Snapshot(rows)) {}

    std::size_t Count(std::int64_t start, std::optional<std::uint16_t> version = std::nullopt) const
    {
        return mSnapshot.Count(mSnapshot.RangeSince(mSnapshot.GetEntry(0), start), {start, version});
    }
    std::vector<std::uint32_t> Times(std::int64_t start, std::optional<std::uint16_t> version = std::nullopt) const
    {
        std::vector<std::uint32_t> times;
        mSnapshot.Select(mSnapshot.RangeSince(mSnapshot.GetEntry(0), start), {start, version})
            .ForEach([&](std::uint32_t row) { times.push_back(mSnapshot.GetTime(row)); });
        return times;
    }
    std::string Days(std::int64_t start, std::optional<std::uint16_t> version = std::nullopt) const
    {
        EventLogSnapshot::DayCounts counts{};
        LocalDays days;
        mSnapshot.CountDays(mSnapshot.RangeSince(mSnapshot.GetEntry(0), start), {start, version}, days, counts);
        std::string text;
        for (std::size_t day = 0; day < counts.size(); ++day) {
            text += counts[day] == 0 ? "" : std::to_string(day) + ":" + std::to_string(counts[day]) + " ";
        }
        return text;
    }

private:
    EventLogSnapshot mSnapshot;
};

// The rows of one id from 15 to `last`, in every way in which they are asked.
void ExpectRowsUntil(const EventLogSnapshot& snapshot, std::int64_t last, const std::vector<std::uint32_t>& expected)
{
    const EventLogSnapshot::Filter filter{15, std::nullopt, last};
    const auto range = snapshot.RangeSince(snapshot.GetEntry(0), filter.start, filter.last);
    EXPECT_EQ(snapshot.Count(range, filter), expected.size());
    std::vector<std::uint32_t> times;
    snapshot.AppendTimes(range, filter, times);
    EXPECT_EQ(times, expected);
    times.clear();
    snapshot.Select(range, filter).ForEach([&](std::uint32_t row) { times.push_back(snapshot.GetTime(row)); });
    EXPECT_EQ(times, expected);
    EXPECT_EQ(snapshot.CountAfter(range, filter, last), 0U);
}

TEST(EventLogSnapshotTest, AFilterEndsAtItsLastSecondWhateverTheOrderOfTheRows)
{
    for (const bool isInOrder : {true, false}) {
        const EventLogSnapshot snapshot =
            Snapshot(isInOrder ? std::vector<Row>{{7, 10}, {7, 20}, {7, 30}} : std::vector<Row>{{7, 20}, {7, 10}, {7, 30}});
        ExpectRowsUntil(snapshot, 30, {20, 30});
        ExpectRowsUntil(snapshot, 29, {20});
        ExpectRowsUntil(snapshot, 20, {20});
        ExpectRowsUntil(snapshot, 19, {});
        ExpectRowsUntil(snapshot, -1, {});
    }
}

TEST(EventLogSnapshotTest, TimesAreThoseOfTheVersion)
{
    const EventLogSnapshot snapshot = Snapshot({{7, 10, 1}, {7, 20, 2}, {7, 30}});
    std::vector<std::uint32_t> times{5};
    snapshot.AppendTimes(snapshot.RangeSince(snapshot.GetEntry(0), 0), {0, 1}, times);
    EXPECT_THAT(times, ElementsAre(5, 10, 30));
}

TEST(EventLogSnapshotTest, GroupsRowsByIdInTheOrderOfTheLog)
{
    const EventLogSnapshot snapshot =
        Snapshot({{7, 300000}, {-5, 20}, {7, 100000, 1}, {7, 400000}, {-5, 50}, {9, 60, 2}});
    ASSERT_EQ(snapshot.GetEntryCount(), 3U);
    EXPECT_THAT(snapshot.GetIds(), ElementsAre(-5, 7, 9));
    std::vector<std::uint32_t> times;
    std::vector<std::int64_t> rowIds;
    for (std::uint32_t row = 0; row < snapshot.GetRowCount(); ++row) {
        times.push_back(snapshot.GetTime(row));
        rowIds.push_back(snapshot.GetRowId(row));
    }
    EXPECT_THAT(times, ElementsAre(20U, 50U, 300000U, 100000U, 400000U, 60U));
    EXPECT_THAT(rowIds, ElementsAre(0x20007, 0x50007, 0x10007, 0x30007, 0x40007, 0x60007));
    EXPECT_TRUE(snapshot.GetEntry(0).isAscending);
    EXPECT_FALSE(snapshot.GetEntry(1).isAscending);
    EXPECT_EQ(snapshot.GetEntry(1).begin, 2U);
    EXPECT_EQ(snapshot.GetEntry(1).end, 5U);
    EXPECT_TRUE(snapshot.AreRowIdsAscending());
}

TEST(EventLogSnapshotTest, CountsFromTheStartOnAndByVersion)
{
    const SnapshotOf rows({{7, 10, 1}, {7, 20, 2}, {7, 30}, {7, 40, 2}});
    EXPECT_EQ(rows.Count(20), 3U);
    EXPECT_EQ(rows.Count(21), 2U);
    EXPECT_EQ(rows.Count(INT64_MIN), 4U);
    EXPECT_EQ(rows.Count(41), 0U);
    EXPECT_EQ(rows.Count(INT64_MAX), 0U);
    EXPECT_EQ(rows.Count(0, 2), 3U);
    EXPECT_EQ(rows.Count(0, 1), 2U);
    EXPECT_EQ(rows.Count(20, 1), 1U);
    EXPECT_EQ(rows.Count(0, 0), 1U) << "no row has that version's name";
    EXPECT_THAT(rows.Times(20, 2), ElementsAre(20U, 30U, 40U));
    EXPECT_THAT(rows.Times(20), ElementsAre(20U, 30U, 40U));
}

TEST(EventLogSnapshotTest, CountsRowsOutOfOrderOneByOne)
{
    const SnapshotOf rows({{7, 40, 1}, {7, 20, 2}, {7, 30}});
    EXPECT_EQ(rows.Count(25), 2U);
    EXPECT_EQ(rows.Count(-7), 3U);
    EXPECT_EQ(rows.Count(25, 2), 1U);
    EXPECT_EQ(rows.Count(INT64_MAX), 0U);
    EXPECT_THAT(rows.Times(25, 1), ElementsAre(40U, 30U));
}

TEST(EventLogSnapshotTest, RangesOfKnownLengthAreThoseSinceTheStart)
{
    const EventLogSnapshot snapshot = Snapshot({{7, 10}, {7, 20}, {7, 30}, {8, 30}, {8, 10}});
    EXPECT_EQ(EventLogSnapshot::RangeOf(snapshot.GetEntry(0), 2).begin, snapshot.RangeSince(snapshot.GetEntry(0), 15).begin);
    EXPECT_EQ(EventLogSnapshot::RangeOf(snapshot.GetEntry(1), 1).begin, snapshot.GetEntry(1).begin);
    EXPECT_FALSE(EventLogSnapshot::RangeOf(snapshot.GetEntry(1), 1).isSince);
}

TEST(EventLogSnapshotTest, RowsOfTheSameSecondAreInOrder)
{
    const EventLogSnapshot snapshot = Snapshot({{7, 10}, {7, 10}, {7, 20}});
    EXPECT_TRUE(snapshot.GetEntry(0).isAscending);
    EXPECT_EQ(snapshot.RangeSince(snapshot.GetEntry(0), 11).begin, 2U);
}

TEST(EventLogSnapshotTest, ARangeOfRowsInOrderHasOnlyRowsOfItsTime)
{
    const EventLogSnapshot snapshot = Snapshot({{7, 10}, {7, 20}, {8, 30}, {8, 10}});
    EXPECT_TRUE(snapshot.RangeSince(snapshot.GetEntry(0), 15).isSince);
    EXPECT_TRUE(snapshot.RangeSince(snapshot.GetEntry(0), 10, 15).isSince);
    EXPECT_FALSE(snapshot.RangeSince(snapshot.GetEntry(1), 15).isSince);
}

TEST(EventLogSnapshotTest, VersionsAreFoundByTheirNames)
{
    const EventLogSnapshot snapshot = Snapshot({});
    EXPECT_EQ(snapshot.NumberOfVersion("v2"), 2);
    EXPECT_EQ(snapshot.NumberOfVersion("unheard of"), EventLogSnapshot::UNNAMED_VERSION);
}

TEST(EventLogSnapshotTest, FindsTheFirstEntryFromAnIdOn)
{
    const EventLogSnapshot snapshot = Snapshot({{8, 10}, {-7, 20}});
    EXPECT_EQ(snapshot.FirstEntryFrom(-8), 0U);
    EXPECT_EQ(snapshot.FirstEntryFrom(-7), 0U);
    EXPECT_EQ(snapshot.FirstEntryFrom(-6), 1U);
    EXPECT_EQ(snapshot.FirstEntryFrom(8), 1U);
    EXPECT_EQ(snapshot.FirstEntryFrom(2147483648), 2U);
}

TEST(EventLogSnapshotTest, DaysAreCountedAmongTheRowsThatCount)
{
    constexpr std::uint32_t DAY = 86400;
    constexpr std::uint32_t FIRST = 1700000000; // 14 November 2023, in the evening
    const SnapshotOf inOrder({{7, FIRST, 1}, {7, FIRST + DAY, 2}, {7, FIRST + DAY}, {7, FIRST + 31 * DAY, 1}});
    EXPECT_EQ(inOrder.Days(0), "14:1 15:3 ");
    EXPECT_EQ(inOrder.Days(FIRST + 1), "15:3 ");
    EXPECT_EQ(inOrder.Days(0, 1), "14:1 15:2 ");
    const SnapshotOf outOfOrder({{8, FIRST + DAY, 1}, {8, FIRST, 1}});
    EXPECT_EQ(outOfOrder.Days(0), "14:1 15:1 ");
    EXPECT_EQ(outOfOrder.Days(FIRST + 1), "15:1 ");
    EXPECT_EQ(outOfOrder.Days(0, 2), "");
}

} // namespace
