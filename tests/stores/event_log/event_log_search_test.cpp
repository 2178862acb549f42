#include "arborist/stores/event_log/event_log_search.h"

#include <algorithm>
#include <string_view>

#include <gmock/gmock.h>
#include <sqlite3.h>

#include "arborist/frame/settings.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/stores/sql/sql_cursor.h"
#include "tests/stores/event_log/log_reading.h"
#include "tests/stores/event_log/number_question.h"
#include "tests/support/settings_guard.h"

namespace {

using Reading = EventLogSearch::Reading;
using FT::sql::SqlCursor;

constexpr std::size_t PAGE = 4096;
constexpr char MALFORMED[] =
    "FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: database disk image is malformed";

class EventLogSearchTest : public LogReadingTest {
protected:
    void Open(const EventLogBuilder& builder)
    {
        builder.WriteTo(mPath);
        mDatabase.Open(mPath);
    }

    // "id count; ..." for each id that is visited.
    std::string Visit(const EventLogSearch::Query& query)
    {
        std::string text;
        mReading = mSearch.Visit(query, "1", [&text](const EventRows& rows) {
            text += std::to_string(rows.GetEventId()) + " " + std::to_string(rows.GetCount()) + "; ";
            return false;
        });
        return text;
    }

    // Ids without rows are asked for their lines, too. Leaves these out for all but the first of them.
    static EventLogSearch::Query FewLines(EventLogSearch::Query query)
    {
        query.idsBefore = EventLogSearch::LONGEST_LOGGED_RANGE - 20;
        return query;
    }

    // The same from one query for each id.
    std::string AskEach(std::int32_t first, std::int32_t last)
    {
        std::string text;
        for (std::int32_t id = first; id <= last; ++id) {
            mSearch.GetQuery().Run(id, 0);
            const std::size_t count = mSearch.GetQuery().GetCount();
            text += count == 0 ? "" : std::to_string(id) + " " + std::to_string(count) + "; ";
        }
        return text;
    }

    void Damage(std::size_t place, std::size_t length)
    {
        std::string file = mDir.Read("log.db");
        file.replace(place, length, length, '\xFF');
        mDir.Write("log.db", file);
        mDatabase.Open(mPath);
    }

    // The place of the page's first cell that is of this kind.
    std::size_t PageOf(const std::string& table, char kind, std::size_t which)
    {
        SqlCursor root(mDatabase.GetHandle(), "select rootpage from sqlite_master where name = '" + table + "'");
        root.Step();
        std::size_t page = static_cast<std::size_t>(root.GetInteger(0) - 1) * PAGE;
        const std::string file = mDir.Read("log.db");
        const auto bytes = [&file](std::size_t place, std::size_t count) {
            std::size_t number = 0;
            for (; count != 0; --count) {
                number = number * 256 + static_cast<unsigned char>(file[place++]);
            }
            return number;
        };
        while (file[page] != kind) {
            page = (bytes(page + bytes(page + 12 + 2 * which, 2), 4) - 1) * PAGE;
        }
        return page;
    }

    // Exchanges two cells of a page: rows of a leaf, or guides of an inner page.
    void Swap(std::size_t page, std::size_t cells)
    {
        std::string file = mDir.Read("log.db");
        std::swap_ranges(file.begin() + static_cast<std::ptrdiff_t>(page + cells),
            file.begin() + static_cast<std::ptrdiff_t>(page + cells + 2),
            file.begin() + static_cast<std::ptrdiff_t>(page + cells + 2));
        mDir.Write("log.db", file);
        mDatabase.Open(mPath);
    }

    void ExpectThatOfEachId()
    {
        mLog.Clear();
        const std::string each = AskEach(-1, 12);
        const std::vector<std::string> lines = mLog.Lines();
        for (int round = 0; round < 2; ++round) {
            mLog.Clear();
            EXPECT_EQ(Visit({-1, 12, 0, false}), each);
            EXPECT_EQ(mLog.Lines(FT::LEVEL_ERROR), lines);
        }
        EXPECT_GT(each.size(), 50U);
    }

