#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::HasSubstr;

class LogInspectTest : public testing::Test {
protected:
    TempDir mDir;
};

TEST_F(LogInspectTest, TellsIdsTimesAndVersions)
{
    EventLogBuilder().Rows({{1714550400, 1001, "4.1", ""}, {1714636800, 1001, "4.1", ""}, {1714550460, 7, "", ""}})
        .WriteTo(mDir.Path("log.db"));
    const auto before = StateOf(mDir.Path());
    EXPECT_EQ(RunArborist({"log", "inspect", "--tz", "UTC", "log.db"}).out,
        "log.db: 3 rows, 2024-05-01 08:00:00 to 2024-05-02 08:00:00\n"
        "  event 7     1 row   2024-05-01 08:01:00 to 2024-05-01 08:01:00\n"
        "  event 1001  2 rows  2024-05-01 08:00:00 to 2024-05-02 08:00:00\n"
        "  version \"\"  1 row\n"
        "  version \"4.1\"  2 rows\n");
    EXPECT_EQ(RunArborist({"log", "inspect", "--json", "log.db"}).out,
        "{\"schema\": \"arborist.log.1\", \"log\": \"log.db\", \"rows\": 3, \"first\": 1714550400, \"last\": 1714636800, "
        "\"ids\": [{\"id\": 7, \"rows\": 1, \"first\": 1714550460, \"last\": 1714550460}, "
        "{\"id\": 1001, \"rows\": 2, \"first\": 1714550400, \"last\": 1714636800}], "
        "\"versions\": [{\"name\": \"\", \"rows\": 1}, {\"name\": \"4.1\", \"rows\": 2}], \"unseen\": []}\n");
    EXPECT_EQ(StateOf(mDir.Path()), before);
}

TEST_F(LogInspectTest, NamesRowsThatAreNotSeenByTheirFirstKeys)
{
    EventLogBuilder().Rows({{5, 1001, "", "x"}, {5, 1001, "", "[1]"}}).WriteTo(mDir.Path("log.db"));
    EXPECT_THAT(RunArborist({"log", "inspect", "log.db"}).out,
        HasSubstr("  not seen by tests of parameters: 2 rows, extra is no JSON object (_ID 1, 2)\n"));
    EventLogBuilder().Rows(std::vector<LoggedRow>(7, {5, 1001, "", "x"})).WriteTo(mDir.Path("many.db"));
    EXPECT_THAT(RunArborist({"log", "inspect", "many.db"}).out, HasSubstr("(_ID 1, 2, 3, 4, 5, ...)"));
}

TEST_F(LogInspectTest, WhatIsNoLogIsNamed)
{
    EXPECT_EQ(RunArborist({"log", "inspect", "none"}).err, "arborist: none: no such file\n");
    mDir.Write("bad.db", "this is no database, and long enough to be seen as none by its header");
    EXPECT_EQ(RunArborist({"log", "inspect", "bad.db"}).err, "arborist: bad.db: file is not a database\n");
    EventLogBuilder::Run(mDir.Path("other.db"), "CREATE TABLE a (b)");
    const auto result = RunArborist({"log", "inspect", "other.db"});
    EXPECT_THAT(result.err, HasSubstr("no such table: event_"));
    EXPECT_EQ(result.status, 4);
}

} // namespace
