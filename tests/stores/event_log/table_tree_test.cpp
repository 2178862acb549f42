#include "arborist/stores/event_log/table_tree.h"

#include <gtest/gtest.h>

#include "arborist/stores/event_log/log_state.h"
#include "arborist/stores/sql/sql_cursor.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_cases.h"
#include "tests/support/temp_dir.h"

namespace {

using FT::sql::SqlCursor;

constexpr std::size_t PAGE = 512;

class TableTreeTest : public testing::Test {
protected:
    void Write(const std::string& sql) { EventLogBuilder::Run(mPath, "pragma page_size = 512; " + sql); }

    bool IsInOrder(const std::string& table = "t")
    {
        mDatabase.Open(mPath);
        const ReadTransaction transaction(mDatabase.GetHandle());
        return TableTree::IsInOrder(mDatabase.GetHandle(), table);
    }

    // The numbers of the rows that a scan finds, and what else it says.
    std::vector<std::int64_t> Scan()
    {
        std::vector<std::int64_t> keys;
        SqlCursor scan(mDatabase.GetHandle(), "select rowid from t");
        while (scan.Step()) {
            keys.push_back(scan.GetInteger(0));
        }
        EXPECT_EQ(scan.GetError(), "");
        return keys;
    }

    TempDir mDir;
    LogCapture mLog;
    std::string mPath = mDir.Path("a.db");
    FT::sql::SqlDatabase mDatabase;
};

constexpr char MANY_ROWS[] = "create table t(a integer primary key, b); with recursive n(i) as (select 1 union all "
    "select i + 1 from n where i < 3000) insert into t select i * 2, i from n";

TEST_F(TableTreeTest, WholeTablesAreInOrder)
{
    for (const std::string sql : {"create table t(a)", "create table t(a); insert into t values (1)", MANY_ROWS,
             "create table T(a); insert into t(rowid) values (-9223372036854775807), (-1), (0), (9223372036854775807)"}) {
        SCOPED_TRACE(sql);
        mDir.Write("a.db", "");
        Write(sql);
        EXPECT_TRUE(IsInOrder());
    }
    Write("delete from t where a % 7 < 3; delete from t where a between 1000 and 3000; vacuum");
    EXPECT_TRUE(IsInOrder());
}

TEST_F(TableTreeTest, WhatIsNotKnownIsNotSaidToBeInOrder)
{
    Write("create table s(a); create view v as select 1; create table w(a primary key) without rowid; insert into w "
        "values (1); create table long(a); insert into long values (zeroblob(1000))");
    EXPECT_FALSE(IsInOrder("missing"));
    EXPECT_FALSE(IsInOrder("v"));
    EXPECT_FALSE(IsInOrder("w"));
    EXPECT_FALSE(IsInOrder("long"));
    EXPECT_TRUE(IsInOrder("s"));
    EventLogBuilder::Run(mPath, "pragma journal_mode = wal");
    EXPECT_FALSE(IsInOrder("s"));
}

// Each change of a guide or a key is found that makes a search differ from a scan.
TEST_F(TableTreeTest, InATreeInOrderSearchesFindWhatAScanFinds)
{
    Write(MANY_ROWS);
    const std::string whole = mDir.Read("a.db");
    RandomCases cases(300);
    int inOrder = 0;
    for (int number = 0; number < cases.GetCount() && !HasFailure(); ++number) {
        SCOPED_TRACE(testing::Message() << "seed " << cases.GetSeed() << ", case " << number);
        std::string file = whole;
        const std::size_t page = 1 + cases.Below(file.size() / PAGE - 1);
        const bool isOfHead = cases.OnceIn(3);
        file[page * PAGE + cases.Below(isOfHead ? 12 : PAGE)] = static_cast<char>(cases.Below(256));
        mDir.Write("a.db", file);
        if (!IsInOrder()) {
            continue;
        }
        ++inOrder;
        const std::vector<std::int64_t> keys = Scan();
        SqlCursor search(mDatabase.GetHandle(), "select a from t where rowid = ?1");
        std::size_t next = 0;
        for (std::int64_t key = 0; key <= 6001; ++key) {
            next += next < keys.size() && keys[next] < key ? 1 : 0;
            search.Restart(key);
            ASSERT_EQ(search.Step(), next < keys.size() && keys[next] == key) << key;
            ASSERT_EQ(search.GetError(), "") << key;
        }
    }
    EXPECT_GT(inOrder, cases.GetCount() / 4) << "values of rows don't matter";
    EXPECT_LT(inOrder, cases.GetCount());
}

// A tree of three levels: the root is the second page.
class ChangedTree : public TableTreeTest {
protected:
    ChangedTree()
    {
        Write(std::string(MANY_ROWS) + "; insert into t select a + 6000, b from t");
        mFile = mDir.Read("a.db");
        EXPECT_EQ(mFile[ROOT], INNER);
        EXPECT_EQ(mFile[mInner = Child(ROOT, 0)], INNER);
        EXPECT_EQ(mFile[mLeaf = Child(mInner, 0)], 13);
    }

