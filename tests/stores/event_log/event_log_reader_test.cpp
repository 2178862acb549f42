#include "arborist/stores/event_log/event_log_reader.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include <gmock/gmock.h>

#include "arborist/stores/sql/sql_cursor.h"
#include "arborist/stores/sql/sql_operator.h"
#include "tests/stores/event_log/log_reading.h"

namespace {

using FT::sql::SqlCursor;

class EventLogReaderTest : public LogReadingTest {
protected:
    void Damage(std::size_t place, std::size_t length)
    {
        std::string file = mDir.Read("log.db");
        file.replace(place, length, length, '\xFF');
        mDir.Write("log.db", file);
    }
};

TEST_F(EventLogReaderTest, ReadsAllRowsInSilence)
{
    const auto snapshot = Read(EventLogBuilder().Rows({{30, 7, "", ""}, {20, -5, "", ""}, {10, 7, "", ""}}));
    EXPECT_EQ(RowsOf(*snapshot), "-5: 20; 7: 30 10");
    EXPECT_EQ(snapshot->GetRowId(snapshot->GetEntry(1).end - 1), 3);
    EXPECT_EQ(snapshot->GetOrigin().rowName, "_ID");
    EXPECT_TRUE(snapshot->GetOrigin().isInTableOrder);
    EXPECT_FALSE(snapshot->GetOrigin().isEachIdAsked);
    EXPECT_EQ(snapshot->GetOrigin().breakError, "");
    EXPECT_THAT(mLog.Lines(), testing::IsEmpty());
}

TEST_F(EventLogReaderTest, TimesAndRowNumbersFarApartKeepTheirValues)
{
    const auto snapshot = Read(EventLogBuilder().Rows({{1700000000, 7, "", ""}, {0, 7, "", ""},
        {4294967295, 7, "", ""}, {1699999999, 8, "", ""}, {1500000000, 8, "", ""}})
        .Sql("update event_info set _ID = 4294967295 where _ID = 5")
        .Sql("update event_info_flow set _ID = 4294967295 where _ID = 5"));
    EXPECT_EQ(RowsOf(*snapshot), "7: 1700000000 0 4294967295; 8: 1699999999 1500000000");
    EXPECT_EQ(snapshot->GetRowId(snapshot->GetEntry(0).begin), 1);
    EXPECT_EQ(snapshot->GetRowId(snapshot->GetEntry(1).end - 1), 4294967295);
}

TEST_F(EventLogReaderTest, ManyIdsAreGroupedToo)
{
    EventLogBuilder builder;
    builder.Sql("insert into event_version values (1, '1')").Sql("with recursive n(i) as (select 1 union all select i + 1 "
        "from n where i < 70000) insert into event_info select i, 70001 - i, '', 1 from n")
        .Sql("insert into event_info_flow select _ID, _ID, _ID from event_info");
    const auto snapshot = Read(builder);
    ASSERT_EQ(snapshot->GetEntryCount(), 70000U);
    for (const std::int32_t id : {1, 2, 4000, 65536, 65537, 70000}) {
        const EventLogSnapshot::Entry entry = snapshot->GetEntry(snapshot->FirstEntryFrom(id));
        EXPECT_EQ(entry.eventId, id);
        EXPECT_EQ(entry.end - entry.begin, 1U);
        EXPECT_EQ(snapshot->GetTime(entry.begin), static_cast<std::uint32_t>(70001 - id));
        EXPECT_EQ(snapshot->GetRowId(entry.begin), 70001 - id);
    }
}

TEST_F(EventLogReaderTest, MoreVersionsThanAreNumberedNeedAQuery)
{
    EventLogBuilder builder;
    builder.Sql("with recursive n(i) as (select 1 union all select i + 1 from n where i < 65540) "
        "insert into event_version select i, 'v' || i from n")
        .Sql("insert into event_info values (1, 7, '', 65535), (2, 8, '', 65536), (3, 9, '', 3)")
        .Sql("insert into event_info_flow select _ID, _ID, _ID from event_info");
    EXPECT_EQ(RowsOf(builder), "7: 1; 8?; 9: 3");
}

TEST_F(EventLogReaderTest, RowsWithoutPartnersAreInvisible)
{
    EXPECT_EQ(RowsOf(EventLogBuilder().Rows({{10, 7, "", ""}, {20, 8, "", ""}, {30, 9, "", ""}})
        .Sql("delete from event_info_flow where _ID = 1").Sql("update event_info set version_id = 99 where _ID = 2")),
        "9: 30");
}

TEST_F(EventLogReaderTest, RowWithoutAVersionIsUnseenAtItsOwnTime)
{
    const auto snapshot = Read(EventLogBuilder().Rows({{10, 7, "", ""}, {20, 8, "", ""}})
        .Sql("update event_info set version_id = null where _ID = 1"));
    EXPECT_EQ(RowsOf(*snapshot), "8: 20");
    EXPECT_THAT(snapshot->ListUnseen(7, 7), testing::ElementsAre(10));
    EXPECT_TRUE(snapshot->HasUnseen(7, 7, 10));
    EXPECT_FALSE(snapshot->HasUnseen(7, 7, 11));
}

TEST_F(EventLogReaderTest, NullsAndIdsOfMoreThan32BitsMatchNoQuery)
{
    EXPECT_EQ(RowsOf(EventLogBuilder()
        .Rows({{10, 7, "", ""}, {20, 8, "", ""}, {30, 3000000000, "", ""}, {40, 9, "", ""}})
        .Sql("update event_info set event_id = null where _ID = 1")
        .Sql("update event_info_flow set occurrence_time = null where _ID = 2")), "9: 40");
}

TEST_F(EventLogReaderTest, IdsWithRowsThatDoNotFitNeedTheirOwnQuery)
{
    EXPECT_EQ(RowsOf(EventLogBuilder()
        .Rows({{10, 1, "", ""}, {20, 2, "", ""}, {30, 3, "", ""}, {40, 4, "", ""}, {50, 4, "", ""}, {60, 5, "", ""}})
        .Sql("update event_info_flow set occurrence_time = 'soon' where _ID = 1")
        .Sql("update event_info_flow set occurrence_time = 1.5 where _ID = 2")
        .Sql("update event_info_flow set occurrence_time = -1 where _ID = 3")
        .Sql("update event_info_flow set occurrence_time = 4294967296 where _ID = 4")),
        "1?; 2?; 3?; 4? 50; 5: 60");
}

TEST_F(EventLogReaderTest, VersionRowsWithoutAUniqueNumberNeedAQuery)
{
    EXPECT_EQ(RowsOf(EventLogBuilder()
        .Schema("CREATE TABLE event_version (_ID, VERSION_NAME text);"
            "CREATE TABLE event_info (_ID integer primary key, event_id integer, extra text, version_id);"
            "CREATE TABLE event_info_flow (_ID integer primary key, event_pid integer, occurrence_time integer);")
        .Rows({{10, 1, "a", ""}, {20, 2, "b", ""}, {30, 3, "c", ""}})
        .Sql("insert into event_version values (1, 'other'), (2, 'b'), ('x', 'd')")
        .Sql("insert into event_info values (4, 4, '', 'x')").Sql("insert into event_info_flow values (4, 4, 40)")),
        "1?; 2: 20 20; 3: 30; 4?");
}

TEST_F(EventLogReaderTest, VersionsAreFoundByWhatSQLiteTakesForTheirNumbers)
{
    EXPECT_EQ(RowsOf(EventLogBuilder()
        .Schema("CREATE TABLE event_version (_ID integer primary key, VERSION_NAME text);"
            "CREATE TABLE event_info (_ID integer primary key, event_id integer, extra text, version_id);"
            "CREATE TABLE event_info_flow (_ID integer primary key, event_pid integer, occurrence_time integer);")
        .Rows({{10, 1, "a", ""}, {20, 2, "b", ""}, {30, 3, "a", ""}, {40, 4, "a", ""}, {50, 5, "a", ""}})
        .Sql("update event_info set version_id = '1' where _ID = 1")
        .Sql("update event_info set version_id = 2.0 where _ID = 2")
        .Sql("update event_info set version_id = '1x' where _ID = 3")
        .Sql("update event_info set version_id = 7 where _ID = 4")), "1: 10; 2: 20; 5: 50");
}

TEST_F(EventLogReaderTest, LogWithoutRowNumbersNeedsQueries)
{
    EXPECT_EQ(RowsOf(EventLogBuilder()
        .Schema("CREATE TABLE event_version (_ID integer primary key, VERSION_NAME text);"
            "CREATE TABLE event_info (_ID integer primary key, event_id integer, extra text, version_id integer)"
            " WITHOUT ROWID;"
            "CREATE TABLE event_info_flow (_ID integer primary key, event_pid integer, occurrence_time integer);")
        .Row({10, 1, "a", ""})), "1?");
}

TEST_F(EventLogReaderTest, LogThatCannotBeAskedHasNoSnapshot)
{
    EXPECT_EQ(ReadEventLog(mDatabase.GetHandle()), nullptr) << "closed";
    EXPECT_EQ(RowsOf(EventLogBuilder().Row({10, 7, "", ""}).Sql("drop table event_version")), "none");
    EXPECT_EQ(RowsOf(EventLogBuilder().Row({10, 7, "", ""}).Sql("alter table event_info drop column extra")), "none");
    EXPECT_THAT(mLog.Lines(), testing::IsEmpty());
}

TEST_F(EventLogReaderTest, LockedLogHasNoSnapshot)
{
    EventLogBuilder().Row({10, 7, "", ""}).WriteTo(mPath);
    FT::sql::SqlDatabase other;
    ASSERT_TRUE(other.Open(mPath));
    FT::sql::SqlOperator writer(other.GetHandle());
    ASSERT_TRUE(writer.ExecuteNoCallback("BEGIN EXCLUSIVE"));
    EXPECT_EQ(ReadAgain(), nullptr);
    ASSERT_TRUE(writer.ExecuteNoCallback("ROLLBACK"));
    EXPECT_EQ(RowsOf(*ReadAgain()), "7: 10");
}

TEST_F(EventLogReaderTest, DamageInTheMiddleOfTheEventsEndsEveryQueryThere)
{
    EventLogBuilder builder;
    for (int row = 1; row <= 2000; ++row) {
        builder.Row({row, 7 + row % 2, "", std::string(100, 'x')});
    }
    builder.WriteTo(mPath);
    Damage(mDir.Read("log.db").size() / 2, 4096);
    const auto snapshot = ReadAgain();
    EXPECT_EQ(snapshot->GetOrigin().breakError, "database disk image is malformed");
    EXPECT_GT(snapshot->GetRowCount(), 100U);
    EXPECT_LT(snapshot->GetRowCount(), 2000U);
    EXPECT_FALSE(snapshot->GetEntry(0).needsQuery);
}

class BrokenTextTest : public EventLogReaderTest {
protected:
    // Rows 1 to 9 of ids 1 to 9; the text of row 7 can't be read.
    std::shared_ptr<const EventLogSnapshot> ReadWithBrokenText(const std::string& sql)
    {
        EventLogBuilder builder;
        for (int row = 1; row <= 9; ++row) {
            builder.Row({row, row, "", std::string(row == 7 ? 20000 : 10, row == 7 ? 'y' : 'x')});
        }
        builder.Sql(sql).WriteTo(mPath);
        // An overflow page begins with the number of the next page; set a number beyond the end of the file.
        const std::string file = mDir.Read("log.db");
        std::size_t page = 0;
        while (file.substr(page + 4, 1000) != std::string(1000, 'y')) {
            page += 4096;
        }
        Damage(page, 4);
        return ReadAgain();
    }
};

TEST_F(BrokenTextTest, NeedsAQueryForItsIdAlone)
{
    const auto snapshot = ReadWithBrokenText("select 1");
    EXPECT_EQ(snapshot->GetOrigin().breakError, "");
    EXPECT_EQ(RowsOf(*snapshot), "1: 1; 2: 2; 3: 3; 4: 4; 5: 5; 6: 6; 7?; 8: 8; 9: 9");
}

TEST_F(BrokenTextTest, TimesThatAreNoWholeNumbersNeedAQueryBesideIt)
{
    EXPECT_EQ(RowsOf(*ReadWithBrokenText("update event_info_flow set occurrence_time = 'soon' where _ID = 3; "
                                         "update event_info_flow set occurrence_time = null where _ID = 4")),
        "1: 1; 2: 2; 3?; 5: 5; 6: 6; 7?; 8: 8; 9: 9");
}

TEST_F(EventLogReaderTest, RowsOutOfOrderNeedAQueryForTheirIdAlone)
{
    EventLogBuilder().Rows({{10, 7, "", ""}, {20, 8, "", "mark"}, {30, 8, "", ""}, {40, 9, "", ""}}).WriteTo(mPath);
    // Behind the eight bytes of its head the only page of event_info has the places of its rows, two bytes for each.
    const std::string file = mDir.Read("log.db");
    const std::size_t second = file.find("mark") / 4096 * 4096 + 8 + 2;
    mDir.Write("log.db", std::string(file).replace(second, 4, file.substr(second + 2, 2) + file.substr(second, 2)));
    const auto snapshot = ReadAgain();
    EXPECT_EQ(RowsOf(*snapshot), "7: 10; 8? 30 20; 9: 40");
    EXPECT_EQ(snapshot->GetOrigin().damage, "rows of event_info are out of order");
}

TEST_F(EventLogReaderTest, OtherPlansTakeAFileThatIsSound)
{
    EventLogBuilder builder;
    for (int row = 1; row <= 2000; ++row) {
        builder.Row({row, 7 + row % 3, "", std::string(100, 'x')});
    }
    builder.Sql("create index i on event_info(event_id)").WriteTo(mPath);
    const auto sound = ReadAgain();
    EXPECT_EQ(sound->GetRowCount(), 2000U);
    EXPECT_FALSE(sound->GetOrigin().isEachIdAsked);
    EXPECT_FALSE(sound->GetOrigin().isInTableOrder);
    Damage(mDir.Read("log.db").size() / 2, 4096);
    const auto broken = ReadAgain();
    EXPECT_TRUE(broken->GetOrigin().isEachIdAsked);
    EXPECT_THAT(broken->GetIds(), testing::ElementsAre(7, 8, 9));
    EXPECT_EQ(broken->GetRowCount(), 0U);
}

// Rows 1 to 300, whose event ids are their numbers, found by an index; some twenty rows are on each page, and one page
// names all others.
class DamagedTreeTest : public EventLogReaderTest {
protected:
    static constexpr std::size_t PAGE = 4096;
    // Where the page that names the others has the places of its cells, two bytes for each. A cell begins with the
    // number of its page.
    static constexpr std::size_t PLACES = 12;

