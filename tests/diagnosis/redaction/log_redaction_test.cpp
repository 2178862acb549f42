#include "diagnosis/redaction/log_redaction.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/digest/digest.h"
#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/full_disk.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::RedactedRows;
using diagnosis::Redaction;
using diagnosis::RedactionReport;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::string KEY = "0123456789abcdef";
constexpr char SECRET[] = "Ann of Green Gables";

class LogRedactionTest : public testing::Test {
protected:
    LogRedactionTest()
    {
        mRedaction.key = KEY;
        mRedaction.log = {{{}, {{"user", "USER"}}}};
    }

    // The failure, or nothing: "code: message".
    std::string Redact()
    {
        std::filesystem::remove("new.db");
        const auto failure = diagnosis::RedactLog("log.db", "new.db", mRedaction, mReport);
        return failure ? CodeWord(failure->code) + (": " + failure->message) : "";
    }

    static std::string Extra(const std::string& user) { return R"({"USER": ")" + user + R"("})"; }

    TempDir mDir;
    Redaction mRedaction;
    RedactionReport mReport;
};

TEST_F(LogRedactionTest, ListedMembersOfListedEventsAreReplacedAndCounted)
{
    mRedaction.log = {{{{7, 7}}, {{"user", "USER"}}}, {{{9, 10}}, {{"path", "Path"}, {"none", "NONE"}}}};
    EventLogBuilder().Rows({{1, 7, "4.1", Extra("Ann")}, {2, 7, "4.1", Extra("Bob")}, {3, 8, "4.1", Extra("Ann")},
        {4, 10, "4.1", R"({"PATH": "/x", "USER": "Ann"})"}, {5, 9, "", ""}}).WriteTo(mDir.Path("log.db"));
    ASSERT_EQ(Redact(), "");
    EXPECT_THAT(DatabaseRows("new.db", "SELECT event_id, extra FROM event_info ORDER BY _ID"),
        ElementsAre("7|" + Extra(diagnosis::KeyedHash(KEY, "Ann")), "7|" + Extra(diagnosis::KeyedHash(KEY, "Bob")),
            "8|" + Extra("Ann"), "10|" + (R"({"PATH": ")" + diagnosis::KeyedHash(KEY, "/x") + R"(", "USER": "Ann"})"), "9|"));
    ASSERT_EQ(mReport.members.size(), 2U);
    EXPECT_EQ(mReport.members[0].name, "USER");
    EXPECT_EQ(mReport.members[0].where.rows, 2U);
    EXPECT_THAT(mReport.members[0].where.events, ElementsAre(7));
    EXPECT_EQ(mReport.members[1].name, "Path");
    EXPECT_THAT(mReport.notThere, ElementsAre("event log: member NONE"));
    EXPECT_EQ(mReport.wholeTexts.rows, 0U);
}

TEST_F(LogRedactionTest, BrokenTextsAreReplacedAsAWhole)
{
    EventLogBuilder().Rows({{1, 7, "", "{broken " + std::string(SECRET)}, {2, 7, "", ""}, {3, 8, "", "[5]"}}).WriteTo(mDir.Path("log.db"));
    ASSERT_EQ(Redact(), "");
    EXPECT_EQ(mReport.wholeTexts.rows, 2U);
    EXPECT_THAT(mReport.wholeTexts.events, ElementsAre(7, 8));
    EXPECT_THAT(mDir.Read("new.db"), Not(HasSubstr(SECRET)));
}

// A log of which every corner has the value: what was deleted, other tables, indexes, triggers, a column nobody reads.
TEST_F(LogRedactionTest, NoByteOfTheNewFileHasAnOldValue)
{
    EventLogBuilder log;
    for (int row = 1; row <= 200; ++row) {
        log.Row({row, 7, "4.1", Extra(SECRET)});
    }
    log.Sql("CREATE INDEX texts ON event_info (extra)").Sql("ALTER TABLE event_info ADD COLUMN owner DEFAULT '" + std::string(SECRET) + "'")
        .Sql("CREATE TABLE other (text); INSERT INTO other VALUES ('" + std::string(SECRET) + "')")
        .Sql("CREATE TRIGGER copying AFTER INSERT ON event_info BEGIN INSERT INTO other VALUES (NEW.extra); END")
        .Sql("CREATE VIEW spied AS SELECT '" + std::string(SECRET) + "'").Sql("DELETE FROM event_info WHERE _ID > 100")
        .Sql("ANALYZE").WriteTo(mDir.Path("log.db"));
    ASSERT_THAT(mDir.Read("log.db"), HasSubstr(SECRET));
    ASSERT_EQ(Redact(), "");
    EXPECT_THAT(mDir.Read("new.db"), Not(HasSubstr(SECRET)));
    EXPECT_THAT(DatabaseRows("new.db", "SELECT count(*) FROM event_info"), ElementsAre("100"));
    EXPECT_THAT(mReport.leftOut, ElementsAre("other tables of the event log: 2"));
    EXPECT_FALSE(mDir.Has("new.db-journal") || mDir.Has("new.db-wal"));
}