    // A log that was not read whole can't tell what it lacks.
    void ExpectNothingSaidOfAll()
    {
        EXPECT_EQ(mSearch.CountRows(1, 10, 0, 4000), std::nullopt);
        EXPECT_EQ(mSearch.GetFirstTime(), std::nullopt);
        EXPECT_FALSE(mSearch.HasUnseen(1, 10, 0));
        EXPECT_TRUE(mSearch.ListUnseen(1, 10).empty());
    }

    EventLogSearch mSearch{mDatabase.GetHandle()};
    Reading mReading = Reading::WHOLE;
};

// Rows of the ids 1 to 10 in turn.
EventLogBuilder ManyRows(int rows)
{
    EventLogBuilder builder;
    for (int row = 1; row <= rows; ++row) {
        builder.Row({row, 1 + row % 10, "", "{\"a\":" + std::to_string(row) + "}" + std::string(60, ' ')});
    }
    return builder;
}

TEST_F(EventLogSearchTest, VisitsTheIdsThatHaveRows)
{
    Open(EventLogBuilder().Rows({{10, 9, "1", ""}, {20, -3, "2", ""}, {30, 9, "2", ""}}));
    EXPECT_EQ(Visit({INT32_MIN, INT32_MAX, 0, false}), "-3 1; 9 2; ");
    EXPECT_EQ(Visit({INT32_MIN, INT32_MAX, 0, true}), "-3 0; 9 1; ");
    EXPECT_EQ(Visit({-2, 8, 0, false}), "");
    EXPECT_EQ(mReading, Reading::WHOLE);
}

TEST_F(EventLogSearchTest, ManyStartsHaveTheirOwnCounts)
{
    Open(ManyRows(200));
    for (int round = 0; round < 2; ++round) {
        for (std::int64_t start = 0; start < 200; ++start) {
            const std::int64_t before = std::max<std::int64_t>(start - 1, 0) / 10; // times are 10, 20 and so on
            EXPECT_EQ(Visit({1, 1, start, false}), "1 " + std::to_string(20 - before) + "; ");
        }
    }
}

TEST_F(EventLogSearchTest, RowsAreCountedUnlessAnIdNeedsItsOwnQuery)
{
    Open(ManyRows(100).Sql("update event_info_flow set occurrence_time = 7.5 where _ID = 3"));
    EXPECT_EQ(mSearch.CountRows(1, 10, 0, 100), std::nullopt) << "before the first visit";
    Visit({1, 10, 0, false});
    EXPECT_EQ(mSearch.CountRows(5, 10, 0, 200), 60U);
    EXPECT_EQ(mSearch.CountRows(5, 10, 0, 51), 30U);
    EXPECT_EQ(mSearch.CountRows(1, 10, 0, 200), std::nullopt) << "a time between two seconds";
}

TEST_F(EventLogSearchTest, FirstTimeAfterTheLastMomentIsNone)
{
    Open(ManyRows(100));
    Visit({1, 10, 0, false});
    EXPECT_EQ(mSearch.GetFirstTime(), 1);
    const SettingsGuard settings;
    settings.Set(Settings::AS_OF, "0");
    EXPECT_EQ(mSearch.GetFirstTime(), std::nullopt);
    EXPECT_EQ(Visit({1, 10, 0, false}), "");
}

TEST_F(EventLogSearchTest, FirstTimeMayBeTheLastMomentItself)
{
    Open(ManyRows(100));
    Visit({1, 10, 0, false});
    const SettingsGuard settings;
    settings.Set(Settings::AS_OF, "1");
    EXPECT_EQ(mSearch.GetFirstTime(), 1);
}

// Else the time would grow with the product of their number and the size of the log.
TEST_F(EventLogSearchTest, IdsThatNeedTheirOwnQueriesShareOneScanOfTheEvents)
{
    Open(ManyRows(100).Sql("update event_info_flow set occurrence_time = 7.5"));
    const std::string each = AskEach(1, 10);
    int scans = 0;
    const auto count = [](unsigned int, void* counter, void*, void* sql) {
        constexpr std::string_view SCAN = "select event_id, _ID from event_info not indexed";
        *static_cast<int*>(counter) += static_cast<const char*>(sql) == SCAN ? 1 : 0;
        return 0;
    };
    sqlite3* const connection = mDatabase.GetHandle().connection;
    sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, count, &scans);
    EXPECT_EQ(Visit({1, 10, 0, false}), each);
    sqlite3_trace_v2(connection, 0, nullptr, nullptr);
    EXPECT_EQ(scans, 1);
}

