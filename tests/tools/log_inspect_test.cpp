#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/log_db/inspect_log.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class LogInspectTest : public testing::Test {
protected:
    // "reason rows: keys" for each reason.
    static std::vector<std::string> Unseen()
    {
        diagnosis::LogInspection inspection;
        EXPECT_FALSE(diagnosis::InspectEventLog("log.db", inspection).has_value());
        std::vector<std::string> lines;
        for (const auto& unseen : inspection.unseen) {
            std::string line = std::string(unseen.reason) + " " + std::to_string(unseen.rows) + ":";
            for (const std::string& key : unseen.keys) {
                line += " " + key;
            }
            lines.push_back(line);
        }
        return lines;
    }

    void Write(const std::string& sql) const
    {
        EventLogBuilder().Row({1714550400, 1001, "4.1", "{}"}).Row({1714550400, 1002, "", ""}).Sql(sql)
            .WriteTo(mDir.Path("log.db"));
    }

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

TEST_F(LogInspectTest, AnEventWithoutAMomentOfItsKeyIsUnseen)
{
    Write("UPDATE event_info_flow SET _ID = 9 WHERE _ID = 2");
    EXPECT_THAT(Unseen(), ElementsAre("no_flow_row 1: 2"));
}

TEST_F(LogInspectTest, AnEventThatNoMomentNamesIsUnseen)
{
    Write("UPDATE event_info_flow SET event_pid = 9 WHERE _ID = 1");
    EXPECT_THAT(Unseen(), ElementsAre("no_flow_event 1: 1"));
}

TEST_F(LogInspectTest, AnEventWithoutAVersionRowIsUnseen)
{
    Write("UPDATE event_info SET version_id = CASE _ID WHEN 1 THEN NULL ELSE 99 END");
    EXPECT_THAT(Unseen(), ElementsAre("no_version_row 2: 1 2"));
}

TEST_F(LogInspectTest, TextsInTheColumnsOfNumbersAreUnseen)
{
    Write("UPDATE event_info SET event_id = 'abc' WHERE _ID = 1;"
          "UPDATE event_info_flow SET occurrence_time = 'soon' WHERE _ID = 2");
    EXPECT_THAT(Unseen(), ElementsAre("event_no_number 1: 1", "time_no_number 1: 2"));
}

TEST_F(LogInspectTest, AnExtraThatIsNoObjectIsUnseenByTests)
{
    Write("UPDATE event_info SET extra = CASE _ID WHEN 1 THEN '[1]' ELSE '{' END");
    EXPECT_THAT(Unseen(), ElementsAre("extra_no_object 2: 1 2"));
    EXPECT_THAT(RunArborist({"log", "inspect", "log.db"}).out,
        HasSubstr("  not seen by tests of parameters: 2 rows, extra is no JSON object (_ID 1, 2)\n"));
}

TEST_F(LogInspectTest, OnlyTheFirstKeysAreNamed)
{
    EventLogBuilder log;
    for (int i = 0; i < 7; ++i) {
        log.Row({5, 1001, "", "x"});
    }
    log.WriteTo(mDir.Path("log.db"));
    EXPECT_THAT(Unseen(), ElementsAre("extra_no_object 7: 1 2 3 4 5"));
    EXPECT_THAT(RunArborist({"log", "inspect", "log.db"}).out, HasSubstr("(_ID 1, 2, 3, 4, 5, ...)"));
}

TEST_F(LogInspectTest, ManyRowsWithoutIndexesAreReadInOneWalk)
{
    EventLogBuilder().Sql("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 200000)"
        " INSERT INTO event_info SELECT i, 1001, '', 1 FROM n;"
        "INSERT INTO event_info_flow SELECT _ID, _ID, _ID FROM event_info;"
        "INSERT INTO event_version VALUES (1, 'v')").WriteTo(mDir.Path("log.db"));
    diagnosis::LogInspection inspection;
    EXPECT_FALSE(diagnosis::InspectEventLog("log.db", inspection).has_value());
    EXPECT_EQ(inspection.rows, 200000U);
    EXPECT_THAT(inspection.unseen, IsEmpty());
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
