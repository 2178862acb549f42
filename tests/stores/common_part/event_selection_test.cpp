#include "arborist/stores/common_part/event_selection.h"

#include <gmock/gmock.h>
#include <json/value.h>

#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/stores/sql/sql_database.h"
#include "tests/stores/common_part/row_texts.h"
#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr std::int64_t NOW = 1700000000;
constexpr std::int64_t DAY = 86400;

EventIdList Ids(std::initializer_list<std::int32_t> numbers)
{
    EventIdList ids;
    for (const std::int32_t number : numbers) {
        ids.Append(number, number);
    }
    return ids;
}

class EventSelectionTest : public testing::Test {
protected:
    EventSelectionTest() { mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW)); }

    static std::vector<Json::Value> Select(const EventIdList& ids, const std::string& path)
    {
        std::vector<Json::Value> rows;
        EventSelection::GetLumbraDataByFilter(ids, path, rows);
        return rows;
    }

    std::vector<std::string> Fetch(const EventIdList& ids) const { return TextsOf(Select(ids, mPath)); }

    static std::int64_t Version(const std::string& path)
    {
        FT::sql::SqlDatabase database;
        if (!path.empty()) {
            database.Open(path);
        }
        return EventSelection::QueryVersion(database);
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::string mPath = mDir.Path("log.db");
};

TEST_F(EventSelectionTest, StatementSpellsTheIdsAndLooksBackThirtyDays)
{
    EXPECT_EQ(EventSelection::GenerateSql(Ids({3, 5}), "BASE "), "BASE  ( event_info.event_id = 3 OR event_info.event_id = 5) AND "
                                      "event_info_flow.occurrence_time > 1697408000");
}

TEST_F(EventSelectionTest, StatementWithoutIdsTakesTheDefaultClassOfSevenDays)
{
    EXPECT_EQ(EventSelection::GenerateSql({}, "BASE "), "BASE ( event_info.event_id >= 902000000 AND event_info.event_id < 902500000 OR "
                             "event_info.event_id = 902500007 )  AND event_info_flow.occurrence_time > 1699395200");
}

TEST_F(EventSelectionTest, StatementEndsAtTheLastMomentThatCounts)
{
    mSettings.Set(Settings::AS_OF, "1699999999");
    EXPECT_THAT(EventSelection::GenerateSql(Ids({3}), "BASE "),
        testing::EndsWith(" AND event_info_flow.occurrence_time <= 1699999999"));
    EventLogBuilder().Rows({{1699999999, 3, "", "{\"a\":1}"}, {1700000000, 3, "", "{\"a\":2}"}}).WriteTo(mPath);
    EXPECT_EQ(Fetch(Ids({3})).size(), 1U);
}

TEST_F(EventSelectionTest, EventThatNoTimeNamesIsMissedUnlessItsOwnTimeIsLaterThanCounts)
{
    EventLogBuilder().Rows({{NOW - 2, 3, "", "{\"a\":1}"}, {NOW, 3, "", "{\"a\":2}"}})
        .Sql("update event_info_flow set event_pid = 9 where _ID = 2").WriteTo(mPath);
    const auto isWhole = [this](const std::string& last) {
        mSettings.Set(Settings::AS_OF, last);
        std::vector<Json::Value> rows;
        bool whole = false;
        EventSelection::GetLumbraDataByFilter(Ids({3}), mPath, rows, &whole);
        return whole;
    };
    EXPECT_FALSE(isWhole(""));
    EXPECT_FALSE(isWhole(std::to_string(NOW)));
    EXPECT_TRUE(isWhole(std::to_string(NOW - 1)));
}

TEST_F(EventSelectionTest, DefaultClassHasItsBounds)
{
    EventLogBuilder()
        .Rows({{NOW - 1, 901999999, "", ""}, {NOW - 2, 902000000, "", ""}, {NOW - 3, 902499999, "", ""},
            {NOW - 4, 902500000, "", ""}, {NOW - 5, 902500007, "", ""}, {NOW - 8 * DAY, 902000000, "", ""}})
        .WriteTo(mPath);
    EXPECT_THAT(Fetch({}), ElementsAre("occurrence_time=1699999998", "occurrence_time=1699999997",
        "occurrence_time=1699999995"));
}

