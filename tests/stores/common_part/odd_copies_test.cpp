// Searches and archives that leave something out.
#include "arborist/stores/common_part/external_databases.h"

#include <algorithm>
#include <filesystem>

#include <gmock/gmock.h>

#include "arborist/frame/settings.h"
#include "arborist/stores/common_part/text_limits.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"
#include "tests/support/zip_file.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class OddCopies : public testing::Test {
protected:
    OddCopies() { mSettings.Set(Settings::APP_DATABASE_DIR, mDir.Path("copies")); }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
};

TEST_F(OddCopies, WithoutAFolderOrAPatternNothingIsSearched)
{
    mDir.Write("device/a.db", "");
    EXPECT_THAT(ExternalDatabases::CopyDbFile("", ".*").files, IsEmpty());
    EXPECT_THAT(ExternalDatabases::CopyDbFile(mDir.Path("device"), "").files, IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    EXPECT_FALSE(mDir.Has("copies"));
}

TEST_F(OddCopies, LinksThatLeadOnTooFarAreToldAndTheCopiesAreNotAllThereAre)
{
    // Two chains of folders, each with a link to the next.
    for (const std::string chain : {"a", "b"}) {
        for (int folder = 0; folder < 70; ++folder) {
            const std::string name = "far/" + chain + std::to_string(folder);
            mDir.Write(name + "/" + chain + std::to_string(folder) + ".db", "");
            std::filesystem::create_directory_symlink(
                mDir.Path("far/" + chain + std::to_string(folder + 1)), mDir.Path(name + "/next"));
        }
        mDir.MakeDir("device");
        std::filesystem::create_directory_symlink(mDir.Path("far/" + chain + "0"), mDir.Path("device/" + chain));
    }
    const auto copies = ExternalDatabases::CopyDbFile(mDir.Path("device"), ".*[.]db");
    EXPECT_FALSE(copies.isWhole);
    EXPECT_THAT(copies.files, Contains(mDir.Path("copies/a63.db")));
    EXPECT_FALSE(mDir.Has("copies/a69.db"));
    EXPECT_THAT(mLog.Lines(), ElementsAre("FUNc:CommonPartDbHelper::GetFileList: links lead from one to another, those "
        "behind the first 64 are not searched."));
}

TEST_F(OddCopies, ArchiveIsUnpackedByItsOwnPathWhereNoOtherIsOpen)
{
    WriteZip(mDir.Path("a.zip"), {{"x.db", "content"}});
    EXPECT_THAT(ExternalDatabases::UnZipFile(mDir.Path("a.zip"), mDir.Path("copies")),
        ElementsAre(mDir.Path("copies/x.db")));
    EXPECT_EQ(mDir.Read("copies/x.db"), "content");
}

TEST_F(OddCopies, EachFileOfAnArchiveThatFindsAFolderInItsPlaceIsLogged)
{
    mDir.MakeDir("copies/x.db/taken");
    mDir.MakeDir("copies/y.db/taken");
    WriteZip(mDir.Path("a.zip"), {{"x.db", "1"}, {"y.db", "2"}});
    ExternalDatabases::Unpacking unpacking;
    EXPECT_THAT(ExternalDatabases::UnZipFile(mDir.Path("a.zip"), mDir.Path("copies"), &unpacking), SizeIs(2));
    EXPECT_FALSE(unpacking.isWhole);
    const auto lines = mLog.Lines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "FUNc:CommonPartDbHelper::UnZipFile: Copy file fail."), 2);
}

TEST_F(OddCopies, StatementsWithoutAFileAreLogged)
{
    TextLimits limits;
    EXPECT_FALSE(ExternalDatabases::CreateTable("", "create table t(a)", limits));
    EXPECT_THAT(mLog.Lines(), ElementsAre("FUNc:CommonPartDbHelper::CreateTable: createTable input is null."));
}

} // namespace