    std::size_t Byte(std::size_t place) const { return static_cast<unsigned char>(mFile[place]); }
    std::size_t Cell(std::size_t page, std::size_t cell) const
    {
        const std::size_t list = page + (mFile[page] == INNER ? 12 : 8) + 2 * cell;
        return page + Byte(list) * 256 + Byte(list + 1);
    }
    std::size_t Child(std::size_t page, std::size_t cell) const
    {
        const std::size_t place = Cell(page, cell);
        return (Byte(place + 2) * 256 + Byte(place + 3) - 1) * PAGE;
    }

    bool IsInOrderWith(std::size_t place, const std::string& bytes)
    {
        std::string file = mFile;
        mDir.Write("a.db", file.replace(place, bytes.size(), bytes));
        return IsInOrder();
    }

    static constexpr char INNER = 5;
    static constexpr std::size_t ROOT = PAGE;
    std::string mFile;
    std::size_t mInner = 0;
    std::size_t mLeaf = 0;
};

TEST_F(ChangedTree, PageWithoutCellsIsNotInOrder)
{
    EXPECT_FALSE(IsInOrderWith(mInner + 3, std::string(2, '\0')));
    EXPECT_FALSE(IsInOrderWith(mLeaf + 3, std::string(2, '\0')));
}

TEST_F(ChangedTree, CellOutsideOfItsPageIsNotInOrder)
{
    EXPECT_FALSE(IsInOrderWith(mInner + 12, std::string(2, '\0'))) << "in the head";
    EXPECT_FALSE(IsInOrderWith(mInner + 12, "\x01\xFE")) << "too near to the end";
    // The last that fits, whose guide then goes on behind the page.
    const std::string child = mFile.substr(Cell(mInner, 0), 4);
    mFile.replace(mInner + PAGE - 4, 4, child);
    EXPECT_FALSE(IsInOrderWith(mInner + 12, "\x01\xFC"));
}

TEST_F(ChangedTree, GuideBeyondThatOfThePageAboveIsNotInOrder)
{
    EXPECT_FALSE(IsInOrderWith(Cell(mInner, 1) + 4, "\xFF\x7F"));
}

TEST_F(ChangedTree, LeavesAtDifferentDepthsAreNotInOrder)
{
    EXPECT_FALSE(IsInOrderWith(Cell(ROOT, 0), mFile.substr(Cell(mInner, 0), 4)));
}

TEST_F(ChangedTree, LengthInMoreBytesThanItNeedsIsNotInOrder)
{
    EXPECT_FALSE(IsInOrderWith(Cell(mLeaf, 0), "\x80\x80\x80\x05"));
}

TEST_F(TableTreeTest, EachGuideCounts)
{
    Write(MANY_ROWS);
    const std::string whole = mDir.Read("a.db");
    int guides = 0;
    for (std::size_t page = PAGE; page < whole.size(); page += PAGE) {
        const auto byte = [&whole](std::size_t place) { return static_cast<unsigned char>(whole[place]); };
        for (std::size_t cell = 0; whole[page] == 5 && cell < byte(page + 4); ++cell) {
            const std::size_t place = page + byte(page + 12 + 2 * cell) * 256U + byte(page + 13 + 2 * cell) + 4;
            std::string file = whole;
            file[place + (byte(place) >= 0x80 ? 1 : 0)] ^= 2; // a guide of two bytes at most: one row goes astray
            mDir.Write("a.db", file);
            EXPECT_FALSE(IsInOrder()) << page / PAGE << " " << cell;
            ++guides;
        }
    }
    EXPECT_GT(guides, 50);
}

} // namespace
