#include "arborist/stores/common_part/external_databases.h"

#include <filesystem>
#include <regex>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/stores/common_part/common_part_db_helper.h"
#include "arborist/stores/sql/sql_database.h"
#include "tests/stores/common_part/external_databases_fixture.h"
#include "tests/support/database_rows.h"
#include "tests/support/zip_file.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

using ExternalDatabasesTest = ExternalDatabasesFixture;

TEST_F(ExternalDatabasesTest, NullPartIsPassedOver)
{
    CommonPartDbHelper::GetInstance().CopyDbAndCreateTable(nullptr);
    CommonPartDbHelper::GetInstance().CopyDbAndCreateTable(std::make_shared<CommonPart>());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ExternalDatabasesTest, FileIsCopiedAndItsSqlRunsOnTheCopyAlone)
{
    const std::string before = MakeDb("device/app.db");
    EXPECT_THAT(Copy(".*/app\\.db", {"create table made(b); insert into made values (2);"}),
        ElementsAre("copies/app.db"));
    EXPECT_THAT(DatabaseRows(mDir.Path("copies/app.db"), "select a, b from t, made"), ElementsAre("1|2"));
    EXPECT_EQ(mDir.Read("device/app.db"), before);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ExternalDatabasesTest, CopyOfAFileThatMayNotBeWrittenIsWorkedOnAllTheSame)
{
    MakeDb("device/app.db");
    fs::permissions(mDir.Path("device/app.db"), fs::perms::owner_read);
    EXPECT_THAT(Copy(".*/app\\.db", {"create table made(b);"}), ElementsAre("copies/app.db"));
    // Check the permissions themselves, as root may write in any case.
    EXPECT_EQ(fs::status(mDir.Path("copies/app.db")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(mDir.Path("device/app.db")).permissions(), fs::perms::owner_read);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ExternalDatabasesTest, MissingDirectoryIsPassedOverAndLeavesTheList)
{
    const auto bean = TableBeanOf("B", {mDir.Path("none"), ""}, ".*");
    bean->SetCopyDbFileList({"old"});
    Run(bean);
    EXPECT_THAT(bean->GetCopyDbFileList(), ElementsAre("old"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ExternalDatabasesTest, PathThatIsAFileEmptiesTheListWithoutALine)
{
    const auto bean = TableBeanOf("B", {mDir.Write("file.db", "")}, ".*");
    bean->SetCopyDbFileList({"old"});
    Run(bean);
    EXPECT_THAT(bean->GetCopyDbFileList(), IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ExternalDatabasesTest, OfSeveralDirectoriesTheCopiesOfTheLastAreKept)
{
    MakeDb("one/a.db");
    MakeDb("two/b.db");
    EXPECT_THAT(Copy(".*\\.db", {"create table made(b)"}, {"one", "two", "none"}), ElementsAre("copies/b.db"));
    EXPECT_THAT(DatabaseRows(mDir.Path("copies/a.db"), "select count(*) from made"), ElementsAre("0"));
}

TEST_F(ExternalDatabasesTest, WithoutATargetDirectoryNothingIsCopied)
{
    mSettings.Set(Settings::APP_DATABASE_DIR, "");
    EXPECT_THAT(Copy(".*\\.db"), IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    MakeDb("device/a.db");
    EXPECT_THAT(Copy(".*\\.db"), IsEmpty());
    EXPECT_THAT(mLog.Lines(), ElementsAre(Line("CopyDbFile: database dir is empty.")));
}

TEST_F(ExternalDatabasesTest, FileOneLevelDownStandsTwiceAndItsSqlRunsTwice)
{
    MakeDb("device/sub/a.db");
    EXPECT_THAT(Copy(".*\\.db", {"create table made(b)"}), ElementsAre("copies/a.db", "copies/a.db"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(HasSubstr("sql failed: table made already exists"),
        Line("CreateTable: execute sql fail."), Line("IsCreateDbByFileComplete: create table made fail.")));
}

TEST_F(ExternalDatabasesTest, LaterOfTwoFilesWithOneNameReplacesTheCopy)
{
    MakeDb("one/a.db", "create table first(a)");
    MakeDb("two/a.db", "create table second(a)");
    Copy(".*\\.db", {}, {"one", "two"});
    EXPECT_THAT(DatabaseRows(mDir.Path("copies/a.db"), "select name from sqlite_master"), ElementsAre("second"));
}

TEST_F(ExternalDatabasesTest, TwoFilesWithOneNameStandTwiceUnderOneTarget)
{
    MakeDb("device/x/a.db");
    MakeDb("device/y/a.db");
    EXPECT_THAT(Copy(".*\\.db"), ElementsAre("copies/a.db", "copies/a.db", "copies/a.db", "copies/a.db"));
}

TEST_F(ExternalDatabasesTest, CopyIsListedWithoutTheSpacesAtTheEndOfItsName)
{
    MakeDb("device/app.db  ");
    EXPECT_THAT(Copy(".*/app\\.db *", {"create table made(b)"}), ElementsAre("copies/app.db"));
    EXPECT_TRUE(mDir.Has("copies/app.db  "));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre(Line("CreateTable: file app.db not exist.")));
}

TEST_F(ExternalDatabasesTest, CapitalsInPathAndPatternMeet)
{
    MakeDb("device/App.DB");
    EXPECT_THAT(Copy(".*/APP\\.db"), ElementsAre("copies/App.DB"));
}

TEST_F(ExternalDatabasesTest, PatternThatIsNoneRaisesTheLibrarysError)
{
    EXPECT_THAT(Copy("("), IsEmpty()); // no directory, so that no file is ever matched
    MakeDb("device/a.db");
    EXPECT_THROW(Copy("("), std::regex_error);
}

TEST_F(ExternalDatabasesTest, TargetDirectoryThatIsSearchedKeepsItsFiles)
{
    const std::string before = MakeDb("copies/a.db");
    EXPECT_THAT(Copy(".*\\.db", {}, {"copies"}), ElementsAre("copies/a.db"));
    EXPECT_EQ(mDir.Read("copies/a.db"), before);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ExternalDatabasesTest, TargetDirectoryThatIsSearchedKeepsWhatAServiceHasNotMovedIntoItsFile)
{
    MakeDb("copies/a.db", "pragma journal_mode = wal; create table t(a)");
    FT::sql::SqlDatabase service;
    service.Open(mDir.Path("copies/a.db"));
    EventLogBuilder::Run(mDir.Path("copies/a.db"), "create table waiting(a)");
    const std::string changes = mDir.Read("copies/a.db-wal");
    ASSERT_FALSE(changes.empty());
    EXPECT_THAT(Copy(".*\\.db", {}, {"copies"}), ElementsAre("copies/a.db"));
    EXPECT_EQ(mDir.Read("copies/a.db-wal"), changes);
}

TEST_F(ExternalDatabasesTest, WhatABrokenOffRunLeftBesideACopyIsNotWorkedIntoTheNew)
{
    const std::string db = MakeDb("device/a.db");
    mDir.MakeDir("zipped");
    WriteZip(mDir.Path("zipped/b.zip"), {{"b.db", db}});
    for (const char* const name : {"copies/a.db", "copies/b.db"}) {
        MakeDb(name, "pragma journal_mode = wal; create table old(a)");
        {
            FT::sql::SqlDatabase broken; // keeps the changes beside the file
            broken.Open(mDir.Path(name));
            EventLogBuilder::Run(mDir.Path(name), "create table older(a)");
            fs::copy_file(mDir.Path(name) + "-wal", mDir.Path("wal"), fs::copy_options::overwrite_existing);
        }
        fs::copy_file(mDir.Path("wal"), mDir.Path(name) + "-wal");
    }
    Copy(".*(zip|db)", {}, {"device", "zipped"});
    for (const char* const name : {"copies/a.db", "copies/b.db"}) {
        EXPECT_FALSE(fs::exists(mDir.Path(name) + "-wal"));
        EXPECT_THAT(DatabaseRows(mDir.Path(name), "select name from sqlite_master"), ElementsAre("t"));
    }
}

TEST_F(ExternalDatabasesTest, ChangesThatAreCopiedWithTheirFileStayBesideIt)
{
    MakeDb("live/a.db", "pragma journal_mode = wal; create table t(a)");
    FT::sql::SqlDatabase service;
    service.Open(mDir.Path("live/a.db"));
    EventLogBuilder::Run(mDir.Path("live/a.db"), "create table waiting(a)");
    ASSERT_TRUE(mDir.Has("live/a.db-wal"));
    for (int run = 0; run < 2; ++run) {
        EXPECT_THAT(Copy(".*\\.db(-wal)?", {}, {"live"}),
            testing::UnorderedElementsAre("copies/a.db", "copies/a.db-wal"));
        EXPECT_TRUE(mDir.Has("copies/a.db-wal"));
    }
    EXPECT_THAT(DatabaseRows(mDir.Path("copies/a.db"), "select name from sqlite_master"),
        ElementsAre("t", "waiting"));
}

TEST_F(ExternalDatabasesTest, TargetDirectoryThatIsAFileGivesNoCopies)
{
    MakeDb("device/a.db");
    mDir.Write("copies", "somebody's file");
    EXPECT_THAT(Copy(".*\\.db"), IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    EXPECT_EQ(mDir.Read("copies"), "somebody's file");
}

TEST_F(ExternalDatabasesTest, TargetDirectoryThatCannotBeMadeIsTold)
{
    MakeDb("device/a.db");
    mDir.Write("file", "");
    mSettings.Set(Settings::APP_DATABASE_DIR, mDir.Path("file/copies"));
    EXPECT_THAT(Copy(".*\\.db"), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), Contains(Line("CopyFile: create directory fail.")));
}

TEST_F(ExternalDatabasesTest, TargetThatIsADirectoryFailsToBeCopied)
{
    MakeDb("device/a.db");
    mDir.Write("copies/a.db/inside", "");
    EXPECT_THAT(Copy(".*\\.db"), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), Contains(Line("CopyFile: copy file to folder fail.")));
}

TEST_F(ExternalDatabasesTest, MoreListingsThanOneSearchMayMakeAreTold)
{
    mSettings.Set(Settings::APP_DATABASE_DIR, ""); // no need to copy them all
    std::string path = "device";
    for (int level = 0; level < 13; ++level) { // listed twice as often at each: 8192 times
        path += "/x";
    }
    mDir.Write(path + "/a.db", "");
    EXPECT_THAT(Copy(".*\\.db"), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), IsEmpty());
    std::filesystem::remove_all(mDir.Path("device"));
    mDir.Write(path + "/x/b.db", "");
    EXPECT_THAT(Copy(".*\\.db"), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
        ElementsAre(Line("GetFileList: files are listed 8192 times, repetitions end here.")));
}

// A rule may count its hits: nobody knows what the listings that are left out would have added.
TEST_F(ExternalDatabasesTest, CopiesAreNotWholeWhereALimitKeptListingsOut)
{
    std::string path = "device";
    for (int level = 0; level < 14; ++level) {
        path += "/x";
    }
    mDir.Write(path + "/a.db", "");
    mDir.Write("device/b.db", "");
    const auto cutShort = ExternalDatabases::CopyDbFile(mDir.Path("device"), ".*a\\.db");
    EXPECT_EQ(cutShort.files.size(), 8192U);
    EXPECT_FALSE(cutShort.isWhole);
    EXPECT_TRUE(ExternalDatabases::CopyDbFile(mDir.Path("device"), ".*b\\.db").isWhole);
}

TEST_F(ExternalDatabasesTest, FoldersWithMoreEntriesThanASearchTakesAreTold)
{
    mDir.Write("device/a.db", "");
    mDir.Write("device/b.db", "");
    const auto copies = ExternalDatabases::CopyDbFile(mDir.Path("device"), ".*\\.db", 1);
    EXPECT_EQ(copies.files.size(), 1U);
    EXPECT_FALSE(copies.isWhole);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
        ElementsAre(Line("GetFileList: more than 1 files and directories, the others are not searched.")));
    EXPECT_TRUE(ExternalDatabases::CopyDbFile(mDir.Path("device"), ".*\\.db", 2).isWhole);
}

TEST_F(ExternalDatabasesTest, NullPathsAndStatementsArePassedOver)
{
    MakeDb("device/a.db");
    const auto bean = TableBeanOf("B", {mDir.Path("device")}, ".*a\\.db", {"create table made(x)"});
    auto paths = bean->GetDbPathList();
    paths.push_back(nullptr);
    bean->SetDbPathList(paths);
    auto statements = bean->GetCreateTableList();
    statements.insert(statements.begin(), nullptr);
    bean->SetCreateTableList(statements);
    Run(bean);
    EXPECT_THAT(Below(bean->GetCopyDbFileList()), ElementsAre("copies/a.db"));
    EXPECT_THAT(DatabaseRows(mDir.Path("copies/a.db"), "select count(*) from made"), ElementsAre("0"));
}

} // namespace
