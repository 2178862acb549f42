#include "arborist/stores/event_log/row_counts.h"

#include "tests/stores/event_log/log_reading.h"

namespace {

class RowCountsTest : public LogReadingTest {};

TEST_F(RowCountsTest, AreThoseOfTheirFilterHoweverOftenTheyAreAsked)
{
    RowCounts counts(Read(EventLogBuilder().Rows({{10, 7, "1", ""}, {20, 7, "2", ""}, {30, 8, "2", ""}})),
        {15, std::nullopt});
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(counts.Of(0), 1U);
        EXPECT_EQ(counts.Of(1), 1U);
    }
    EXPECT_EQ(counts.GetFilter().start, 15);
}

TEST_F(RowCountsTest, PinTheirSnapshot)
{
    auto snapshot = Read(EventLogBuilder().Row({10, 7, "1", ""}));
    RowCounts counts(snapshot, {0, snapshot->NumberOfVersion("2")});
    snapshot.reset();
    EXPECT_EQ(counts.Of(0), 0U);
}

} // namespace
