#include "arborist/stores/common_part/external_databases.h"

#include <cstdarg>
#include <filesystem>
#include <functional>
#include <memory>
#include <regex>
#include <utility>

#include <unistd.h>

#include <gmock/gmock.h>
#include <json/value.h>

#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/stores/common_part/common_part_db_helper.h"
#include "arborist/stores/sql/sql_database.h"
#include "tests/support/common_part_builder.h"
#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"
#include "tests/support/zip_file.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

std::string Line(const std::string& text)
{
    return "FUNc:CommonPartDbHelper::" + text;
}

class ExternalDatabasesTest : public testing::Test {
protected:
    ExternalDatabasesTest() { mSettings.Set(Settings::APP_DATABASE_DIR, mDir.Path("copies")); }

    static void Run(const std::shared_ptr<DefDbTableBean>& bean)
    {
        CommonPartDbHelper::GetInstance().CopyDbAndCreateTable(PartOf({}, {nullptr, bean}));
    }

    // Copies the matching files below "device" and returns the paths of the copies below the test's directory.
    std::vector<std::string> Copy(const std::string& dbName, const std::vector<std::string>& sql = {},
        const std::vector<std::string>& directories = {"device"})
    {
        std::vector<std::string> paths;
        for (const std::string& directory : directories) {
            paths.push_back(mDir.Path(directory));
        }
        const auto bean = TableBeanOf("B", paths, dbName, sql);
        Run(bean);
        return Below(bean->GetCopyDbFileList());
    }

    std::vector<std::string> Below(std::vector<std::string> paths) const
    {
        for (std::string& path : paths) {
            path = path.substr(mDir.Path().size() + 1);
        }
        return paths;
    }

    std::string MakeDb(const std::string& name, const std::string& sql = "create table t(a); insert into t values (1)")
    {
        fs::create_directories(fs::path(mDir.Path(name)).parent_path());
        EventLogBuilder::Run(mDir.Path(name), sql);
        return mDir.Read(name);
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
};

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

TEST_F(ExternalDatabasesTest, DirectoryIsLookedUpOnTheCapturedDevice)
{
    MakeDb("captured/data/app.db");
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("captured"));
    const auto bean = TableBeanOf("B", {"/data"}, ".*\\.db");
    Run(bean);
    EXPECT_THAT(Below(bean->GetCopyDbFileList()), ElementsAre("copies/app.db"));
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

TEST_F(ExternalDatabasesTest, LinkInTheTargetDirectoryIsReplacedAndNotFollowed)
{
    const std::string before = MakeDb("device/a.db");
    mDir.MakeDir("copies");
    fs::create_symlink(mDir.Path("device/a.db"), mDir.Path("copies/a.db"));
    EXPECT_THAT(Copy(".*\\.db", {"create table made(b)"}), ElementsAre("copies/a.db"));
    EXPECT_EQ(mDir.Read("device/a.db"), before);
    EXPECT_FALSE(fs::is_symlink(mDir.Path("copies/a.db")));
}

TEST_F(ExternalDatabasesTest, LettersAboveTheRootOfTheDeviceMakeNoArchive)
{
    MakeDb("unzipped/data/a.db");
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("unzipped"));
    const auto bean = TableBeanOf("B", {"/data"}, ".*\\.db", {});
    Run(bean);
    EXPECT_THAT(Below(bean->GetCopyDbFileList()), ElementsAre("copies/a.db"));
}

TEST_F(ExternalDatabasesTest, PatternIsHeldAgainstThePathBelowTheRootOfTheDevice)
{
    MakeDb("device/data/a.db");
    MakeDb("device/other/b.db");
    fs::create_directory_symlink("/other", mDir.Path("device/data/link"));
    fs::create_directory_symlink(mDir.Path("device"), mDir.Path("root"));
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("root"));
    const auto onDevice = TableBeanOf("B", {"/data"}, "/data/[a-z]\\.db", {});
    Run(onDevice);
    EXPECT_THAT(Below(onDevice->GetCopyDbFileList()), ElementsAre("copies/a.db"));
    const auto behindLink = TableBeanOf("B", {"/data"}, "/other/b\\.db", {});
    Run(behindLink);
    EXPECT_THAT(Below(behindLink->GetCopyDbFileList()), ElementsAre("copies/b.db"));
}

