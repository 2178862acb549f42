#include "arborist/stores/event_log/file_check.h"

#include <gtest/gtest.h>

#include "arborist/stores/event_log/log_state.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace {

using FileCheck::Result;
using State = Result::State;

constexpr std::size_t PAGE = 512;

class FileCheckTest : public testing::Test {
protected:
    // A table of three levels, with an index.
    FileCheckTest()
    {
        EventLogBuilder::Run(mPath, "pragma page_size = 512; create table t(a integer primary key, b not null, c text);"
            "with recursive n(i) as (select 1 union all select i + 1 from n where i < 3000) insert into t "
            "select i * 2, i, i from n; create index i on t(b)");
        mWhole = mDir.Read("a.db");
    }

    Result OfTable(const std::string& table = "t")
    {
        mDatabase.Open(mPath);
        const ReadTransaction transaction(mDatabase.GetHandle());
        return FileCheck::OfTable(mDatabase.GetHandle(), table);
    }

    Result OfFile()
    {
        mDatabase.Open(mPath);
        return FileCheck::OfFile(mDatabase.GetHandle());
    }

    // The first page of this kind behind the root of the table.
    std::size_t PageOfKind(char kind) const
    {
        std::size_t page = 2 * PAGE;
        while (mWhole[page] != kind) {
            page += PAGE;
        }
        return page;
    }

    void Change(std::size_t place, const std::string& bytes)
    {
        std::string file = mWhole;
        mDir.Write("a.db", file.replace(place, bytes.size(), bytes));
    }

    TempDir mDir;
    LogCapture mLog;
    std::string mPath = mDir.Path("a.db");
    std::string mWhole;
    FT::sql::SqlDatabase mDatabase;
};

constexpr char LEAF = 13;
constexpr char INNER_PAGE = 5;
constexpr char LEAF_OF_INDEX = 10;

TEST_F(FileCheckTest, WholeFileIsSound)
{
    EXPECT_EQ(OfTable().state, State::SOUND);
    EXPECT_EQ(OfFile().state, State::SOUND);
    EXPECT_EQ(OfFile().message, "");
}

TEST_F(FileCheckTest, PageThatCannotBeReadIsUnreadable)
{
    Change(PageOfKind(LEAF), std::string(PAGE, '\xFF'));
    EXPECT_EQ(OfTable().state, State::UNREADABLE_PAGES);
    EXPECT_NE(OfTable().message, "");
    EXPECT_EQ(OfFile().state, State::DISORDER) << "an index may have rows that the table lacks";
}

TEST_F(FileCheckTest, GuideThatLeadsElsewhereIsDisorder)
{
    const std::size_t page = PageOfKind(INNER_PAGE);
    const auto byte = [this](std::size_t place) { return static_cast<unsigned char>(mWhole[place]); };
    const std::size_t guide = page + byte(page + 12) * 256U + byte(page + 13) + 4;
    Change(guide, std::string(1, static_cast<char>(byte(guide) - 1)));
    EXPECT_EQ(OfTable().state, State::DISORDER);
    EXPECT_NE(OfTable().message, "");
}

TEST_F(FileCheckTest, RowsInWrongOrderAreDisorder)
{
    const std::size_t page = PageOfKind(LEAF);
    Change(page + 8, mWhole.substr(page + 10, 2) + mWhole.substr(page + 8, 2));
    EXPECT_EQ(OfTable().state, State::DISORDER);
}

TEST_F(FileCheckTest, DamageOfAnIndexIsNoneOfItsTable)
{
    Change(PageOfKind(LEAF_OF_INDEX), std::string(PAGE, '\0'));
    EXPECT_EQ(OfTable().state, State::SOUND);
    EXPECT_EQ(OfFile().state, State::DISORDER);
}

TEST_F(FileCheckTest, OddValuesAreNoDamage)
{
    EventLogBuilder::Run(mPath, "pragma writable_schema = 1; update sqlite_master set sql = replace(sql, 'c text', "
        "'c text not null check(c <> 7)') where name = 't'; update t set c = null where a = 10");
    EXPECT_EQ(OfTable().state, State::SOUND);
    EXPECT_EQ(OfFile().state, State::SOUND) << OfFile().message;
}

// Behind the hundredth message SQLite looks at nothing more.
TEST_F(FileCheckTest, SoManyOddValuesThatDamageMayBeBehindThemAreDisorder)
{
    const auto stateWithOdd = [this](const std::string& rows) {
        Change(0, "");
        EventLogBuilder::Run(mPath, "update t set c = null where " + rows + "; pragma writable_schema = 1; "
            "update sqlite_master set sql = replace(sql, 'c text', 'c text not null') where name = 't'");
        return OfFile().state;
    };
    EXPECT_EQ(stateWithOdd("a <= 198"), State::SOUND);
    EXPECT_EQ(stateWithOdd("a <= 200"), State::DISORDER);
}

TEST_F(FileCheckTest, OddValuesAreNoDamageOfATableThatSQLiteChecks)
{
    EventLogBuilder::Run(mPath, "pragma writable_schema = 1; update sqlite_master set sql = replace(sql, 'c text', "
        "'c text not null') where name = 't'; update t set c = null; pragma journal_mode = wal");
    EXPECT_EQ(OfTable().state, State::SOUND);
}

TEST_F(FileCheckTest, FileThatIsNoDatabaseIsDisorder)
{
    mDir.Write("a.db", std::string(2000, 'x'));
    EXPECT_EQ(OfFile().state, State::DISORDER);
    EXPECT_EQ(OfTable().state, State::DISORDER);
}

TEST_F(FileCheckTest, LogInWalModeIsCheckedToo)
{
    EventLogBuilder::Run(mPath, "pragma journal_mode = wal");
    EXPECT_EQ(OfTable().state, State::SOUND);
}

TEST_F(FileCheckTest, TheGreaterDamageCounts)
{
    const Result sound;
    const Result pages{State::UNREADABLE_PAGES, "pages"};
    const Result disorder{State::DISORDER, "order"};
    EXPECT_EQ(FileCheck::WorseOf(sound, pages).message, "pages");
    EXPECT_EQ(FileCheck::WorseOf(disorder, pages).message, "order");
    EXPECT_EQ(FileCheck::WorseOf(pages, {State::UNREADABLE_PAGES, "others"}).message, "pages");
}

} // namespace
