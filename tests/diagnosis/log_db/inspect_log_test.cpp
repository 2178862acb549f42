#include "diagnosis/log_db/inspect_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class InspectLogTest : public testing::Test {
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

TEST_F(InspectLogTest, AnEventWithoutAMomentOfItsKeyIsUnseen)
{
    Write("UPDATE event_info_flow SET _ID = 9 WHERE _ID = 2");
    EXPECT_THAT(Unseen(), ElementsAre("no_flow_row 1: 2"));
}

TEST_F(InspectLogTest, AnEventThatNoMomentNamesIsUnseen)
{
    Write("UPDATE event_info_flow SET event_pid = 9 WHERE _ID = 1");
    EXPECT_THAT(Unseen(), ElementsAre("no_flow_event 1: 1"));
}

TEST_F(InspectLogTest, AnEventWithoutAVersionRowIsUnseen)
{
    Write("UPDATE event_info SET version_id = CASE _ID WHEN 1 THEN NULL ELSE 99 END");
    EXPECT_THAT(Unseen(), ElementsAre("no_version_row 2: 1 2"));
}

TEST_F(InspectLogTest, TextsInTheColumnsOfNumbersAreUnseen)
{
    Write("UPDATE event_info SET event_id = 'abc' WHERE _ID = 1;"
          "UPDATE event_info_flow SET occurrence_time = 'soon' WHERE _ID = 2");
    EXPECT_THAT(Unseen(), ElementsAre("event_no_number 1: 1", "time_no_number 1: 2"));
}

TEST_F(InspectLogTest, ATextAmongTheMomentsThatNameAnEventIsUnseen)
{
    Write("INSERT INTO event_info_flow VALUES (9, 1, 'soon')");
    EXPECT_THAT(Unseen(), ElementsAre("time_no_number 1: 1"));
}

TEST_F(InspectLogTest, AnEventWithoutAMomentLeavesTheSpanOfItsId)
{
    Write("UPDATE event_info SET event_id = 1001; DELETE FROM event_info_flow WHERE _ID = 2");
    diagnosis::LogInspection inspection;
    ASSERT_FALSE(diagnosis::InspectEventLog("log.db", inspection).has_value());
    ASSERT_EQ(inspection.ids.size(), 1U);
    EXPECT_EQ(inspection.ids[0].rows, 2U);
    EXPECT_EQ(inspection.ids[0].span.first, 1714550400);
}

TEST_F(InspectLogTest, AnExtraThatIsNestedTooDeepIsUnseenByTests)
{
    std::string deep;
    for (int level = 0; level < 2000; ++level) {
        deep += "{\"a\":";
    }
    Write("UPDATE event_info SET extra = '" + deep + "1" + std::string(2000, '}') + "' WHERE _ID = 1");
    EXPECT_THAT(Unseen(), ElementsAre("extra_no_object 1: 1"));
}

TEST_F(InspectLogTest, AnExtraThatIsNoObjectIsUnseenByTests)
{
    Write("UPDATE event_info SET extra = CASE _ID WHEN 1 THEN '[1]' ELSE '{' END");
    EXPECT_THAT(Unseen(), ElementsAre("extra_no_object 2: 1 2"));
}

TEST_F(InspectLogTest, OnlyTheFirstKeysAreNamed)
{
    EventLogBuilder log;
    for (int i = 0; i < 7; ++i) {
        log.Row({5, 1001, "", "x"});
    }
    log.WriteTo(mDir.Path("log.db"));
    EXPECT_THAT(Unseen(), ElementsAre("extra_no_object 7: 1 2 3 4 5"));
}

TEST_F(InspectLogTest, ManyRowsWithoutIndexesAreReadInOneWalk)
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

} // namespace
