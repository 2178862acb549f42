#include "arborist/stores/event_log/rows_of_ids.h"

#include <gtest/gtest.h>

#include "tests/stores/event_log/log_reading.h"

namespace {

constexpr std::size_t PAGE = 1024;

class RowsOfIdsTest : public LogReadingTest {
protected:
    // Row 1 of id 7 and row 2 of id 8 need queries, row 3 of id 7 not.
    static EventLogBuilder SomeRows()
    {
        return EventLogBuilder().Rows({{10, 7, "", ""}, {20, 8, "", ""}, {30, 7, "", ""}, {40, 9, "", ""}})
            .Sql("update event_info_flow set occurrence_time = -1 where _ID in (1, 2)");
    }

    std::optional<RowsOfIds> RowsOf(const EventLogBuilder& builder)
    {
        mSnapshot = Read(builder);
        return RowsOfSnapshot();
    }

    std::optional<RowsOfIds> RowsOfSnapshot()
    {
        const auto log = UnchangedLog::Open(mDatabase.GetHandle(), mSnapshot);
        return log == nullptr ? std::nullopt : RowsOfIds::Read(*log);
    }

    static std::string ConditionFor(const std::optional<RowsOfIds>& rows, std::int32_t id)
    {
        return rows ? rows->GetCondition(id).value_or("none") : "no rows";
    }

    std::shared_ptr<const EventLogSnapshot> mSnapshot;
};

TEST_F(RowsOfIdsTest, IdsThatNeedQueriesAreAskedAmongAllTheirRows)
{
    const auto rows = RowsOf(SomeRows());
    EXPECT_EQ(ConditionFor(rows, 7), " and event_info._ID in (1,3)");
    EXPECT_EQ(ConditionFor(rows, 8), " and event_info._ID in (2)");
    EXPECT_EQ(ConditionFor(rows, 9), "none");
    EXPECT_EQ(ConditionFor(rows, 10), "none");
    EXPECT_EQ(rows->GetScanError(), "");
}

// SQLite compares text in such a column with a number.
TEST_F(RowsOfIdsTest, IdsMayBeTexts)
{
    const auto rows = RowsOf(SomeRows()
        .Sql("update event_info set event_id = 7.5 where _ID = 3; update event_info set event_id = x'37' where _ID = 4")
        .Sql("pragma writable_schema = 1; update sqlite_master set sql = replace(sql, 'event_id integer', 'event_id')"));
    EXPECT_EQ(ConditionFor(rows, 7), " and event_info._ID in (1,3,4)") << "the query leaves out what isn't equal";
}

TEST_F(RowsOfIdsTest, IdsThatNoRuleCanNameAreLeftOut)
{
    const auto rows = RowsOf(SomeRows().Sql("update event_info set event_id = 4294967303 where _ID = 4"));
    EXPECT_EQ(ConditionFor(rows, 7), " and event_info._ID in (1,3)") << "4294967303 is 7 in 32 bits";
}

TEST_F(RowsOfIdsTest, IdWithTooManyRowsIsAskedByAScan)
{
    const auto rows = RowsOf(SomeRows().Sql("with recursive n(i) as (select 10 union all select i + 1 from n where "
        "i < 10010) insert into event_info select i, 7, '', 1 from n"));
    EXPECT_EQ(ConditionFor(rows, 7), "none");
    EXPECT_EQ(ConditionFor(rows, 8), " and event_info._ID in (2)");
}

TEST_F(RowsOfIdsTest, QueryByAnIndexHasItsOwnWay)
{
    EXPECT_FALSE(RowsOf(SomeRows().Sql("create index i on event_info(event_id)")).has_value());
}

class DamagedRowsOfIdsTest : public RowsOfIdsTest {
protected:
    // Ids 1 to 10 in turn on pages of 1,024 bytes. All need queries.
    DamagedRowsOfIdsTest()
    {
        EventLogBuilder builder;
        builder.Schema("PRAGMA page_size = 1024; CREATE TABLE event_version (_ID integer primary key, VERSION_NAME text);"
            "CREATE TABLE event_info (_ID integer primary key, event_id integer, extra text, version_id integer);"
            "CREATE TABLE event_info_flow (_ID integer primary key, event_pid integer, occurrence_time integer);");
        for (int row = 1; row <= 500; ++row) {
            builder.Row({-row, 1 + row % 10, "", "{}"});
        }
        mSnapshot = Read(builder);
    }

    // Writes into a page of event_info.
    void Damage(std::size_t page, const std::string& bytes)
    {
        std::string file = mDir.Read("log.db");
        mDir.Write("log.db", file.replace(page * PAGE, bytes.size(), bytes));
        mDatabase.Open(mPath);
    }

    // A leaf of event_info, the only table with texts.
    std::size_t SomeLeaf()
    {
        const std::string file = mDir.Read("log.db");
        std::size_t page = file.size() / PAGE / 3;
        while (file[page * PAGE] != 13 || file.substr(page * PAGE, PAGE).find("{}") == std::string::npos) {
            ++page;
        }
        return page;
    }
};

TEST_F(DamagedRowsOfIdsTest, RowsBeforeABreakAreThoseThatEachQueryMeets)
{
    const std::string whole = ConditionFor(RowsOfSnapshot(), 3);
    Damage(SomeLeaf(), std::string(PAGE, '\xFF'));
    const auto rows = RowsOfSnapshot();
    const std::string broken = ConditionFor(rows, 3);
    EXPECT_EQ(rows->GetScanError(), "database disk image is malformed");
    EXPECT_LT(broken.size(), whole.size());
    EXPECT_EQ(broken.substr(0, broken.size() - 1), whole.substr(0, broken.size() - 1));
}

TEST_F(DamagedRowsOfIdsTest, RowsThatASearchMayMissAreNotUsed)
{
    const std::size_t leaf = SomeLeaf();
    const std::string file = mDir.Read("log.db");
    const std::size_t cells = leaf * PAGE + 8;
    Damage(leaf, file.substr(leaf * PAGE, 8) + file.substr(cells + 2, 2) + file.substr(cells, 2));
    EXPECT_FALSE(RowsOfSnapshot().has_value());
}

} // namespace