TEST_F(EventSelectionTest, EventAtTheFloorIsOutAndOneSecondLaterIn)
{
    EventLogBuilder().Rows({{NOW - 30 * DAY, 1, "", ""}, {NOW - 30 * DAY + 1, 1, "", ""}}).WriteTo(mPath);
    EXPECT_THAT(Fetch(Ids({1})), ElementsAre("occurrence_time=1697408001"));
}

TEST_F(EventSelectionTest, EventWithoutATimeIsOut)
{
    EventLogBuilder().Row({NOW, 1, "", ""}).Sql("insert into event_info values (2, 1, '{}', 1)").WriteTo(mPath);
    EXPECT_THAT(Fetch(Ids({1})), ElementsAre("occurrence_time=1700000000"));
}

TEST_F(EventSelectionTest, RowsPairOnTheEventAndNotOnTheKeys)
{
    EventLogBuilder()
        .Row({NOW, 1, "", R"({"a":1})"})
        .Sql("insert into event_info_flow values (9, 1, 1699999990)")
        .WriteTo(mPath);
    EXPECT_THAT(Fetch(Ids({1})), ElementsAre("a=1 occurrence_time=1700000000", "a=1 occurrence_time=1699999990"));
}

TEST_F(EventSelectionTest, MemberOfTheTimesNameIsOverwritten)
{
    EventLogBuilder().Row({NOW, 1, "", R"({"occurrence_time":"x","a":"b"})"}).WriteTo(mPath);
    EXPECT_THAT(Fetch(Ids({1})), ElementsAre("a=b occurrence_time=1700000000"));
}

TEST_F(EventSelectionTest, ExtraThatIsNoObjectLeavesTheTimeAlone)
{
    EventLogBuilder log;
    for (const char* extra : {"", "7", "[1]", "\"text\"", "null", "broken"}) {
        log.Row({NOW, 1, "", extra});
    }
    log.WriteTo(mPath);
    EXPECT_THAT(Fetch(Ids({1})), testing::AllOf(testing::SizeIs(6), testing::Each("occurrence_time=1700000000")));
}

TEST_F(EventSelectionTest, TotalOfAStatisticIsDroppedAndItsSinglesAreKept)
{
    EventLogBuilder()
        .Rows({{NOW, 1, "", R"({"CASENAME":"GAME_LAG_RATIO","FIELDNAME":"TotalCount"})"},
            {NOW, 1, "", R"({"CASENAME":"GAME_LAG_RATIO","FIELDNAME":"Other"})"},
            {NOW, 1, "", R"({"CASENAME":"GAME_LAG_RATIO"})"}, {NOW, 1, "", R"({"FIELDNAME":"TotalCount"})"}})
        .WriteTo(mPath);
    EXPECT_THAT(Fetch(Ids({1})), ElementsAre("CASENAME=GAME_LAG_RATIO FIELDNAME=Other occurrence_time=1700000000",
        "CASENAME=GAME_LAG_RATIO occurrence_time=1700000000", "FIELDNAME=TotalCount occurrence_time=1700000000"));
}

TEST_F(EventSelectionTest, MembersOfTheStatisticsTestMayHaveAnyShape)
{
    EventLogBuilder()
        .Rows({{NOW, 1, "", R"({"CASENAME":{},"FIELDNAME":[]})"}, {NOW, 1, "", R"({"CASENAME":1,"FIELDNAME":null})"}})
        .WriteTo(mPath);
    EXPECT_EQ(Select(Ids({1}), mPath).size(), 2u);
}

TEST_F(EventSelectionTest, VersionNarrowsTheSelectionToItsNewestRow)
{
    EventLogBuilder()
        .Rows({{NOW - 1, 1, "v1", ""}, {NOW - 2, 1, "v2", ""}})
        .Sql("insert into event_version values (7, 'v1')")
        .Sql("insert into event_info values (3, 1, '', 7)")
        .Sql("insert into event_info_flow values (3, 3, 1699999997)")
        .WriteTo(mPath);
    mSettings.Set(Settings::VERSION_NAME, "v1");
    EXPECT_EQ(Version(mPath), 7);
    EXPECT_THAT(Fetch(Ids({1})), ElementsAre("occurrence_time=1699999997"));
}