TEST_F(ExternalDatabasesTest, LinksOfACapturedDeviceNeverLeadToThisMachine)
{
    MakeDb("elsewhere/a.db");
    fs::create_directories(mDir.Path("device/data"));
    fs::create_directory_symlink(mDir.Path("elsewhere"), mDir.Path("device/data/link"));
    fs::create_symlink(mDir.Path("elsewhere/a.db"), mDir.Path("device/data/b.db"));
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("device"));
    const auto bean = TableBeanOf("B", {"/data"}, ".*\\.db", {});
    Run(bean);
    EXPECT_THAT(bean->GetCopyDbFileList(), IsEmpty());
    mSettings.Set(Settings::DEVICE_ROOT_DIR, "");
    const auto live = TableBeanOf("B", {mDir.Path("device/data")}, ".*\\.db", {});
    Run(live);
    EXPECT_THAT(Below(live->GetCopyDbFileList()), ElementsAre("copies/a.db", "copies/a.db"));
}

// Links of all kinds at every place of the way: the path in the rule set, its middle, a folder below it, a file.
TEST_F(ExternalDatabasesTest, LinksInTheMiddleOfAWayNeverLeadToThisMachine)
{
    const std::string outside = MakeDb("elsewhere/data/a.db");
    const std::string inside = MakeDb("device/real/data/a.db", "create table own(a)");
    WriteZip(mDir.Write("elsewhere/data/b.zip", ""), {{"b.db", outside}});
    const std::string climbing = "../../../../../../../../../.." + mDir.Path("elsewhere");
    int number = 0;
    for (const std::string& target : {mDir.Path("elsewhere"), climbing, std::string("/chain")}) {
        const std::string name = "link" + std::to_string(number++);
        fs::create_directory_symlink(target, mDir.Path("device/" + name));
        fs::create_directory_symlink(target, mDir.Path("device/real/" + name));
        fs::remove(mDir.Path("device/chain"));
        fs::create_directory_symlink(mDir.Path("elsewhere"), mDir.Path("device/chain"));
        mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("device"));
        for (const std::string& path : {"/" + name + "/data", "/real/" + name + "/data", "/" + name, "/real/" + name}) {
            const auto bean = TableBeanOf("B", {path}, ".*\\.(db|zip)", {});
            Run(bean);
            EXPECT_THAT(bean->GetCopyDbFileList(), IsEmpty()) << path << " -> " << target;
        }
        const auto below = TableBeanOf("B", {"/real"}, ".*\\.(db|zip)", {});
        Run(below);
        EXPECT_THAT(Below(below->GetCopyDbFileList()), testing::Each("copies/a.db"));
        EXPECT_EQ(mDir.Read("copies/a.db"), inside);
    }
}

// Runs something once, at the first line of the log that ends in a text.
class OnceAtALine : public FT::ILogger {
public:
    OnceAtALine(std::string end, std::function<void()> action) : mEnd(std::move(end)), mAction(std::move(action)) {}

    void Print(unsigned int, const std::string& format, va_list) override
    {
        if (mAction && format.size() >= mEnd.size() && format.compare(format.size() - mEnd.size(), mEnd.size(), mEnd) == 0) {
            std::exchange(mAction, nullptr)();
        }
    }

private:
    std::string mEnd;
    std::function<void()> mAction;
};

#if defined(__linux__)
// Each file below "sub" is listed twice, so that one follows the broken archive in whatever order a folder is read.
TEST_F(ExternalDatabasesTest, FolderThatIsReplacedByALinkAfterTheSearchLeadsNowhere)
{
    const std::string outside = MakeDb("elsewhere/a.db");
    WriteZip(mDir.Write("elsewhere/c.zip", ""), {{"c.db", outside}});
    const std::string inside = MakeDb("device/data/sub/a.db", "create table own(a)");
    mDir.Write("device/data/sub/b.zip", "no archive");
    WriteZip(mDir.Write("device/data/sub/c.zip", ""), {{"c.db", inside}});
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("device"));
    bool isReplaced = false;
    FT::Log::GetInstance().SetUserLogger(std::make_unique<OnceAtALine>("unZip file fail.", [this, &isReplaced] {
        fs::rename("device/data/sub", "device/data/old");
        fs::create_directory_symlink(mDir.Path("elsewhere"), mDir.Path("device/data/sub"));
        isReplaced = true;
    }));
    const auto bean = TableBeanOf("B", {"/data"}, ".*(db|zip)", {});
    Run(bean);
    ASSERT_TRUE(isReplaced);
    for (const char* copy : {"copies/a.db", "copies/c.db"}) {
        EXPECT_TRUE(!mDir.Has(copy) || mDir.Read(copy) == inside) << copy;
    }
}
#endif

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