TEST_F(LogRedactionTest, ChangesInTheWriteAheadLogAreRedactedToo)
{
    EventLogBuilder().Row({1, 7, "", Extra("Ann")}).WriteTo(mDir.Path("log.db"));
    EventLogBuilder::RunIntoWal("log.db", "UPDATE event_info SET extra = '" + Extra(SECRET) + "'");
    const std::string before = mDir.Read("log.db") + mDir.Read("log.db-wal");
    ASSERT_EQ(Redact(), "");
    EXPECT_THAT(DatabaseRows("new.db", "SELECT extra FROM event_info"), ElementsAre(Extra(diagnosis::KeyedHash(KEY, SECRET))));
    EXPECT_FALSE(mDir.Has("new.db-wal"));
    EXPECT_EQ(mDir.Read("log.db") + mDir.Read("log.db-wal"), before);
}

TEST_F(LogRedactionTest, ValuesKeepTheirTypesAndColumnsTheWayTheyCompare)
{
    EventLogBuilder().Schema("PRAGMA encoding = 'UTF-16le'; CREATE TABLE event_version (_ID integer primary key, VERSION_NAME);"
        "CREATE TABLE event_info (_ID integer primary key, event_id text, extra, version_id varint);"
        "CREATE TABLE event_info_flow (_ID integer, event_pid real, occurrence_time);"
        "CREATE INDEX one ON event_info (event_id DESC, version_id); CREATE INDEX two ON event_info (lower(extra));")
        .Sql("INSERT INTO event_info VALUES (5, 7, x'7b7d', 1.5), (6, x'00ff', NULL, 'x'), (7, 7.5, 17, NULL)")
        .Sql("INSERT INTO event_info_flow VALUES (NULL, 5, '9'), (2, 'x', 9.5), (3, NULL, x'09')")
        .WriteTo(mDir.Path("log.db"));
    ASSERT_EQ(Redact(), "");
    for (const char* sql : {"SELECT quote(_ID), quote(event_id), quote(version_id), event_id = 7, version_id > 1 FROM event_info",
             "SELECT quote(_ID), quote(event_pid), quote(occurrence_time), occurrence_time > 8 FROM event_info_flow",
             "PRAGMA encoding"}) {
        EXPECT_EQ(DatabaseRows("new.db", sql), DatabaseRows("log.db", sql)) << sql;
    }
    EXPECT_THAT(DatabaseRows("new.db", "SELECT sql FROM sqlite_master WHERE type = 'index'"),
        ElementsAre("CREATE INDEX log_index_1 ON event_info (event_id DESC, version_id)"));
    EXPECT_TRUE(mReport.wholeTexts.hasOtherEvents); // the number 17 of the event 7.5
}

TEST_F(LogRedactionTest, AnEventThatIsNoWholeNumberIsRedactedAsEveryListedOne)
{
    mRedaction.log = {{{{7, 7}}, {{"user", "USER"}}}};
    EventLogBuilder().Row({1, 8, "", Extra(SECRET)}).Sql("UPDATE event_info SET event_id = 'x'").WriteTo(mDir.Path("log.db"));
    ASSERT_EQ(Redact(), "");
    EXPECT_THAT(mDir.Read("new.db"), Not(HasSubstr(SECRET)));
    EXPECT_TRUE(mReport.members.at(0).where.hasOtherEvents);
}

TEST_F(LogRedactionTest, ALogThatCannotBeReadToItsEndIsRefused)
{
    mDir.Write("log.db", "no database, but " + std::string(SECRET));
    EXPECT_THAT(Redact(), HasSubstr("bad_log: log.db"));
    mDir.Write("log.db", "");
    EXPECT_EQ(Redact(), "");
    EventLogBuilder().Row({1, 7, "", Extra("Ann")}).WriteTo(mDir.Path("log.db"));
    EventLogBuilder::Run("log.db", "DROP TABLE event_info; CREATE VIEW event_info AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL "
        "SELECT i + 1 FROM n) SELECT i AS _ID, 7 AS event_id, hex(zeroblob(100000)) AS extra, 1 AS version_id FROM n");
    EXPECT_THAT(Redact(), HasSubstr("bad_log: log.db: can't be redacted: has more text than its file can hold"));
    EventLogBuilder::Run("log.db", "DROP VIEW event_info; CREATE VIEW event_info AS SELECT * FROM nowhere");
    EXPECT_THAT(Redact(), HasSubstr("bad_log: log.db: can't be redacted: no such table: main.nowhere"));
}