TEST_F(EventSelectionTest, VersionIsTheFirstRowNumberThatIsNotZero)
{
    // Newest first, a text comes before numbers; one that is no number reads as zero.
    EventLogBuilder().Row({NOW, 1, "v1", ""})
        .Sql("drop table event_version").Sql("create table event_version(_ID, VERSION_NAME)")
        .Sql("insert into event_version values (5, 'v1'), ('x', 'v1'), (7, 'v1'), ('0', 'v1'), (0, 'v1')")
        .WriteTo(mPath);
    mSettings.Set(Settings::VERSION_NAME, "v1");
    EXPECT_EQ(Version(mPath), 7);
    EventLogBuilder::Run(mPath, "delete from event_version where _ID in (5, 7)");
    EXPECT_EQ(Version(mPath), 0);
}

TEST_F(EventSelectionTest, UnknownOrEmptyVersionNarrowsNothing)
{
    EventLogBuilder().Rows({{NOW, 1, "v1", ""}, {NOW, 1, "v2", ""}}).WriteTo(mPath);
    EXPECT_EQ(Select(Ids({1}), mPath).size(), 2u);
    mSettings.Set(Settings::VERSION_NAME, "v3");
    EXPECT_EQ(Select(Ids({1}), mPath).size(), 2u);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_DEBUG),
        testing::Contains("FUNc:CommonPartDbHelper::QueryVersion: version name: v3"));
}

TEST_F(EventSelectionTest, VersionOfAClosedDatabaseIsAnError)
{
    EXPECT_EQ(Version(""), 0);
    EXPECT_THAT(mLog.Lines(), ElementsAre(
        "FUNc:CommonPartDbHelper::QueryVersion: database was not exist, open database failed."));
}

TEST_F(EventSelectionTest, MissingVersionTableCountsAsNoVersion)
{
    EventLogBuilder().Row({NOW, 1, "v1", ""}).Sql("drop table event_version").WriteTo(mPath);
    mSettings.Set(Settings::VERSION_NAME, "v1");
    EXPECT_EQ(Select(Ids({1}), mPath).size(), 1u);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(HasSubstr("no such table: event_version")));
}

TEST_F(EventSelectionTest, VersionNameThatIsSqlChangesNothingInTheLog)
{
    EventLogBuilder().Row({NOW, 1, "v1", ""}).WriteTo(mPath);
    const std::string before = mDir.Read("log.db");
    mSettings.Set(Settings::VERSION_NAME, "x'; delete from event_info; pragma user_version = 3; --");
    EXPECT_EQ(Select(Ids({1}), mPath).size(), 1u);
    EXPECT_EQ(mDir.Read("log.db"), before);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(HasSubstr("sql failed: not authorized")));
}

TEST_F(EventSelectionTest, MissingLogComesIntoBeingEmptyAndLacksItsTables)
{
    EXPECT_THAT(Fetch(Ids({1})), IsEmpty());
    EXPECT_TRUE(mDir.Has("log.db"));
    EXPECT_EQ(mDir.Read("log.db"), "");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
        ElementsAre("FUNc:CommonPartDbHelper::GetLumbraDataByFilter: lumbra db not exist or table event_info not exist "
                    "or table event_info_flow not exist."));
}

TEST_F(EventSelectionTest, EitherTableMissingIsTheSame)
{
    EventLogBuilder().Row({NOW, 1, "", ""}).Sql("drop table event_info_flow").WriteTo(mPath);
    EXPECT_THAT(Fetch(Ids({1})), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), testing::SizeIs(1));
}

TEST_F(EventSelectionTest, LogThatCannotBeOpenedIsNamedByItsLastElement)
{
    EXPECT_THAT(Select(Ids({1}), mDir.MakeDir("a/log.db")), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:CommonPartDbHelper::GetLumbraDataByFilter: open db log.db fail."));
}

TEST_F(EventSelectionTest, FileThatIsNoDatabaseLacksItsTables)
{
    mDir.Write("log.db", std::string(4096, 'x'));
    EXPECT_THAT(Fetch(Ids({1})), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), testing::SizeIs(1));
    EXPECT_EQ(mDir.Read("log.db"), std::string(4096, 'x'));
}

TEST_F(EventSelectionTest, MissingColumnCountsAsNoRows)
{
    EventLogBuilder().Row({NOW, 1, "", ""}).Sql("alter table event_info rename column extra to other").WriteTo(mPath);
    EXPECT_THAT(Fetch(Ids({1})), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_INFO),
        ElementsAre("FUNc:CommonPartDbHelper::QueryDataSet: event_info table record is empty."));
}

