#include "arborist/stores/sql/temporary_files.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sqlite3.h>

#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_operator.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace FT::sql {
namespace {

using testing::EndsWith;
using testing::IsEmpty;

// Numbers with a text of 1,000 letters each, in another order: 20 MB, which SQLite sorts in files.
constexpr char SORT[] = "with recursive n(i) as (select 1 union all select i + 1 from n where i < 20000) "
    "select count(*) from (select i, hex(zeroblob(500)) as t from n order by i % 7, t, i limit -1 offset 1)";
constexpr std::uint64_t MEBIBYTE = 1024 * 1024;

class TemporaryFilesTest : public testing::Test {
protected:
    void Open(SqlAccess access, std::uint64_t mostBytes)
    {
        ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
        SqlLimits limits;
        limits.temporaryBytes = mostBytes;
        mDatabase.Restrict(access, limits);
    }

    bool Run(const std::string& sql) { return SqlOperator(mDatabase.GetHandle()).ExecuteNoCallback(sql); }

    // The files of SQLite that the process knows, in the order of their default.
    static int VfsCount()
    {
        int count = 0;
        for (const sqlite3_vfs* vfs = sqlite3_vfs_find(nullptr); vfs != nullptr; vfs = vfs->pNext) {
            ++count;
        }
        return count;
    }

