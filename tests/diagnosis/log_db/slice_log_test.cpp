#include "diagnosis/log_db/slice_log.h"

#include <cstdint>

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/full_disk.h"
#include "tests/support/temp_dir.h"

namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(IdRanges, AreReadStrictly)
{
    EXPECT_THAT(*diagnosis::ParseIdRanges("7"), ElementsAre(Pair(7, 7)));
    EXPECT_THAT(*diagnosis::ParseIdRanges("-5--3,8-9"), ElementsAre(Pair(-5, -3), Pair(8, 9)));
    for (const char* text : {"", ",", "7,", "9-8", "7 ", "a", "99999999999999999999"}) {
        EXPECT_FALSE(diagnosis::ParseIdRanges(text).has_value()) << text;
    }
}

class SliceLogTest : public testing::Test {
protected:
    // The message of a failure, or the keys of the moments that are left.
    static std::string Slice(const diagnosis::LogSlice& slice)
    {
        const auto failure = diagnosis::SliceEventLog("log.db", "new.db", slice);
        const auto rows = failure ? std::vector{failure->message} : DatabaseRows("new.db", "SELECT _ID FROM event_info_flow ORDER BY _ID");
        std::string text;
        for (const std::string& row : rows) {
            text += row;
        }
        return text;
    }

    static diagnosis::LogSlice LastDays(std::int64_t days)
    {
        diagnosis::LogSlice slice;
        slice.lastDays = days;
        return slice;
    }

    TempDir mDir;
};

TEST_F(SliceLogTest, WithoutATimeTheLastDaysAreAll)
{
    EventLogBuilder().Rows({{1, 7, "", ""}, {2, 7, "", ""}}).Sql("UPDATE event_info_flow SET occurrence_time = 'soon'")
        .WriteTo(mDir.Path("log.db"));
    EXPECT_EQ(Slice(LastDays(1)), "12");
}

TEST_F(SliceLogTest, TheEarliestTimesThereAreAreNoReasonToOverflow)
{
    EventLogBuilder().Rows({{INT64_MIN, 7, "", ""}, {INT64_MIN + 5, 7, "", ""}}).WriteTo(mDir.Path("log.db"));
    EXPECT_EQ(Slice(LastDays(1)), "12");
}

TEST_F(SliceLogTest, RefusesWhatItCannotReadOrReplace)
{
    EXPECT_EQ(Slice({}), "log.db: no such file");
    mDir.Write("log.db", "no database at all, though long enough to have had a header of one hundred bytes in it, or more");
    EXPECT_EQ(Slice({}), "log.db: file is not a database");
    EventLogBuilder().Row({1, 7, "", ""}).WriteTo(mDir.Path("log.db"));
    mDir.Write("new.db-journal", "");
    EXPECT_EQ(Slice({}), "new.db: is in use: there is new.db-journal");
}

TEST_F(SliceLogTest, ASliceThatDoesNotFitOnTheDiskIsToldAndNotThere)
{
    EventLogBuilder().Rows(std::vector<LoggedRow>(300, {90000, 7, "4.1", std::string(200, 'x')})).Row({1, 7, "", ""})
        .WriteTo(mDir.Path("log.db"));
    const auto size = std::filesystem::file_size("log.db");
    for (std::uintmax_t bytes = 0; bytes < size; bytes += 4096) {
        const FullDisk disk(bytes);
        EXPECT_EQ(Slice(LastDays(1)).find("new.db: "), 0U) << bytes;
        EXPECT_FALSE(mDir.Has("new.db"));
    }
}

TEST_F(SliceLogTest, ALogWithoutTablesIsToldWhenItIsCut)
{
    EventLogBuilder::Run(mDir.Path("log.db"), "CREATE TABLE a (b)");
    diagnosis::LogSlice later;
    later.from = 5;
    for (const auto& slice : {later, LastDays(1)}) {
        EXPECT_EQ(Slice(slice), "log.db: no such table: event_info_flow");
        EXPECT_FALSE(mDir.Has("new.db"));
    }
}

} // namespace