    DamagedTreeTest()
    {
        EventLogBuilder builder;
        for (int row = 1; row <= 300; ++row) {
            builder.Row({row, row, "", std::string(200, 'x')});
        }
        builder.Sql("create index i on event_info(event_id)").WriteTo(mPath);
    }

    std::size_t PlaceOfTree(const std::string& name = "event_info")
    {
        mDatabase.Open(mPath);
        SqlCursor root(mDatabase.GetHandle(), "select rootpage from sqlite_master where name = '" + name + "'");
        return root.Step() ? (static_cast<std::size_t>(root.GetInteger(0)) - 1) * PAGE : 0;
    }

    static std::size_t NumberAt(const std::string& file, std::size_t place)
    {
        return static_cast<unsigned char>(file[place]) * std::size_t{256} + static_cast<unsigned char>(file[place + 1]);
    }

    void DamagePage(std::size_t number)
    {
        const std::size_t tree = PlaceOfTree();
        const std::string file = mDir.Read("log.db");
        const std::size_t cell = tree + NumberAt(file, tree + PLACES + 2 * number);
        Damage((NumberAt(file, cell + 2) - 1) * PAGE, PAGE);
    }

    void SwapPages(std::size_t number)
    {
        const std::size_t first = PlaceOfTree() + PLACES + 2 * number;
        std::string file = mDir.Read("log.db");
        std::swap_ranges(file.begin() + static_cast<std::ptrdiff_t>(first),
            file.begin() + static_cast<std::ptrdiff_t>(first + 2), file.begin() + static_cast<std::ptrdiff_t>(first + 2));
        mDir.Write("log.db", file);
    }
};

TEST_F(DamagedTreeTest, RowsBehindAnUnreadablePageAreFoundThoughPagesBeforeItAreOutOfOrder)
{
    SwapPages(1);
    DamagePage(3);
    Damage(PlaceOfTree("i"), PAGE);
    const auto snapshot = ReadAgain();
    EXPECT_TRUE(snapshot->GetOrigin().isEachIdAsked);
    EXPECT_TRUE(snapshot->GetOrigin().areAllIdsKnown);
    EXPECT_THAT(snapshot->GetIds(), testing::Contains(300));
}

TEST_F(DamagedTreeTest, SearchForRowsBehindAnUnreadablePageEndsWhereTheirNumbersAreFarAway)
{
    // The damaged page has both the last of the low numbers and the first of the high ones.
    for (const std::string table : {"event_info", "event_info_flow"}) {
        EventLogBuilder::Run(mPath, "update " + table + " set _ID = _ID + 4611686018427387904 where _ID > 70");
    }
    EventLogBuilder::Run(mPath, "vacuum");
    DamagePage(3);
    Damage(PlaceOfTree("i"), PAGE);
    const auto snapshot = ReadAgain();
    EXPECT_TRUE(snapshot->GetOrigin().isEachIdAsked);
    EXPECT_FALSE(snapshot->GetOrigin().areAllIdsKnown);
}

} // namespace
