#include "diagnosis/sqlite/database_files.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using diagnosis::Connection;
using diagnosis::CopyDatabase;
using diagnosis::IsTouchedByReading;
using diagnosis::ReadOnlyDatabase;
using testing::ElementsAre;
using testing::IsEmpty;

/// "a.db" has the row 1.
class DatabaseFilesTest : public testing::Test {
protected:
    void SetUp() override { EventLogBuilder::Run("a.db", "create table t (a); insert into t values (1)"); }

    std::vector<std::string> Files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(mDir.Path())) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    // Adds the row 2 in a transaction that is open.
    static Connection WriterOf(const std::string& path, const std::string& begin)
    {
        Connection writer;
        EXPECT_TRUE(writer.Open(path, Connection::Mode::CREATE) && writer.Execute(begin + "; insert into t values (2)"));
        return writer;
    }

    // Makes "dead.db", a database whose last program has ended within a change that is in the file in part.
    static void LeaveAChangeUnfinished()
    {
        Connection writer;
        ASSERT_TRUE(writer.Open("a.db", Connection::Mode::CREATE)
            && writer.Execute("pragma synchronous = off; pragma cache_size = 1; begin; update t set a = 2;"
                              "insert into t select zeroblob(5000) from pragma_function_list limit 100"));
        for (const char* part : {"", "-journal"}) {
            fs::copy_file(std::string("a.db") + part, std::string("dead.db") + part);
        }
        ASSERT_GT(fs::file_size("dead.db"), 100'000U);
    }

    TempDir mDir;
};

TEST_F(DatabaseFilesTest, OnlyADatabaseWithAnUnfinishedChangeOrAWalIsTouchedByReading)
{
    EXPECT_FALSE(IsTouchedByReading("a.db"));
    EXPECT_FALSE(IsTouchedByReading("none.db"));
    EXPECT_FALSE(IsTouchedByReading("."));
    LeaveAChangeUnfinished();
    EXPECT_TRUE(IsTouchedByReading("dead.db"));
    fs::create_symlink("dead.db", "link.db");
    EXPECT_TRUE(IsTouchedByReading("link.db"));
}

TEST_F(DatabaseFilesTest, ADatabaseThatIsBeingChangedIsNotTouchedByReading)
{
    mDir.Write("a.db-journal", "");
    EXPECT_FALSE(IsTouchedByReading("a.db"));
    for (const char* begin : {"begin immediate", "begin exclusive"}) {
        Connection writer = WriterOf("a.db", begin);
        ASSERT_TRUE(mDir.Has("a.db-journal"));
        EXPECT_FALSE(IsTouchedByReading("a.db"));
    }
}

TEST_F(DatabaseFilesTest, ADatabaseInWalModeIsTouchedAlsoWithoutAWalBesideIt)
{
    EventLogBuilder::Run("a.db", "pragma journal_mode = wal; insert into t values (2)");
    ASSERT_FALSE(mDir.Has("a.db-wal"));
    EXPECT_TRUE(IsTouchedByReading("a.db"));
}

TEST_F(DatabaseFilesTest, ACopyHasTheRowsThatWaitInTheWal)
{
    EventLogBuilder::RunIntoWal("a.db", "insert into t values (2)");
    fs::create_symlink("a.db", "link.db");
    EXPECT_FALSE(CopyDatabase("link.db", "copy.db"));
    EXPECT_THAT(DatabaseRows("copy.db", "select a from t"), ElementsAre("1", "2"));
}

TEST_F(DatabaseFilesTest, ACopyHasAnUnfinishedChangeUndone)
{
    LeaveAChangeUnfinished();
    EXPECT_FALSE(CopyDatabase("dead.db", "copy.db"));
    EventLogBuilder::Run("copy.db", "insert into t values (3)");
    EXPECT_THAT(DatabaseRows("copy.db", "select a from t"), ElementsAre("1", "3"));
    EXPECT_TRUE(IsTouchedByReading("dead.db"));
}

