#include "tests/support/event_log_builder.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "arborist/stores/sql/simple_database_helper.h"
#include "tests/support/temp_dir.h"

namespace {

std::string FirstRow(const std::string& path, const std::string& sql)
{
    FT::sql::SqlDatabase database;
    EXPECT_TRUE(database.Open(path));
    FT::sql::SqlField field("answer", FT::sql::TypeText);
    FT::sql::SqlTable table(database.GetHandle(), "answer", &field, 1);
    EXPECT_TRUE(table.Query(sql));
    const FT::sql::SqlRecord* const record = table.GetTopRecord();
    return record == nullptr ? "" : record->GetValue(std::size_t{0})->AsString();
}

TEST(EventLogBuilderTest, WritesRowsThatSharedVersionsAndIdsHoldTogether)
{
    TempDir dir;
    const std::string path = dir.Path("folder/log.db");
    EventLogBuilder().Row({100, 7, "1.0", "{\"a\":\"it's\"}"}).Rows({{200, 8, "", ""}, {300, 9, "1.0", "{}"}})
        .Sql("UPDATE event_info SET event_id = 10 WHERE _ID = 3").WriteTo(path);
    EXPECT_EQ(FirstRow(path, "select group_concat(event_info._ID || '/' || event_id || '/' || occurrence_time || '/' "
        "|| VERSION_NAME || '/' || extra, ' & ') from event_info join event_info_flow on event_pid = event_info._ID "
        "and event_info_flow._ID = event_info._ID join event_version on version_id = event_version._ID"),
        "1/7/100/1.0/{\"a\":\"it's\"} & 2/8/200// & 3/10/300/1.0/{}");
    EXPECT_EQ(FirstRow(path, "select count(*) from event_version"), "2");
}

TEST(EventLogBuilderTest, LeavesChangesInTheWriteAheadLog)
{
    TempDir dir;
    EventLogBuilder().Row({100, 7, "1.0", ""}).WriteTo(dir.Path("log.db"));
    EventLogBuilder::RunIntoWal(dir.Path("log.db"), "DELETE FROM event_info");
    ASSERT_TRUE(dir.Has("log.db-wal"));
    std::filesystem::copy_file("log.db", "without.db");
    EXPECT_EQ(FirstRow(dir.Path("without.db"), "select count(*) from event_info"), "1");
    EXPECT_EQ(FirstRow(dir.Path("log.db"), "select count(*) from event_info"), "0");
}

TEST(EventLogBuilderTest, WritesTheFileAnew)
{
    TempDir dir;
    EventLogBuilder().Row({100, 7, "1.0", ""}).WriteTo(dir.Path("log.db"));
    EventLogBuilder().WriteTo(dir.Path("log.db"));
    EXPECT_EQ(FirstRow(dir.Path("log.db"), "select count(*) from event_info"), "0");
}

} // namespace
