// Archives that a search lists again: how often they are unpacked, and what stands in the end.
#include <cerrno>
#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/stores/common_part/external_databases.h"
#include "tests/reliability/failing_utility_call.h"
#include "tests/support/settings_guard.h"
#include "tests/support/zip_file.h"

namespace {

using FailingFiles::Call;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char COPY_FAILED[] = "FUNc:CommonPartDbHelper::UnZipFile: Copy file fail.";

class RepeatedArchives : public FailingUtilityCall {
protected:
    RepeatedArchives() { mSettings.Set(Settings::APP_DATABASE_DIR, mDir.Path("copies")); }

    // Copies what matches, counts the files that are unpacked on the way, each moved to its place once, and says in mLast
    // which candidate was the last.
    ExternalDatabases::Copies Copy(const std::string& pattern,
        std::uint64_t mostUnpackedAgain = ExternalDatabases::MOST_UNPACKED_AGAIN)
    {
        mLast = DatabaseSearch(pattern).Find(mDir.Path("device"), true).back();
        FailingFiles::Watch(Call::RENAME, EIO);
        CallCounter::Start(0);
        auto copies = ExternalDatabases::CopyDbFile(
            mDir.Path("device"), pattern, DatabaseSearch::MOST_ENTRIES, mostUnpackedAgain);
        mUnpacked = CallCounter::Stop();
        return copies;
    }

    std::string WriteArchive(const std::string& path, const ZipEntries& entries)
    {
        mDir.Write(path, "");
        return WriteZip(mDir.Path(path), entries);
    }

    SettingsGuard mSettings;
    std::string mLast;
    std::uint64_t mUnpacked = 0;
};

TEST_F(RepeatedArchives, ArchiveWhoseFilesStandIsListedAgainAndNotUnpackedAgain)
{
    WriteArchive("device/1/2/3/a.zip", {{"x.db", "x"}, {"readme", ""}});
    const auto copies = Copy(".*(zip|db)");
    EXPECT_THAT(copies.files, testing::AllOf(SizeIs(8), Each(mDir.Path("copies/x.db"))));
    EXPECT_TRUE(copies.isWhole);
    EXPECT_EQ(mUnpacked, 2U);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    EXPECT_EQ(mDir.Read("copies/x.db"), "x");
}

TEST_F(RepeatedArchives, ArchivesThatReplaceEachOthersFilesAreUnpackedEachTime)
{
    WriteArchive("device/1/2/a.zip", {{"x.db", "a"}});
    WriteArchive("device/1/2/b.zip", {{"x.db", "b"}});
    const auto copies = Copy(".*(zip|db)");
    EXPECT_THAT(copies.files, SizeIs(8));
    EXPECT_TRUE(copies.isWhole);
    EXPECT_EQ(mUnpacked, 8U);
    EXPECT_EQ(mDir.Read("copies/x.db"), mLast.ends_with("a.zip") ? "a" : "b");
}

TEST_F(RepeatedArchives, FileAndArchiveThatReplaceEachOtherTakeTurns)
{
    WriteArchive("device/1/2/a.zip", {{"x.db", "archive"}});
    mDir.Write("device/1/2/x.db", "file");
    EXPECT_THAT(Copy(".*(zip|db)").files, SizeIs(8));
    EXPECT_EQ(mUnpacked, 4U);
    EXPECT_EQ(mDir.Read("copies/x.db"), mLast.ends_with("zip") ? "archive" : "file");
}

TEST_F(RepeatedArchives, FileThatAnArchiveRemovesAsAJournalTakesTurnsWithIt)
{
    WriteArchive("device/1/2/a.zip", {{"x.db", "archive"}});
    mDir.Write("device/1/2/x.db-wal", "file");
    EXPECT_THAT(Copy(".*(zip|db|wal)").files, SizeIs(8));
    EXPECT_EQ(mUnpacked, 4U);
    EXPECT_EQ(mDir.Has("copies/x.db-wal"), mLast.ends_with("wal"));
}

TEST_F(RepeatedArchives, ArchiveThatLogsALineIsUnpackedEachTime)
{
    WriteArchive("device/1/2/a.zip", {{"folder/", ""}, {"folder/x.db", "x"}});
    EXPECT_THAT(Copy(".*(zip|db)").files, SizeIs(4));
    EXPECT_EQ(mUnpacked, 4U);
    EXPECT_THAT(mLog.Lines(), ElementsAre(COPY_FAILED, COPY_FAILED, COPY_FAILED, COPY_FAILED));
}

TEST_F(RepeatedArchives, WhatAnEarlierRunLeftIsListedOnce)
{
    mDir.Write("copies/temp/old.db", "");
    WriteArchive("device/1/a.zip", {});
    EXPECT_THAT(Copy(".*(zip|db)").files, ElementsAre(mDir.Path("copies/old.db")));
}

TEST_F(RepeatedArchives, ArchiveThatItsOwnMemberReplacesIsUnpackedAgain)
{
    mSettings.Set(Settings::APP_DATABASE_DIR, mDir.Path("device/copies"));
    const std::string inner = mDir.Read(WriteArchive("a.zip", {{"y.db", "y"}}));
    WriteArchive("device/copies/a.zip", {{"a.zip", inner}});
    EXPECT_THAT(Copy(".*(zip|db)").files,
        ElementsAre(mDir.Path("device/copies/a.zip"), mDir.Path("device/copies/y.db")));
}

// Each archive takes 80 KiB to unpack here: 64 for itself and 16 for its member.
TEST_F(RepeatedArchives, ArchivesThatAreUnpackedTooOftenAreNotListedAgainWithALine)
{
    WriteArchive("device/1/2/3/4/5/6/a.zip", {{"x.db", "a"}});
    WriteArchive("device/1/2/3/4/5/6/b.zip", {{"x.db", "b"}});
    const auto copies = Copy(".*(zip|db)", 400 * 1024);
    EXPECT_EQ(mUnpacked, 2U + 6U) << "two archives for the first time; their 200 or so bytes give room for one more";
    EXPECT_THAT(copies.files, SizeIs(8 + 60)) << "the one that was unpacked last stands and is listed all 64 times";
    EXPECT_FALSE(copies.isWhole);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
        ElementsAre("FUNc:CommonPartDbHelper::CopyDbFile: files are listed 68 times, repetitions end here."));
}

TEST_F(RepeatedArchives, ArchiveThatFailsEachTimeUsesUpTheRoomByWhatItUnpacked)
{
    mDir.Write("device/1/2/3/a.zip", "");
    WriteDamagedZip(mDir.Path("device/1/2/3/a.zip"), {{"x.db", std::string(100'000, 'x')}, {"y.db", "y"}});
    const auto copies = Copy(".*(zip|db)", 150'000);
    EXPECT_THAT(copies.files, IsEmpty());
    EXPECT_FALSE(copies.isWhole);
    EXPECT_EQ(mUnpacked, 2U);
}

} // namespace