TEST_F(LogRedactionTest, ALogThatDoesNotFitOnTheDiskIsRefused)
{
    EventLogBuilder().Rows(std::vector<LoggedRow>(300, {1, 7, "4.1", Extra(std::string(200, 'x'))})).WriteTo(mDir.Path("log.db"));
    ASSERT_EQ(Redact(), "");
    const auto size = std::filesystem::file_size("new.db");
    for (std::uintmax_t bytes = 0; bytes < size; bytes += 4096) {
        const FullDisk disk(bytes);
        EXPECT_THAT(Redact(), HasSubstr("bad_log: log.db: can't be redacted: ")) << bytes;
    }
}

TEST_F(LogRedactionTest, TablesOfTheDerivedDatabaseAreKeptInMindInLowerCase)
{
    EventLogBuilder::Run("derived.db", "CREATE TABLE Kills (n)");
    diagnosis::LeaveDerivedDatabaseOut("derived.db", mReport);
    EXPECT_THAT(mReport.derivedTables, ElementsAre("kills"));
    EXPECT_THAT(mReport.leftOut, ElementsAre("the derived database of an earlier run"));
}

TEST_F(LogRedactionTest, ColumnsKeepTheirAffinity)
{
    for (const auto& [type, affinity] : {std::pair("VARCHAR(9)", "TEXT"), std::pair("CLOB", "TEXT"), std::pair("Blob", "BLOB"),
             std::pair("FLOAT", "REAL"), std::pair("double", "REAL"), std::pair("REAL", "REAL"), std::pair("date", "NUMERIC"),
             std::pair("BIGINT", "INTEGER")}) {
        EventLogBuilder().Schema(std::string("CREATE TABLE event_info (_ID TEXT PRIMARY KEY, event_id INTEGER, extra TEXT, version_id ")
            + type + "); CREATE TABLE event_info_flow (_ID INTEGER, event_pid INTEGER, occurrence_time INTEGER, PRIMARY KEY (_ID, event_pid));"
            "CREATE TABLE event_version (_ID INTEGER PRIMARY KEY, VERSION_NAME TEXT);").WriteTo(mDir.Path("log.db"));
        ASSERT_EQ(Redact(), "");
        EXPECT_THAT(DatabaseRows("new.db", "SELECT type, pk FROM pragma_table_info('event_info') WHERE name IN ('_ID', 'version_id')"),
            ElementsAre("TEXT|0", affinity + std::string("|0")));
        EXPECT_THAT(DatabaseRows("new.db", "SELECT type, pk FROM pragma_table_info('event_info_flow')"),
            ElementsAre("INTEGER|0", "INTEGER|0", "INTEGER|0"));
    }
}

TEST_F(LogRedactionTest, AMemberThatIsListedTwiceIsToldOnce)
{
    mRedaction.log.push_back({{{8, 8}}, {{"user", "USER"}}});
    EventLogBuilder().Row({1, 8, "", Extra("Ann")}).WriteTo(mDir.Path("log.db"));
    ASSERT_EQ(Redact(), "");
    EXPECT_EQ(mReport.members.size(), 1U);
    EXPECT_EQ(mReport.members[0].where.rows, 1U);
}

TEST_F(LogRedactionTest, WhatIsNoDatabaseIsAFailure)
{
    mDir.Write("log.db", "no database at all, though long enough to have had a header of one hundred bytes in it, or more");
    EXPECT_EQ(Redact(), "bad_log: log.db: can't be redacted: file is not a database");
    mDir.MakeDir("folder");
    RedactionReport report;
    EXPECT_EQ(diagnosis::RedactLog("folder", "new.db", mRedaction, report)->message, "folder: is a folder");
}

TEST_F(LogRedactionTest, ADerivedDatabaseThatIsNoneHasNoTables)
{
    mDir.MakeDir("folder");
    diagnosis::LeaveDerivedDatabaseOut("folder", mReport);
    mDir.Write("text.db", "no database at all, though long enough to have had a header of one hundred bytes in it, or more");
    diagnosis::LeaveDerivedDatabaseOut("text.db", mReport);
    EXPECT_THAT(mReport.derivedTables, IsEmpty());
    EXPECT_EQ(mReport.leftOut.size(), 2U);
}

} // namespace