TEST_F(EventSelectionTest, DirectoryOfTheApplicationIsLogged)
{
    EventLogBuilder().Row({NOW, 1, "", ""}).WriteTo(mPath);
    mSettings.Set(Settings::APP_FILE_DIR, "/app");
    Fetch(Ids({1}));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_DEBUG),
        testing::Contains("FUNc:CommonPartDbHelper::GetLumbraDataByFilter: AppFileDir: /app"));
}

TEST_F(EventSelectionTest, ComputedTextsFarBeyondTheFileAreGivenUp)
{
    EventLogBuilder().Row({NOW, 1, "", ""}).Sql(
        "drop table event_info; create table event_info(_ID integer primary key, event_id integer, extra text as "
        "(hex(zeroblob(8000000))), version_id integer); with recursive n(i) as (select 1 union all select i + 1 from "
        "n where i < 9) insert into event_info select i, 1, 1 from n; insert into event_info_flow select _ID, _ID, " +
        std::to_string(NOW) + " from event_info where _ID > 1").WriteTo(mPath);
    EXPECT_EQ(Select(Ids({1}), mPath).size(), 4U);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR).front(),
        "FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: query aborted");
}

// More rows, and longer ones, than are built at a time.
TEST_F(EventSelectionTest, ManyRowsKeepTheirTextsTimesAndOrder)
{
    EventLogBuilder builder;
    std::vector<std::string> expected;
    std::vector<std::string> broken;
    for (int row = 1; row <= 3000; ++row) {
        const std::string time = " occurrence_time=" + std::to_string(NOW - row);
        if (row % 7 == 0) {
            broken.push_back("{" + std::to_string(row));
            builder.Row({NOW - row, 1, "", broken.back()});
            expected.push_back(time.substr(1));
        } else if (row % 11 == 0) {
            builder.Row({NOW - row, 1, "", R"({"CASENAME":"GAME_LAG_RATIO","FIELDNAME":"TotalCount"})"});
        } else {
            const std::string text = std::to_string(row) + std::string(row % 500 == 1 ? 70000U : static_cast<std::size_t>(row % 40), 'x');
            builder.Row({NOW - row, 1, "", "{\"a\":\"" + text + "\"}"});
            expected.push_back("a=" + text + time);
        }
    }
    builder.WriteTo(mPath);
    EXPECT_EQ(Fetch(Ids({1})), expected);
    const std::vector<std::string> lines = mLog.Lines(FT::LEVEL_ERROR);
    ASSERT_EQ(lines.size(), broken.size());
    for (std::size_t line = 0; line < lines.size(); ++line) {
        EXPECT_THAT(lines[line], testing::HasSubstr("jsonStr[" + broken[line] + "]"));
    }
}

TEST_F(EventSelectionTest, LogOfALiveServiceStaysAsItIs)
{
    EventLogBuilder().Row({NOW, 1, "", ""}).WriteTo(mPath);
    EventLogBuilder::Run(mPath, "pragma journal_mode = wal");
    // A service that crashed leaves changes that aren't in the file yet.
    {
        FT::sql::SqlDatabase service;
        service.Open(mPath);
        EventLogBuilder::Run(mPath, "insert into event_info values (2, 1, '{\"a\":1}', 1);"
                                    "insert into event_info_flow values (2, 2, 1699999999)");
        mDir.MakeDir("left");
        std::filesystem::copy_file(mPath, mDir.Path("left/log.db"));
        std::filesystem::copy_file(mPath + "-wal", mDir.Path("left/log.db-wal"));
    }
    const std::string log = mDir.Read("left/log.db");
    const std::string changes = mDir.Read("left/log.db-wal");
    ASSERT_FALSE(changes.empty());
    EXPECT_EQ(Select(Ids({1}), mDir.Path("left/log.db")).size(), 2u);
    EXPECT_EQ(mDir.Read("left/log.db"), log);
    EXPECT_EQ(mDir.Read("left/log.db-wal"), changes);
}

TEST_F(EventSelectionTest, LeavesNoFileBesideTheLog)
{
    EventLogBuilder().Row({NOW, 1, "", ""}).WriteTo(mPath);
    EventLogBuilder::Run(mPath, "pragma journal_mode = wal");
    const std::string before = mDir.Read("log.db");
    Fetch(Ids({1}));
    EXPECT_FALSE(mDir.Has("log.db-wal"));
    EXPECT_FALSE(mDir.Has("log.db-journal"));
    EXPECT_EQ(mDir.Read("log.db"), before);
}

} // namespace