TEST_F(EventLogSearchTest, BreakInTheEventsIsToldForEachIdAndLeavesTheRowsBefore)
{
    Open(ManyRows(3000));
    Damage(mDir.Read("log.db").size() / 2, PAGE);
    const std::string each = AskEach(-1, 12);
    const std::vector<std::string> lines = mLog.Lines();
    mLog.Clear();
    std::vector<std::string> files;
    const TroubleWatch watch([&files](const Evidence::Trouble& trouble) { files.push_back(trouble.file); });
    EXPECT_EQ(Visit({-1, 12, 0, false}), each);
    EXPECT_EQ(files, std::vector<std::string>(14, mPath));
    EXPECT_EQ(mReading, Reading::BROKEN_OFF);
    std::vector<std::string> told = mLog.Lines(FT::LEVEL_ERROR);
    EXPECT_EQ(told, lines);
    EXPECT_EQ(told, std::vector<std::string>(14, MALFORMED));
    ExpectNothingSaidOfAll();
}

TEST_F(EventLogSearchTest, IdsFarBehindTheFirstAreAskedToo)
{
    EventLogBuilder builder = ManyRows(3000);
    builder.Sql("update event_info set event_id = 2000000000 where _ID % 10 = 5")
        .Sql("update event_info set event_id = 5000000000 where _ID % 100 = 7");
    Open(builder);
    Damage(mDir.Read("log.db").size() / 2, PAGE);
    const std::string visited = Visit({-5, INT32_MAX, 0, false});
    EXPECT_EQ(visited, AskEach(-5, 12) + AskEach(2000000000, 2000000001));
    EXPECT_THAT(visited, testing::HasSubstr("; 2000000000 1"));
}

TEST_F(EventLogSearchTest, IdsWhoseSearchesGoAstrayAreAskedOneByOne)
{
    Open(ManyRows(3000));
    Swap(PageOf("event_info_flow", 5, 0), 12);
    ExpectThatOfEachId();
    EXPECT_EQ(mReading, Reading::BROKEN_OFF);
}

TEST_F(EventLogSearchTest, SearchesThatGoAstrayInABrokenLogAreThoseOfEachId)
{
    Open(ManyRows(3000));
    Swap(PageOf("event_info_flow", 5, 0), 12);
    Damage(PageOf("event_info", 13, 20), PAGE);
    ExpectThatOfEachId();
}

TEST_F(EventLogSearchTest, EventsOutOfOrderAreReadInOnePass)
{
    Open(ManyRows(3000));
    Swap(PageOf("event_info", 13, 20), 8);
    ExpectThatOfEachId();
    EXPECT_EQ(mReading, Reading::BROKEN_OFF);
    std::uint64_t sum = 0;
    mSearch.Visit({1, 12, 0, false, {NumberQuestion::Of("a")}}, "1", [&sum](const EventRows& rows) {
        sum += rows.Sum(0);
        return false;
    });
    EXPECT_EQ(sum, 3000U * 3001 / 2);
    ExpectNothingSaidOfAll();
}

TEST_F(EventLogSearchTest, IndexedLogWithABadPageIsAskedIdById)
{
    EventLogBuilder builder = ManyRows(3000);
    builder.Sql("create index i on event_info(event_id)").Sql("update event_info set event_id = 2000000000 where _ID % 10 = 5");
    Open(builder);
    const std::size_t pages = mDir.Read("log.db").size() / PAGE;
    for (std::size_t page = 3; page < pages; page += 5) {
        SCOPED_TRACE(page);
        builder.WriteTo(mPath);
        Damage(page * PAGE, PAGE);
        EXPECT_EQ(Visit(FewLines({-5, INT32_MAX, 0, false})), AskEach(-5, 12) + AskEach(2000000000, 2000000001));
    }
    ExpectNothingSaidOfAll();
}

