#include <algorithm>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/sqlite/connection.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {


constexpr std::int64_t DAY = 86400;

class LogSliceTest : public testing::Test {
protected:
    LogSliceTest()
    {
        EventLogBuilder().Rows({{10 * DAY, 1001, "4.1", "a"}, {11 * DAY, 1002, "4.1", "b"}, {12 * DAY, 2001, "", "c"},
            {20 * DAY, 1001, "", "d"}}).WriteTo(mDir.Path("log.db"));
    }

    // "event keys | keys of moments" of the slice.
    std::string Slice(const std::vector<std::string>& options) const
    {
        std::vector<std::string> arguments = {"log", "slice", "log.db", "--to", "slice.db"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        if (std::find(options.begin(), options.end(), "--tz") == options.end()) {
            arguments.insert(arguments.end(), {"--tz", "UTC"});
        }
        const auto before = mDir.Read("log.db");
        const auto result = RunArborist(arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(mDir.Read("log.db"), before);
        return Keys("event_info") + "|" + Keys("event_info_flow");
    }

    std::string Keys(const std::string& table) const
    {
        diagnosis::Connection database;
        EXPECT_TRUE(database.Open(mDir.Path("slice.db"), diagnosis::Connection::Mode::READ_ONLY));
        auto rows = database.Prepare("SELECT group_concat(_ID, ' ') FROM (SELECT _ID FROM " + table + " ORDER BY _ID)");
        return rows && rows->Step() ? rows->Text(0) : "";
    }

    TempDir mDir;
};

TEST_F(LogSliceTest, WithoutLimitsIsTheWholeLog)
{
    EXPECT_EQ(Slice({}), "1 2 3 4|1 2 3 4");
    EXPECT_EQ(RunArborist({"log", "show", "slice.db"}).out, RunArborist({"log", "show", "log.db"}).out);
}

TEST_F(LogSliceTest, MomentsAreInclusive)
{
    EXPECT_EQ(Slice({"--from", std::to_string(11 * DAY), "--until", std::to_string(12 * DAY)}), "2 3|2 3");
    EXPECT_EQ(Slice({"--from", "1970-01-12 00:00:01"}), "3 4|3 4");
}

TEST_F(LogSliceTest, LastCountsFromTheLatestEvent)
{
    EXPECT_EQ(Slice({"--last", "8"}), "3 4|3 4");
    EXPECT_EQ(Slice({"--last", "0"}), "4|4");
}

TEST_F(LogSliceTest, AsOfAMomentTheLogEndsThere)
{
    const std::string then = std::to_string(12 * DAY);
    EXPECT_EQ(Slice({"--as-of", then}), "1 2 3|1 2 3");
    EXPECT_EQ(Slice({"--as-of", then, "--last", "1"}), "2 3|2 3");
    EXPECT_EQ(Slice({"--as-of", "1970-01-12"}), "1 2|1 2"); // to its last second
    EXPECT_EQ(Slice({"--as-of", then, "--from", then, "--until", std::to_string(20 * DAY)}), "3|3");
}

TEST_F(LogSliceTest, IdsAreNumbersAndRanges)
{
    EXPECT_EQ(Slice({"--ids", "1001"}), "1 4|1 4");
    EXPECT_EQ(Slice({"--ids", "1002-1999,2001"}), "2 3|2 3");
}

TEST_F(LogSliceTest, LimitsAddUp)
{
    EXPECT_EQ(Slice({"--ids", "1001", "--until", std::to_string(15 * DAY)}), "1|1");
}

TEST_F(LogSliceTest, AnEventStaysWithEitherOfItsMoments)
{
    // A late time refers to event 1, whose own key has an early time. The time with the key of event 4 refers to
    // another event.
    EventLogBuilder::Run(mDir.Path("log.db"), "INSERT INTO event_info_flow VALUES (9, 1, 1700000)");
    EXPECT_EQ(Slice({"--from", std::to_string(15 * DAY)}), "1 4|4 9");
}

TEST_F(LogSliceTest, AMomentThatIsNoNumberStays)
{
    EventLogBuilder::Run(mDir.Path("log.db"), "UPDATE event_info_flow SET occurrence_time = 'soon' WHERE _ID = 2");
    EXPECT_EQ(Slice({"--from", std::to_string(15 * DAY)}), "2 4|2 4");
}

TEST_F(LogSliceTest, TablesOfOthersAndTheOldLogStay)
{
    EventLogBuilder::Run(mDir.Path("log.db"), "CREATE TABLE other (a); INSERT INTO other VALUES (5)");
    EXPECT_EQ(Slice({"--last", "0"}), "4|4");
    EventLogBuilder::Run(mDir.Path("slice.db"), "UPDATE other SET a = 6");
    mDir.Write("bad.db", "this is no database, and long enough to be seen as none by its header");
    const auto before = mDir.Read("slice.db");
    const auto result = RunArborist({"log", "slice", "bad.db", "--to", "slice.db"});
    EXPECT_EQ(result.err, "arborist: bad.db: file is not a database\n");
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(mDir.Read("slice.db"), before);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 3);
}

TEST_F(LogSliceTest, TheFoldersOfTheTargetAreMade)
{
    EXPECT_EQ(RunArborist({"log", "slice", "log.db", "--to", "a/b/log.db"}).status, 0);
    EXPECT_TRUE(mDir.Has("a/b/log.db"));
    const auto below = RunArborist({"log", "slice", "log.db", "--to", "log.db/a/log.db"});
    EXPECT_EQ(below.err, "arborist: log.db/a/log.db: can't be written: Not a directory\n");
    EXPECT_EQ(below.status, 4);
}

// Clocks that go from 00:00 to 01:00 on 2023-10-15, and on 2024-02-18 from 00:00 back to 23:00 of the day before.
TEST_F(LogSliceTest, DatesAreWholeDaysWhereTheClocksAreChangedAtMidnight)
{
    constexpr std::int64_t FIRST = 1697338800; // 2023-10-15 01:00:00
    constexpr std::int64_t LAST = 1708225199;  // 2024-02-17 23:59:59 for the second time
    EventLogBuilder().Rows({{FIRST - 1, 1, "", ""}, {FIRST, 1, "", ""}, {LAST, 1, "", ""}, {LAST + 1, 1, "", ""}})
        .WriteTo(mDir.Path("log.db"));
    const std::vector<std::string> zone = {"--tz", "AAA3BBB,M10.3.0/0,M2.3.0/0"};
    const auto slice = [this, &zone](std::vector<std::string> options) {
        options.insert(options.end(), zone.begin(), zone.end());
        return Slice(options);
    };
    EXPECT_EQ(slice({"--from", "2023-10-15", "--until", "2024-02-17"}), "2 3|2 3");
    EXPECT_EQ(slice({"--as-of", "2024-02-17"}), "1 2 3|1 2 3");
    EXPECT_EQ(slice({"--as-of", "2023-10-14"}), "1|1");
}

TEST_F(LogSliceTest, TheLogThatIsReadIsNotReplaced)
{
    const auto before = mDir.Read("log.db");
    std::filesystem::create_symlink("log.db", "link.db");
    for (const char* target : {"log.db", "./log.db", "link.db"}) {
        const auto result = RunArborist({"log", "slice", "log.db", "--to", target, "--last", "0"});
        EXPECT_EQ(result.err, "arborist: " + std::string(target) + ": is the log that is read\n");
        EXPECT_EQ(result.status, 4);
    }
    EXPECT_EQ(mDir.Read("log.db"), before);
}

TEST_F(LogSliceTest, WrongMomentsAndListsAreWrongUse)
{
    for (const auto& [option, value] : {std::pair("--from", "soon"), std::pair("--from", "2023-02-29 00:00:00"),
             std::pair("--ids", "1-"), std::pair("--last", "-1")}) {
        EXPECT_EQ(RunArborist({"log", "slice", "log.db", "--to", "s.db", option, value}).status, 2) << option << value;
    }
    EXPECT_FALSE(mDir.Has("s.db"));
}

TEST(MomentsOfLogs, ThatNoClockShowedAreWrongUse)
{
    const TempDir dir;
    EventLogBuilder().Row({1, 7, "", ""}).WriteTo(dir.Path("log.db"));
    const std::string moment = "2024-03-31 02:30:00";
    const std::vector<std::vector<std::string>> uses = {{"log", "show", "log.db", "--as-of"},
        {"log", "inspect", "log.db", "--as-of"}, {"log", "slice", "log.db", "--to", "new.db", "--as-of"},
        {"log", "slice", "log.db", "--to", "new.db", "--from"}, {"log", "slice", "log.db", "--to", "new.db", "--until"}};
    for (std::vector<std::string> arguments : uses) {
        const std::string option = arguments.back();
        arguments.insert(arguments.end(), {moment, "--tz", "CET-1CEST,M3.5.0,M10.5.0/3"});
        const auto result = RunArborist(arguments);
        EXPECT_THAT(result.err, testing::HasSubstr("\"" + moment + "\" does not exist in the time zone")) << option;
        EXPECT_EQ(result.status, 2) << option;
        EXPECT_EQ(result.out, "") << option;
    }
    EXPECT_FALSE(dir.Has("new.db"));
}

} // namespace