    TempDir mDir;
    LogCapture mLog;
    SqlDatabase mDatabase;
};

TEST_F(TemporaryFilesTest, SortThatNeedsMoreThanTheLimitFailsAndLeavesTheConnectionUsable)
{
    Open(SqlAccess::OWN_FILE, MEBIBYTE);
    for (int time = 0; time < 2; ++time) {
        EXPECT_FALSE(Run(SORT));
        EXPECT_THAT(mLog.Lines().back(), EndsWith("database or disk is full"));
        EXPECT_TRUE(Run("create table if not exists t (v); insert into t values (1)"));
    }
}

TEST_F(TemporaryFilesTest, EachSortHasTheWholeLimit)
{
    Open(SqlAccess::OWN_FILE, 96 * MEBIBYTE);
    for (int time = 0; time < 4; ++time) {
        EXPECT_TRUE(Run(SORT));
    }
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(TemporaryFilesTest, LimitThatIsReplacedHoldsForTheNextStatement)
{
    Open(SqlAccess::OWN_FILE, MEBIBYTE);
    EXPECT_FALSE(Run(SORT));
    mDatabase.Limit({});
    EXPECT_TRUE(Run(SORT));
}

TEST_F(TemporaryFilesTest, WithoutARestrictionThereIsNoLimit)
{
    Open(SqlAccess::OWN_FILE, MEBIBYTE);
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    EXPECT_TRUE(Run(SORT));
}

TEST_F(TemporaryFilesTest, ForeignTextCannotSortInMemoryInstead)
{
    Open(SqlAccess::OWN_FILE, MEBIBYTE);
    EXPECT_FALSE(Run("PRAGMA temp_store = MEMORY"));
    EXPECT_THAT(mLog.Lines().back(), EndsWith("not authorized"));
}

TEST_F(TemporaryFilesTest, VacuumFitsIntoTheLimitOrFails)
{
    Open(SqlAccess::OWN_FILE, 4 * MEBIBYTE);
    ASSERT_TRUE(Run("create table t as with recursive n(i) as (select 1 union all select i + 1 from n where i < 2000) "
        "select i, hex(zeroblob(500)) as v from n"));
    EXPECT_TRUE(Run("vacuum"));
    SqlLimits limits;
    limits.temporaryBytes = MEBIBYTE;
    mDatabase.Limit(limits);
    EXPECT_FALSE(Run("vacuum"));
    EXPECT_THAT(mLog.Lines().back(), EndsWith("database or disk is full"));
    EXPECT_TRUE(Run("insert into t values (1, 'x')"));
}

TEST_F(TemporaryFilesTest, OnlyOpenConnectionsAreKnownToTheProcess)
{
    const int before = VfsCount();
    const sqlite3_vfs* const usual = sqlite3_vfs_find(nullptr);
    SqlDatabase other;
    ASSERT_TRUE(mDatabase.Open(mDir.Path("a.db")));
    ASSERT_TRUE(other.Open(mDir.Path("a.db")));
    EXPECT_EQ(VfsCount(), before + 2);
    EXPECT_EQ(sqlite3_vfs_find(nullptr), usual);
    ASSERT_TRUE(mDatabase.Open(mDir.Path("b.db")));
    mDatabase.Close();
    other.Close();
    EXPECT_EQ(VfsCount(), before);
}

// The default file system of SQLite is the host's to choose.
TEST_F(TemporaryFilesTest, FileSystemOfTheFirstVersionIsEnough)
{
    sqlite3_vfs* const usual = sqlite3_vfs_find(nullptr);
    sqlite3_vfs first = *usual;
    first.iVersion = 1;
    first.zName = "first";
    sqlite3_vfs_register(&first, 1);
    Open(SqlAccess::OWN_FILE, MEBIBYTE);
    EXPECT_TRUE(Run("create table t (v)"));
    EXPECT_FALSE(Run(SORT));
    mDatabase.Close();
    sqlite3_vfs_unregister(&first);
    sqlite3_vfs_register(usual, 1);
}

TEST_F(TemporaryFilesTest, WithoutAnyFileSystemNothingIsOpened)
{
    std::vector<sqlite3_vfs*> known;
    while (sqlite3_vfs* const next = sqlite3_vfs_find(nullptr)) {
        known.push_back(next);
        sqlite3_vfs_unregister(next);
    }
    const std::uint64_t most = 0;
    EXPECT_EQ(TemporaryFiles(most).GetName(), nullptr);
    EXPECT_FALSE(mDatabase.Open(mDir.Path("a.db")));
    mDatabase.Close();
    for (sqlite3_vfs* const vfs : known) {
        sqlite3_vfs_register(vfs, vfs == known.front() ? 1 : 0);
    }
    EXPECT_THAT(mLog.Lines().back(), testing::HasSubstr("no such vfs"));
    EXPECT_TRUE(mDatabase.Open(mDir.Path("a.db")));
}

TEST_F(TemporaryFilesTest, BytesThatAreCutOffMayBeWrittenAgain)
{
    const std::uint64_t most = 1000;
    const TemporaryFiles files(most);
    sqlite3_vfs* const own = sqlite3_vfs_find(files.GetName());
    ASSERT_NE(own, nullptr);
    std::vector<std::uint64_t> memory(static_cast<std::size_t>(own->szOsFile) / sizeof(std::uint64_t) + 1);
    auto* const file = reinterpret_cast<sqlite3_file*>(memory.data());
    constexpr int FLAGS = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_EXCLUSIVE |
        SQLITE_OPEN_DELETEONCLOSE | SQLITE_OPEN_TEMP_DB;
    ASSERT_EQ(own->xOpen(own, nullptr, file, FLAGS, nullptr), SQLITE_OK);
    const std::string bytes(1000, 'x');
    EXPECT_EQ(file->pMethods->xWrite(file, bytes.data(), 1000, 0), SQLITE_OK);
    EXPECT_EQ(file->pMethods->xWrite(file, bytes.data(), 1, 1000), SQLITE_FULL);
    EXPECT_EQ(file->pMethods->xTruncate(file, 400), SQLITE_OK);
    EXPECT_EQ(file->pMethods->xWrite(file, bytes.data(), 601, 400), SQLITE_FULL);
    EXPECT_EQ(file->pMethods->xWrite(file, bytes.data(), 600, 400), SQLITE_OK);
    EXPECT_EQ(file->pMethods->xClose(file), SQLITE_OK);
}

TEST_F(TemporaryFilesTest, FileThatIsNotOpenedBelowIsNotOpen)
{
    sqlite3_vfs* const usual = sqlite3_vfs_find(nullptr);
    sqlite3_vfs none = *usual;
    none.zName = "none";
    none.xOpen = [](sqlite3_vfs*, const char*, sqlite3_file* file, int, int*) {
        file->pMethods = nullptr;
        return SQLITE_CANTOPEN;
    };
    sqlite3_vfs_register(&none, 1);
    {
        const std::uint64_t most = 1000;
        const TemporaryFiles files(most);
        sqlite3_vfs* const own = sqlite3_vfs_find(files.GetName());
        std::vector<std::uint64_t> memory(static_cast<std::size_t>(own->szOsFile) / sizeof(std::uint64_t) + 1, 1);
        auto* const file = reinterpret_cast<sqlite3_file*>(memory.data());
        EXPECT_EQ(own->xOpen(own, nullptr, file, SQLITE_OPEN_TEMP_DB, nullptr), SQLITE_CANTOPEN);
        EXPECT_EQ(file->pMethods, nullptr) << "so that SQLite doesn't close it";
    }
    sqlite3_vfs_unregister(&none);
    sqlite3_vfs_register(usual, 1);
}

TEST_F(TemporaryFilesTest, CallsOfTheFileSystemReachTheOneBelow)
{
    const std::uint64_t most = 0;
    const TemporaryFiles files(most);
    sqlite3_vfs* const own = sqlite3_vfs_find(files.GetName());
    ASSERT_NE(own, nullptr);
    int isThere = 1;
    EXPECT_EQ(own->xAccess(own, mDir.Path("none").c_str(), SQLITE_ACCESS_EXISTS, &isThere), SQLITE_OK);
    EXPECT_EQ(isThere, 0);
    double day = 0;
    sqlite3_int64 milliseconds = 0;
    EXPECT_EQ(own->xCurrentTime(own, &day), SQLITE_OK);
    EXPECT_EQ(own->xCurrentTimeInt64(own, &milliseconds), SQLITE_OK);
    EXPECT_NEAR(day * 86400000, static_cast<double>(milliseconds), 60000);
    char random[8] = {};
    EXPECT_EQ(own->xRandomness(own, sizeof(random), random), 8);
    EXPECT_EQ(own->xSleep(own, 0), 0);
    char words[200] = {};
    EXPECT_EQ(own->xDlOpen(own, mDir.Path("none.so").c_str()), nullptr);
    own->xDlError(own, sizeof(words), words);
    EXPECT_THAT(words, testing::HasSubstr("none.so"));
    void* const library = own->xDlOpen(own, "libsqlite3.so.0");
    ASSERT_NE(library, nullptr);
    EXPECT_NE(own->xDlSym(own, library, "sqlite3_libversion"), nullptr);
    own->xDlClose(own, library);
    EXPECT_EQ(own->xGetLastError(own, sizeof(words), words), sqlite3_vfs_find(nullptr)->xGetLastError(
        sqlite3_vfs_find(nullptr), sizeof(words), words));
}

} // namespace
} // namespace FT::sql