// Its rows can't be searched one behind the other, so that a bad page hides the ids behind it.
TEST_F(EventLogSearchTest, LogWithoutRowNumbersAndWithABadPageIsAskedIdById)
{
    EventLogBuilder builder;
    builder.Schema("CREATE TABLE event_version (_ID integer primary key, VERSION_NAME text);"
        "CREATE TABLE event_info (_ID integer primary key, event_id integer, extra text, version_id integer) without rowid;"
        "CREATE TABLE event_info_flow (_ID integer primary key, event_pid integer, occurrence_time integer);");
    for (int row = 0; row < 3000; ++row) {
        builder.Row({row, row / 100, "", std::string(60, ' ')});
    }
    builder.Sql("update event_info set event_id = 5000000000 where _ID % 100 = 7");
    Open(builder);
    const std::size_t pages = mDir.Read("log.db").size() / PAGE;
    for (std::size_t page = 4; page < pages; page += 7) {
        SCOPED_TRACE(page);
        builder.WriteTo(mPath);
        Damage(page * PAGE, PAGE);
        const std::string each = AskEach(-5, 40);
        EXPECT_EQ(Visit({-5, 40, 0, false}), each);
        std::vector<std::int32_t> visited;
        mSearch.Visit({20, 40, 0, false}, "1", [&visited](const EventRows& rows) {
            visited.push_back(rows.GetEventId());
            return true;
        });
        EXPECT_EQ(visited, each.find("20 ") == std::string::npos ? std::vector<std::int32_t>() : std::vector<std::int32_t>{20});
    }
}

TEST_F(EventLogSearchTest, IdsBetweenBadPagesAreAskedTooHoweverFarBehindTheFirst)
{
    EventLogBuilder builder;
    std::vector<std::int32_t> ids;
    for (int row = 1; row <= 2000; ++row) {
        ids.push_back(1000000 * row);
        builder.Row({row, ids.back(), "", std::string(60, ' ')});
    }
    Open(builder.Sql("create index i on event_info(event_id)"));
    const std::size_t pages = mDir.Read("log.db").size() / PAGE;
    // Bad pages of the table and of the index, with good ones between them and at their ends.
    for (const std::size_t page : {pages * 35 / 100, pages * 45 / 100, pages * 55 / 100, pages - 4, pages - 2}) {
        Damage(page * PAGE, PAGE);
    }
    std::string each;
    for (const std::int32_t id : ids) {
        each += AskEach(id, id);
    }
    EXPECT_EQ(Visit(FewLines({1, INT32_MAX, 0, false})), each);
    EXPECT_GT(each.size(), 5000U);
    EXPECT_EQ(mReading, Reading::BROKEN_OFF);
}

TEST_F(EventLogSearchTest, LogThatCannotBeAskedIsToldForEachId)
{
    Open(EventLogBuilder().Row({10, 7, "", ""}).Sql("drop table event_version"));
    EXPECT_EQ(Visit({7, 8, 0, false}), "");
    EXPECT_EQ(mReading, Reading::UNREADABLE);
    EXPECT_EQ(mLog.Lines().size(), 2U);
    mLog.Clear();
    Visit({INT32_MIN, INT32_MAX, 0, false});
    EXPECT_EQ(mLog.Lines().size(), EventLogSearch::LONGEST_LOGGED_RANGE);
}

TEST_F(EventLogSearchTest, ChangeOfTheLogIsSeenByTheNextVisit)
{
    Open(ManyRows(10));
    const EventLogSearch::Query query{1, 1, 0, false, {NumberQuestion::Of("a")}};
    EXPECT_EQ(Visit(query), "1 1; ");
    EventLogBuilder::Run(mPath, "delete from event_info where event_id = 1");
    EXPECT_EQ(Visit(query), "");
}

TEST_F(EventLogSearchTest, RowsStayWhileTheyAreShown)
{
    Open(ManyRows(100));
    std::uint64_t sum = 0;
    mSearch.Visit({1, 1, 0, false, {NumberQuestion::Of("a")}}, "1", [&](const EventRows& rows) {
        EventLogBuilder::Run(mPath, "delete from event_info");
        Visit({2, 2, 0, false}); // reads the log anew
        sum = rows.Sum(0);
        return true;
    });
    EXPECT_EQ(sum, 550U);
}

} // namespace
