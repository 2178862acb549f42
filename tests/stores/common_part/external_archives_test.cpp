#include "arborist/stores/common_part/external_databases.h"

#include <filesystem>

#include <unistd.h>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/stores/common_part/external_databases_fixture.h"
#include "tests/support/database_rows.h"
#include "tests/support/zip_file.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

using ExternalArchivesTest = ExternalDatabasesFixture;

TEST_F(ExternalArchivesTest, ArchiveIsUnpackedAndItsMatchingFilesAreListed)
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

TEST_F(ExternalArchivesTest, UnpackedNamesMeetThePatternWithItsCapitals)
{
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/App.zip"), {{"App.db", "x"}, {"app.db", "y"}});
    EXPECT_THAT(Copy(".*App\\.(zip|db)"), ElementsAre("copies/App.db"));
}

TEST_F(ExternalArchivesTest, PlainFileInADirectoryOfThatNamePassesForAnArchive)
{
    MakeDb("device/myZIPs/a.db");
    EXPECT_THAT(Copy(".*\\.db"), IsEmpty());
    const std::string line = Line("UnZipFile: unZip file fail.");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(line, line));
}

TEST_F(ExternalArchivesTest, NameWithTwoDotsIsRefusedInSilence)
{
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a..zip"), {{"app.db", "x"}});
    EXPECT_THAT(Copy(".*(zip|db)"), IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    EXPECT_FALSE(mDir.Has("copies"));
}

TEST_F(ExternalArchivesTest, FolderWithTwoDotsInItsNameIsNoReasonToRefuseAnArchive)
{
    mDir.MakeDir("device/a..b");
    WriteZip(mDir.Path("device/a..b/a.zip"), {{"app.db", "x"}});
    const std::string copy = "copies/app.db";
    EXPECT_THAT(Copy(".*(zip|db)"), ElementsAre(copy, copy)); // listed twice, as it is one level down
}

TEST_F(ExternalArchivesTest, TargetDirectoryWithTwoDotsIsRefusedInSilence)
{
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a.zip"), {{"app.db", "x"}});
    mSettings.Set(Settings::APP_DATABASE_DIR, mDir.Path("device/../copies"));
    EXPECT_THAT(Copy(".*(zip|db)"), IsEmpty());
    EXPECT_FALSE(mDir.Has("copies"));
}

TEST_F(ExternalArchivesTest, WhatAnEarlierRunLeftIsCopiedToo)
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

TEST_F(ExternalArchivesTest, WorkFolderThatCannotBeRemovedIsToldAndTheFilesAreListed)
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

TEST_F(ExternalArchivesTest, ArchiveThatIsGoneByTheTimeIsToldAndGivesNothing)
{
    EXPECT_THAT(ExternalDatabases::UnZipFile(mDir.Path("gone.zip"), mDir.Path("copies")), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre(Line("UnZipFile: file not exist.")));
    mLog.Clear();
    EXPECT_THAT(ExternalDatabases::UnZipFile("", mDir.Path("copies")), IsEmpty());
    EXPECT_THAT(ExternalDatabases::UnZipFile(mDir.Path("gone.zip"), ""), IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    EXPECT_FALSE(mDir.Has("copies"));
}

TEST_F(ExternalArchivesTest, UnpackedFileThatIsGoneWhenItsTurnComesIsToldAndListed)
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

TEST_F(ExternalArchivesTest, CopyThatCannotBeOpenedIsNamedByItsLastElement)
{
    // The directory of the archive can't be copied, and an existing directory is mistaken for the copy.
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a.zip"), {{"x.db/", ""}});
    mDir.Write("copies/x.db/inside", "");
    EXPECT_THAT(Copy(".*(zip|db)", {"create table made(b)"}), ElementsAre("copies/x.db"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), testing::IsSupersetOf({Line("CreateTable: open db x.db fail."),
        Line("IsCreateDbByFileComplete: create table made fail.")}));
}

TEST_F(ExternalArchivesTest, DirectoryInAnArchiveFailsToBeCopiedAndIsListedAllTheSame)
{
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a.zip"), {{"x.db/", ""}, {"x.db/y.db", "1"}});
    EXPECT_THAT(Copy(".*(zip|db)"), testing::UnorderedElementsAre("copies/x.db", "copies/y.db"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(Line("UnZipFile: Copy file fail.")));
    EXPECT_FALSE(mDir.Has("copies/x.db"));
}

TEST_F(ExternalArchivesTest, ListedCopyThatIsNotThereHasNoSqlRunOnIt)
{
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a.zip"), {{"x.db/", ""}});
    Copy(".*(zip|db)", {"create table made(b)"});
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre(Line("CreateTable: file x.db not exist.")));
    EXPECT_FALSE(mDir.Has("copies/x.db"));
}

TEST_F(ExternalArchivesTest, BrokenArchiveEndsItsUnpackingAndTheNextFileGoesOn)
{
    mDir.Write("device/a.zip", "PK no archive");
    MakeDb("device/b.db");
    EXPECT_THAT(Copy(".*(zip|db)"), ElementsAre("copies/b.db"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), Contains(Line("UnZipFile: unZip file fail.")));
}

TEST_F(ExternalArchivesTest, ArchiveWithAWrongChecksumGivesNoCopy)
{
    const std::string db = MakeDb("made.db");
    mDir.MakeDir("device");
    WriteDamagedZip(mDir.Path("device/a.zip"), {{"app.db", db}});
    EXPECT_THAT(Copy(".*(zip|db)"), IsEmpty());
    EXPECT_FALSE(mDir.Has("copies/app.db"));
    EXPECT_TRUE(fs::is_empty(mDir.Path("copies/temp")));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(Line("UnZipFile: unZip file fail.")));
}

TEST_F(ExternalArchivesTest, ArchiveThatLeadsOutWritesNothingOutside)
{
    mDir.MakeDir("device");
    WriteZip(mDir.Path("device/a.zip"), {{"../../evil.db", "x"}});
    EXPECT_THAT(Copy(".*(zip|db)"), IsEmpty());
    EXPECT_FALSE(mDir.Has("evil.db"));
    EXPECT_FALSE(mDir.Has("copies/evil.db"));
}

} // namespace