TEST_F(ExternalDatabasesTest, FileThatIsNoDatabaseIsCopiedAndItsSqlFails)
{
    mDir.Write("device/a.db", std::string(2000, 'x'));
    EXPECT_THAT(Copy(".*\\.db", {"create table made(b)"}), ElementsAre("copies/a.db"));
    EXPECT_EQ(mDir.Read("copies/a.db"), std::string(2000, 'x'));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), Contains(Line("IsCreateDbByFileComplete: create table made fail.")));
}

TEST_F(ExternalDatabasesTest, DanglingLinkIsNotListed)
{
    mDir.MakeDir("device");
    fs::create_symlink(mDir.Path("gone"), mDir.Path("device/a.db"));
    EXPECT_THAT(Copy(".*\\.db"), IsEmpty());
}

// ---- SQL on the copies. ----

TEST_F(ExternalDatabasesTest, EmptyPiecesOfSqlArePassedOver)
{
    MakeDb("device/a.db");
    Copy(".*\\.db", {";;create table made(b);;insert into made values (1);"});
    EXPECT_THAT(DatabaseRows(mDir.Path("copies/a.db"), "select * from made"), ElementsAre("1"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ExternalDatabasesTest, SqlOfSeparatorsAloneOrNoneIsTold)
{
    MakeDb("device/a.db");
    Copy(".*\\.db", {";;", ""});
    const std::string made = Line("IsCreateDbByFileComplete: create table made fail.");
    EXPECT_THAT(mLog.Lines(), ElementsAre(Line("CreateTable: sql empty."), made,
        Line("CreateTable: createTable input is null."), made));
}

TEST_F(ExternalDatabasesTest, FirstFailingStatementEndsItsTextAndKeepsWhatRan)
{
    MakeDb("device/a.db");
    Copy(".*\\.db", {"create table one(a); no sql; create table two(a)", "create table three(a)"});
    EXPECT_THAT(DatabaseRows(mDir.Path("copies/a.db"), "select name from sqlite_master order by name"),
        ElementsAre("one", "t", "three"));
}

TEST_F(ExternalDatabasesTest, SemicolonInALiteralCutsTheStatement)
{
    MakeDb("device/a.db");
    Copy(".*\\.db", {"insert into t values ('x;y'); insert into t values (7)"});
    EXPECT_THAT(DatabaseRows(mDir.Path("copies/a.db"), "select * from t"), ElementsAre("1"));
}

TEST_F(ExternalDatabasesTest, SqlReachesNoOtherFile)
{
    const std::string before = MakeDb("device/a.db");
    const std::string path = mDir.Path("device/a.db");
    Copy(".*\\.db", {"attach '" + path + "' as x; delete from x.t", "attach '" + path + "' || '' as x",
        "vacuum into '" + mDir.Path("new.db") + "'", "vacuum", "delete from t"});
    EXPECT_EQ(mDir.Read("device/a.db"), before);
    EXPECT_FALSE(mDir.Has("new.db"));
    const std::string fail = Line("CreateTable: execute sql fail.");
    const std::string made = Line("IsCreateDbByFileComplete: create table made fail.");
    const auto denied = testing::AnyOf(HasSubstr("not authorized"), HasSubstr("authorization denied"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(denied, fail, made, denied, fail, made, denied, fail, made));
    EXPECT_THAT(DatabaseRows(mDir.Path("copies/a.db"), "select count(*) from t"), ElementsAre("0"));
}

// ---- Archives. ----

TEST_F(ExternalDatabasesTest, ArchiveIsUnpackedAndItsMatchingFilesAreListed)
{
    const std::string db = MakeDb("made.db");
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a.zip"), {{"app.db", db}, {"readme.txt", "text"}});
    const std::string before = mDir.Read("device/a.zip");
    EXPECT_THAT(Copy("(.*/a\\.zip|app\\.db)", {"create table made(b)"}), ElementsAre("copies/app.db"));
    EXPECT_EQ(mDir.Read("copies/readme.txt"), "text");
    EXPECT_FALSE(mDir.Has("copies/temp"));
    EXPECT_EQ(mDir.Read("device/a.zip"), before);
    EXPECT_THAT(DatabaseRows(mDir.Path("copies/app.db"), "select count(*) from made"), ElementsAre("0"));
}

TEST_F(ExternalDatabasesTest, UnpackedNamesMeetThePatternWithItsCapitals)
{
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/App.zip"), {{"App.db", "x"}, {"app.db", "y"}});
    EXPECT_THAT(Copy(".*App\\.(zip|db)"), ElementsAre("copies/App.db"));
}

TEST_F(ExternalDatabasesTest, PlainFileInADirectoryOfThatNamePassesForAnArchive)
{
    MakeDb("device/myZIPs/a.db");
    EXPECT_THAT(Copy(".*\\.db"), IsEmpty());
    const std::string line = Line("UnZipFile: unZip file fail.");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(line, line));
}

TEST_F(ExternalDatabasesTest, NameWithTwoDotsIsRefusedInSilence)
{
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a..zip"), {{"app.db", "x"}});
    EXPECT_THAT(Copy(".*(zip|db)"), IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    EXPECT_FALSE(mDir.Has("copies"));
}

TEST_F(ExternalDatabasesTest, FolderWithTwoDotsInItsNameIsNoReasonToRefuseAnArchive)
{
    mDir.MakeDir("device/a..b");
    WriteZip(mDir.Path("device/a..b/a.zip"), {{"app.db", "x"}});
    const std::string copy = "copies/app.db";
    EXPECT_THAT(Copy(".*(zip|db)"), ElementsAre(copy, copy)); // listed twice, as it is one level down
}

TEST_F(ExternalDatabasesTest, TargetDirectoryWithTwoDotsIsRefusedInSilence)
{
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a.zip"), {{"app.db", "x"}});
    mSettings.Set(Settings::APP_DATABASE_DIR, mDir.Path("device/../copies"));
    EXPECT_THAT(Copy(".*(zip|db)"), IsEmpty());
    EXPECT_FALSE(mDir.Has("copies"));
}

TEST_F(ExternalDatabasesTest, WhatAnEarlierRunLeftIsCopiedToo)
{
    mDir.Write("copies/temp/old.db", "old");
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a.zip"), {});
    EXPECT_THAT(Copy(".*(zip|db)"), ElementsAre("copies/old.db"));
    EXPECT_EQ(mDir.Read("copies/old.db"), "old");
    EXPECT_FALSE(mDir.Has("copies/temp"));
}

// Drops the rights of root, who may do everything.
class AsNobody {
public:
    AsNobody() { EXPECT_TRUE(!mIsRoot || seteuid(NOBODY) == 0); }
    ~AsNobody() { EXPECT_TRUE(!mIsRoot || seteuid(0) == 0); }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;

private:
    static constexpr uid_t NOBODY = 65534;
    const bool mIsRoot = geteuid() == 0;
};

TEST_F(ExternalDatabasesTest, WorkFolderThatCannotBeRemovedIsToldAndTheFilesAreListed)
{
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a.zip"), {});
    mDir.Write("copies/temp/old.db", "old");
    fs::permissions(mDir.Path(), fs::perms{0755});
    fs::permissions(mDir.Path("copies"), fs::perms{0555});
    {
        const AsNobody nobody;
        EXPECT_THAT(Copy(".*(zip|db)"), ElementsAre("copies/old.db"));
    }
    fs::permissions(mDir.Path("copies"), fs::perms{0755});
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(HasSubstr("Failed to copy file"),
        Line("CopyFile: copy file to folder fail."), Line("UnZipFile: Copy file fail."),
        "FUNc:FileUtil::ForceRemoveDirectory: remove dir failed " + mDir.Path("copies/temp"),
        Line("UnZipFile: remove folder fail.")));
}

TEST_F(ExternalDatabasesTest, ArchiveThatIsGoneByTheTimeIsToldAndGivesNothing)
{
    EXPECT_THAT(ExternalDatabases::UnZipFile(mDir.Path("gone.zip"), mDir.Path("copies")), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre(Line("UnZipFile: file not exist.")));
    mLog.Clear();
    EXPECT_THAT(ExternalDatabases::UnZipFile("", mDir.Path("copies")), IsEmpty());
    EXPECT_THAT(ExternalDatabases::UnZipFile(mDir.Path("gone.zip"), ""), IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    EXPECT_FALSE(mDir.Has("copies"));
}

TEST_F(ExternalDatabasesTest, UnpackedFileThatIsGoneWhenItsTurnComesIsToldAndListed)
{
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a.zip"), {});
    mDir.MakeDir("copies/temp");
    fs::create_symlink(mDir.Path("gone"), mDir.Path("copies/temp/old.db"));
    EXPECT_THAT(Copy(".*(zip|db)"), ElementsAre("copies/old.db"));
    EXPECT_THAT(mLog.Lines(),
        ElementsAre(Line("CopyFile: file old.db not exist."), Line("UnZipFile: Copy file fail.")));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre(Line("CopyFile: file old.db not exist.")));
}

TEST_F(ExternalDatabasesTest, CopyThatCannotBeOpenedIsNamedByItsLastElement)
{
    // The directory of the archive can't be copied, and an existing directory is mistaken for the copy.
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a.zip"), {{"x.db/", ""}});
    mDir.Write("copies/x.db/inside", "");
    EXPECT_THAT(Copy(".*(zip|db)", {"create table made(b)"}), ElementsAre("copies/x.db"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), testing::IsSupersetOf({Line("CreateTable: open db x.db fail."),
        Line("IsCreateDbByFileComplete: create table made fail.")}));
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

TEST_F(ExternalDatabasesTest, DirectoryInAnArchiveFailsToBeCopiedAndIsListedAllTheSame)
{
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a.zip"), {{"x.db/", ""}, {"x.db/y.db", "1"}});
    EXPECT_THAT(Copy(".*(zip|db)"), testing::UnorderedElementsAre("copies/x.db", "copies/y.db"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(Line("UnZipFile: Copy file fail.")));
    EXPECT_FALSE(mDir.Has("copies/x.db"));
}

TEST_F(ExternalDatabasesTest, ListedCopyThatIsNotThereHasNoSqlRunOnIt)
{
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a.zip"), {{"x.db/", ""}});
    Copy(".*(zip|db)", {"create table made(b)"});
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre(Line("CreateTable: file x.db not exist.")));
    EXPECT_FALSE(mDir.Has("copies/x.db"));
}

TEST_F(ExternalDatabasesTest, BrokenArchiveEndsItsUnpackingAndTheNextFileGoesOn)
{
    mDir.Write("device/a.zip", "PK no archive");
    MakeDb("device/b.db");
    EXPECT_THAT(Copy(".*(zip|db)"), ElementsAre("copies/b.db"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), Contains(Line("UnZipFile: unZip file fail.")));
}

TEST_F(ExternalDatabasesTest, ArchiveWithAWrongChecksumGivesNoCopy)
{
    const std::string db = MakeDb("made.db");
    mDir.MakeDir("device");
    WriteDamagedZip(mDir.Path("device/a.zip"), {{"app.db", db}});
    EXPECT_THAT(Copy(".*(zip|db)"), IsEmpty());
    EXPECT_FALSE(mDir.Has("copies/app.db"));
    EXPECT_TRUE(fs::is_empty(mDir.Path("copies/temp")));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(Line("UnZipFile: unZip file fail.")));
}

TEST_F(ExternalDatabasesTest, ArchiveThatLeadsOutWritesNothingOutside)
{
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a.zip"), {{"../../evil.db", "x"}});
    EXPECT_THAT(Copy(".*(zip|db)"), IsEmpty());
    EXPECT_FALSE(mDir.Has("evil.db"));
    EXPECT_FALSE(mDir.Has("copies/evil.db"));
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
