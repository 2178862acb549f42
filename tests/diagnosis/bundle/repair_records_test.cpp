#include "diagnosis/bundle/repair_records.h"

#include <gtest/gtest.h>

#include "diagnosis/sqlite/connection.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::Connection;
using diagnosis::LIMITS_OF_LINES;
using diagnosis::ReadRepairRecords;
using diagnosis::RepairRecord;

// The ids that are read of a database made by this SQL.
std::vector<RepairRecord> RecordsOf(const std::string& sql)
{
    const TempDir dir;
    Connection database;
    EXPECT_TRUE(database.Open("r.db", Connection::Mode::CREATE));
    EXPECT_TRUE(database.Execute(sql)) << database.GetError();
    std::vector<RepairRecord> records;
    const auto failure = ReadRepairRecords("r.db", records, LIMITS_OF_LINES);
    EXPECT_FALSE(failure) << failure->message;
    return records;
}

TEST(RepairRecordsTest, OfMoreThanALineTakesTheFirstAreRead)
{
    const auto records = RecordsOf("CREATE VIEW repair_data AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n"
        " WHERE i < 20000) SELECT i AS _id, 'R' || i AS repair_id, '2024-05-20 12:00:00' AS repair_date FROM n");
    ASSERT_EQ(records.size(), 10'000U);
    EXPECT_EQ(records.front().id, "R1");
    EXPECT_EQ(records.back().id, "R10000");
}

TEST(RepairRecordsTest, RecordsWithLongTextsAreLeftOut)
{
    const auto records = RecordsOf("CREATE TABLE repair_data(_id, repair_id, repair_date); INSERT INTO repair_data VALUES"
        " (1, printf('%.*c', 1001, 'x'), 'd'), (2, 'R', printf('%.*c', 1001, 'x')), (3, printf('%.*c', 1000, 'x'), 'd')");
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records.front().id, std::string(1000, 'x'));
}

} // namespace
