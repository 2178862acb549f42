#include "diagnosis/sqlite/database_files.h"

#include <algorithm>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
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

    TempDir mDir;
};

TEST_F(DatabaseFilesTest, OnlyADatabaseWithAWalOrAJournalIsTouchedByReading)
{
    EXPECT_FALSE(IsTouchedByReading("a.db"));
    EXPECT_FALSE(IsTouchedByReading("none.db"));
    EXPECT_FALSE(IsTouchedByReading("."));
    mDir.Write("a.db-journal", "");
    EXPECT_TRUE(IsTouchedByReading("a.db"));
    fs::create_symlink("a.db", "link.db");
    EXPECT_TRUE(IsTouchedByReading("link.db"));
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

TEST_F(DatabaseFilesTest, ADatabaseThatCannotBeOpenedIsAFailureOfTheCallersCode)
{
    const auto failure = ReadOnlyDatabase().Open("none.db", diagnosis::FailureCode::BAD_LOG);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, diagnosis::FailureCode::BAD_LOG);
    EXPECT_EQ(failure->message, "none.db: unable to open database file");
}

} // namespace
