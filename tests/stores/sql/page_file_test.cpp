#include "arborist/stores/sql/page_file.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "arborist/stores/sql/sql_cursor.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace {

using FT::sql::PageFile;
using FT::sql::SqlCursor;

class PageFileTest : public testing::Test {
protected:
    void Open(const std::string& sql)
    {
        EventLogBuilder::Run(mPath, sql);
        ASSERT_TRUE(mDatabase.Open(mPath));
        SqlCursor(mDatabase.GetHandle(), "BEGIN").Step();
        SqlCursor(mDatabase.GetHandle(), "select count(*) from sqlite_master").Step();
    }

    TempDir mDir;
    LogCapture mLog;
    std::string mPath = mDir.Path("a.db");
    FT::sql::SqlDatabase mDatabase;
};

TEST_F(PageFileTest, PagesAreThoseOfTheFile)
{
    Open("pragma page_size = 1024; create table t(a); insert into t values (1)");
    const PageFile file(mDatabase.GetHandle());
    ASSERT_EQ(file.GetUsableSize(), 1024U);
    PageFile::Page page;
    ASSERT_TRUE(file.Read(1, page));
    EXPECT_EQ(std::string(page.begin(), page.begin() + 15), "SQLite format 3");
    ASSERT_TRUE(file.Read(2, page));
    EXPECT_EQ(page[0], 13) << "a leaf of a table";
    EXPECT_EQ(page.size(), 1024U + PageFile::PADDING);
    EXPECT_FALSE(file.Read(0, page));
    EXPECT_FALSE(file.Read(3, page));
}

TEST_F(PageFileTest, LargestPagesAreRead)
{
    Open("pragma page_size = 65536; create table t(a)");
    const PageFile file(mDatabase.GetHandle());
    PageFile::Page page;
    EXPECT_EQ(file.GetUsableSize(), 65536U);
    EXPECT_TRUE(file.Read(2, page));
}

// The file may be longer than the database in it: SQLite doesn't read the rest.
TEST_F(PageFileTest, BytesBehindTheDatabaseAreNoPages)
{
    EventLogBuilder::Run(mPath, "pragma page_size = 1024; create table t(a)");
    mDir.Write("a.db", mDir.Read("a.db") + std::string(1024, '\r'));
    Open("select 1");
    PageFile::Page page;
    EXPECT_FALSE(PageFile(mDatabase.GetHandle()).Read(3, page));
}

TEST_F(PageFileTest, PagesThatMayBeNewerElsewhereAreNotRead)
{
    Open("pragma journal_mode = wal; create table t(a)");
    PageFile::Page page;
    EXPECT_EQ(PageFile(mDatabase.GetHandle()).GetUsableSize(), 0U);
    EXPECT_FALSE(PageFile(mDatabase.GetHandle()).Read(1, page));
}

TEST_F(PageFileTest, HeaderThatTellsOddSizesOrOtherVersionsHasNoPages)
{
    EventLogBuilder::Run(mPath, "pragma page_size = 1024; create table t(a)");
    const std::string sound = mDir.Read("a.db");
    const auto sizeWith = [&](std::size_t place, char byte) {
        std::string content = sound;
        content[place] = byte;
        mDir.Write("a.db", content);
        EXPECT_TRUE(mDatabase.Open(mPath));
        return PageFile(mDatabase.GetHandle()).GetUsableSize();
    };
    EXPECT_EQ(sizeWith(16, 4), 1024U);
    EXPECT_EQ(sizeWith(16, 5), 0U) << "1280 is no power of two";
    EXPECT_EQ(sizeWith(16, 1), 0U) << "256 is less than SQLite has";
    EXPECT_EQ(sizeWith(18, 2), 0U) << "written with changes beside the file";
    EXPECT_EQ(sizeWith(19, 2), 0U) << "read with them";
}

TEST_F(PageFileTest, PageThatWasCutOffMeanwhileIsNotRead)
{
    Open("pragma page_size = 1024; create table t(a)");
    const PageFile file(mDatabase.GetHandle());
    std::filesystem::resize_file(mPath, 1024);
    PageFile::Page page;
    EXPECT_TRUE(file.Read(1, page));
    EXPECT_FALSE(file.Read(2, page));
}

TEST_F(PageFileTest, DatabaseInMemoryHasNoPages)
{
    ASSERT_TRUE(mDatabase.Open(":memory:"));
    EXPECT_EQ(PageFile(mDatabase.GetHandle()).GetUsableSize(), 0U);
}

TEST_F(PageFileTest, WhatIsNoDatabaseHasNoPages)
{
    EXPECT_EQ(PageFile(mDatabase.GetHandle()).GetUsableSize(), 0U) << "closed";
    mDir.Write("a.db", std::string(4096, 'x'));
    ASSERT_TRUE(mDatabase.Open(mPath));
    EXPECT_EQ(PageFile(mDatabase.GetHandle()).GetUsableSize(), 0U);
    mDir.Write("a.db", "");
    ASSERT_TRUE(mDatabase.Open(mPath));
    EXPECT_EQ(PageFile(mDatabase.GetHandle()).GetUsableSize(), 0U);
}

} // namespace