TEST_F(DatabaseFilesTest, ACopyIsMadeBetweenTheChangesOfOthers)
{
    Connection writer = WriterOf("a.db", "begin exclusive");
    const auto failure = CopyDatabase("a.db", "copy.db", [](int) { return false; });
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, diagnosis::FailureCode::NOT_COPIED);
    EXPECT_EQ(failure->message, "a.db: can't be copied: database is locked");
    EXPECT_FALSE(CopyDatabase("a.db", "copy.db", [&writer](int) { return writer.Execute("commit"); }));
    EXPECT_THAT(DatabaseRows("copy.db", "select a from t"), ElementsAre("1", "2"));
}

TEST_F(DatabaseFilesTest, ACopyHasNothingOfAChangeThatIsNotInTheFileYet)
{
    Connection writer = WriterOf("a.db", "begin immediate");
    ASSERT_TRUE(mDir.Has("a.db-journal"));
    EXPECT_FALSE(CopyDatabase("a.db", "copy.db", nullptr));
    EXPECT_FALSE(mDir.Has("copy.db-journal"));
    EXPECT_THAT(DatabaseRows("copy.db", "select a from t"), ElementsAre("1"));
}

TEST_F(DatabaseFilesTest, ACopyReplacesAFileWithItsJournals)
{
    mDir.Write("copy.db", "old");
    mDir.Write("copy.db-wal", "old");
    mDir.Write("copy.db-journal", "old");
    EXPECT_FALSE(CopyDatabase("a.db", "copy.db"));
    EXPECT_THAT(Files(), ElementsAre("a.db", "copy.db"));
    EXPECT_THAT(DatabaseRows("copy.db", "select a from t"), ElementsAre("1"));
}

TEST_F(DatabaseFilesTest, TheCopyOfAReadOnlyFileIsWritable)
{
    fs::permissions("a.db", fs::perms::owner_read);
    EXPECT_FALSE(CopyDatabase("a.db", "copy.db"));
    EXPECT_EQ(fs::status("copy.db").permissions() & fs::perms::owner_write, fs::perms::owner_write);
}

TEST_F(DatabaseFilesTest, WhatCannotBeCopiedIsAFailureThatNamesTheSource)
{
    const auto failure = CopyDatabase("none.db", "copy.db");
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, diagnosis::FailureCode::NOT_COPIED);
    EXPECT_THAT(failure->message, testing::StartsWith("none.db: can't be copied: "));
}

TEST_F(DatabaseFilesTest, ReadingLeavesTheFolderAsItIs)
{
    EventLogBuilder::RunIntoWal("a.db", "insert into t values (2)");
    const auto files = Files();
    ASSERT_THAT(files, testing::Contains("a.db-wal"));
    const std::string wal = mDir.Read("a.db-wal");
    {
        ReadOnlyDatabase database;
        ASSERT_FALSE(database.Open("a.db", diagnosis::FailureCode::BAD_LOG));
        auto count = database.Get().Prepare("select count(*) from t");
        ASSERT_TRUE(count && count->Step());
        EXPECT_EQ(count->Integer(0), 2);
        EXPECT_EQ(Files(), files);
    }
    EXPECT_EQ(Files(), files);
    EXPECT_EQ(mDir.Read("a.db-wal"), wal);
}

TEST_F(DatabaseFilesTest, ReadingWaitsForTheChangesOfOthers)
{
    Connection writer;
    ASSERT_TRUE(writer.Open("a.db", Connection::Mode::CREATE) && writer.Execute("begin exclusive"));
    std::atomic<bool> isRead = false;
    std::thread other([&isRead] {
        ReadOnlyDatabase database;
        EXPECT_FALSE(database.Open("a.db", diagnosis::FailureCode::BAD_LOG));
        EXPECT_TRUE(database.Get().Execute("select count(*) from t")) << database.Get().GetError();
        isRead = true;
    });
    do { // the file is unlocked for moments only
        EXPECT_TRUE(writer.Execute("commit"));
        while (!writer.Execute("begin exclusive")) {
        }
    } while (!isRead);
    other.join();
}

TEST_F(DatabaseFilesTest, ADatabaseThatCannotBeOpenedIsAFailureOfTheCallersCode)
{
    const auto failure = ReadOnlyDatabase().Open("none.db", diagnosis::FailureCode::BAD_LOG);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, diagnosis::FailureCode::BAD_LOG);
    EXPECT_EQ(failure->message, "none.db: unable to open database file");
}

} // namespace
