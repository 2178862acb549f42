#include "diagnosis/bundle/repair_records.h"

#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "diagnosis/process/process_state.h"
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

TEST(RepairRecordsTest, AreReadWhileOthersWriteThem)
{
    const TempDir dir;
    Connection writer;
    ASSERT_TRUE(writer.Open("r.db", Connection::Mode::CREATE));
    ASSERT_TRUE(writer.Execute("CREATE TABLE repair_data(_id, repair_id, repair_date); BEGIN EXCLUSIVE"));
    std::atomic<bool> isRead = false;
    std::thread other([&] {
        std::vector<RepairRecord> records;
        EXPECT_FALSE(ReadRepairRecords("r.db", records));
        isRead = true;
    });
    do { // the file is unlocked for moments only
        EXPECT_TRUE(writer.Execute("COMMIT"));
        while (!writer.Execute("BEGIN EXCLUSIVE")) {
        }
    } while (!isRead);
    other.join();
}

TEST(RepairRecordsTest, RecordsWithLongTextsAreLeftOut)
{
    const auto records = RecordsOf("CREATE TABLE repair_data(_id, repair_id, repair_date); INSERT INTO repair_data VALUES"
        " (1, printf('%.*c', 1001, 'x'), 'd'), (2, 'R', printf('%.*c', 1001, 'x')), (3, printf('%.*c', 1000, 'x'), 'd')");
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records.front().id, std::string(1000, 'x'));
}

class RepairDatabase : public testing::Test {
protected:
    void Write(const std::string& rows) const
    {
        Connection database;
        ASSERT_TRUE(database.Open("r.db", Connection::Mode::CREATE));
        ASSERT_TRUE(database.Execute("CREATE TABLE repair_data(_id INTEGER PRIMARY KEY, repair_id, repair_date);"
            "INSERT INTO repair_data (repair_id, repair_date) VALUES " + rows));
    }

    // The ids that remain, and behind "|" those that were taken.
    static std::string Deleted(std::int64_t moment)
    {
        const auto joined = [](const std::vector<RepairRecord>& records) {
            std::string ids;
            for (const RepairRecord& record : records) {
                ids += record.id;
            }
            return ids;
        };
        const auto taken = diagnosis::DeleteLaterRepairs("r.db", moment);
        std::vector<RepairRecord> left;
        EXPECT_FALSE(ReadRepairRecords("r.db", left));
        return joined(left) + "|" + joined(taken);
    }

    TempDir mDir;
};

TEST_F(RepairDatabase, LaterRepairsAreDeletedAndWhatHasNoMomentStays)
{
    const diagnosis::TimeZoneGuard zone("UTC");
    Write("('A', '1970-01-01 00:00:05'), ('B', '1970-01-01 00:00:06'), ('C', 'soon')");
    EXPECT_EQ(Deleted(5), "AC|B");
    EXPECT_EQ(Deleted(5), "AC|");
}

TEST_F(RepairDatabase, WhatIsNoDatabaseIsAFailureAndStays)
{
    const std::string text = "no database at all, though long enough to have had a header of one hundred bytes in it, or more";
    mDir.Write("r.db", text);
    std::vector<RepairRecord> records;
    EXPECT_EQ(ReadRepairRecords("r.db", records)->message, "r.db: file is not a database");
    EXPECT_TRUE(diagnosis::DeleteLaterRepairs("r.db", 5).empty());
    EXPECT_EQ(mDir.Read("r.db"), text);
}

TEST_F(RepairDatabase, ADatabaseThatNeverEndsIsGivenUp)
{
    Connection database;
    ASSERT_TRUE(database.Open("r.db", Connection::Mode::CREATE));
    ASSERT_TRUE(database.Execute("CREATE VIEW repair_data AS WITH RECURSIVE n (_id) AS (SELECT 1 UNION ALL SELECT _id + 1 FROM n)"
        " SELECT _id, 'R' AS repair_id, '' AS repair_date FROM n WHERE _id < 0"));
    std::vector<RepairRecord> records;
    EXPECT_EQ(ReadRepairRecords("r.db", records)->message, "r.db: takes more work than a database of its size can need");
}

} // namespace
