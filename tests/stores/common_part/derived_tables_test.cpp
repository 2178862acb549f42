#include "arborist/stores/common_part/derived_tables.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <random>

#include <gmock/gmock.h>
#include <json/value.h>

#include "arborist/frame/log.h"
#include "tests/stores/common_part/derived_tables_fixture.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST_F(DerivedTablesTest, TemporaryOnesHoldTheSameAndLeaveNothingElse)
{
    mSettings.Set(Settings::TEMPORARY_STORES, "1");
    for (const std::size_t rows : {1U, 10U}) {
        ASSERT_TRUE(BuildFromExtras(
            std::vector<std::string>(rows, R"({"A":5})"), {std::make_shared<Param>(Param{"A", "int", "1", ""})}));
        EXPECT_EQ(Rows("select A from T"), std::vector<std::string>(rows, "5"));
    }
    EXPECT_FALSE(mDir.Has("root/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db-journal"));
    EXPECT_FALSE(mDir.Has("root/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db-wal"));
}

TEST_F(DerivedTablesTest, ColumnsAreThoseOfTheFirstItemInTheOrderOfTheirIdsAndTheTime)
{
    LogExtras({R"({"b":"x","a":1})"});
    auto noId = ParamOf("", "int");
    noId->id = "0";
    EXPECT_TRUE(Build({BeanOf("T", {EventsOf("7", "7", {ParamOf("b", "STRING"), ParamOf("a", "Int"), ParamOf("c",
        "double"), noId}),
        EventsOf("8", "8", {ParamOf("d", "int")})})}));
    EXPECT_THAT(Schema("T"),
        ElementsAre("CREATE TABLE T (_ID integer primary key autoincrement, a Int NOT NULL DEFAULT 0, "
        "b STRING NOT NULL DEFAULT '', c double, occurrence_time int NOT NULL DEFAULT 0)"));
    EXPECT_THAT(Rows("select * from T"), ElementsAre("1|1|x|null|1699999999"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), IsEmpty());
}

TEST_F(DerivedTablesTest, EachWordForANumberOrTextHasItsDefault)
{
    EXPECT_TRUE(BuildFromExtras({"{}"}, {ParamOf("a", "integer"), ParamOf("b", "long"), ParamOf("c", "text"),
        ParamOf("d", "float")}));
    EXPECT_THAT(Rows("select a, b, c, d from T"), ElementsAre("0|0||null"));
}

TEST_F(DerivedTablesTest, FirstItemWithoutParametersGivesKeyAndTimeOnly)
{
    EXPECT_TRUE(BuildFromExtras({R"({"a":1})"}, {}));
    EXPECT_THAT(Schema("T"), ElementsAre(
        "CREATE TABLE T (_ID integer primary key autoincrement, occurrence_time int NOT NULL DEFAULT 0)"));
    EXPECT_THAT(Rows("select * from T"), ElementsAre("1|1699999999"));
}

TEST_F(DerivedTablesTest, MembersFindTheirColumnsInLowerCaseButNeverTheKey)
{
    EXPECT_TRUE(BuildFromExtras({R"({"COUNT":5,"_id":77,"_ID":78})"}, {ParamOf("count", "int")}));
    EXPECT_THAT(Rows("select _ID, count from T"), ElementsAre("1|5"));
}

TEST_F(DerivedTablesTest, OfMembersThatDifferInCaseOnlyTheLaterNameWins)
{
    EXPECT_TRUE(BuildFromExtras({R"({"count":1,"COUNT":2,"Count":3})"}, {ParamOf("count", "int")}));
    EXPECT_THAT(Rows("select count from T"), ElementsAre("1"));
}

TEST_F(DerivedTablesTest, NumbersAreWrittenByTheirKind)
{
    EXPECT_TRUE(BuildFromExtras({R"({"v":1.0})", R"({"v":1e3})", R"({"v":-2147483649})", R"({"v":1.5})",
        R"({"v":9223372036854775807})", R"({"v":18446744073709551615})", R"({"v":1e40})"}, {ParamOf("v", "blob")}));
    EXPECT_THAT(Rows("select v, typeof(v) from T"), ElementsAre("1|integer", "1000|integer", "-2147483649|integer",
        "1.5|real", "9223372036854775807|integer", "1.84467440737096e+19|real", "1.0e+40|real"));
}

TEST_F(DerivedTablesTest, ValueThatIsNeitherTextNorNumberLeavesItsColumnOut)
{
    EXPECT_TRUE(BuildFromExtras({R"({"i":true,"s":null,"d":[1],"x":false})"},
        {ParamOf("i", "int"), ParamOf("s", "string"), ParamOf("d", "double")}));
    EXPECT_THAT(Rows("select i, s, d from T"), ElementsAre("0||null"));
    const std::string line = Line("UpdateValuesOfSetDataToTable: lumbra data type is not conventional");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre(line, line, line));
}

TEST_F(DerivedTablesTest, RowWithItsTimeAloneTakesTheDefaults)
{
    EXPECT_TRUE(BuildFromExtras({""}, {ParamOf("i", "long"), ParamOf("s", "TEXT"), ParamOf("f", "float")}));
    EXPECT_THAT(Rows("select * from T"), ElementsAre("1|null|0||1699999999"));
}

TEST_F(DerivedTablesTest, QuoteInATextCostsItsRowOnly)
{
    EXPECT_TRUE(BuildFromExtras({R"({"s":"a"})", R"({"s":"it's"})", R"({"s":"b"})", R"({"s":"c"})", R"({"s":"d"})"},
        {ParamOf("s", "string")}));
    EXPECT_THAT(Rows("select _ID, s from T"), ElementsAre("1|a", "2|b", "3|c", "4|d"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(HasSubstr("ExecuteNoCallback sql failed: near \"s\""),
        Line("IsSetedDataToTable: execute sql fail.")));
}

TEST_F(DerivedTablesTest, TextThatIsSqlRunsInItsRowsTransactionAndReachesNoOtherFile)
{
    LogExtras({R"({"s":"a"})", R"({"s":"b'); delete from T; --"})", R"({"s":"c"})",
        R"x({"s":"d'); attach 'log.db' as l; delete from l.event_info; --"})x", R"({"s":"e"})"});
    const std::string before = mDir.Read("log.db");
    EXPECT_TRUE(Build({BeanOf("T", {EventsOf("7", "7", {ParamOf("s", "string")})})}));
    EXPECT_THAT(Rows("select s from T"), ElementsAre("c", "d", "e"));
    EXPECT_EQ(mDir.Read("log.db"), before);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(HasSubstr("sql failed: not authorized"),
        Line("IsSetedDataToTable: execute sql fail.")));
    EXPECT_FALSE(std::filesystem::exists(mDerivedPath + "-wal"));
}

TEST_F(DerivedTablesTest, TextThatDropsTheTableLosesItForTheRowsBehind)
{
    EXPECT_TRUE(BuildFromExtras({R"({"s":"a"})", R"({"s":"b'); drop table T; --"})", R"({"s":"c"})", R"({"s":"d"})"},
        {ParamOf("s", "string")}));
    EXPECT_THAT(Schema("T"), IsEmpty());
    const auto missing = HasSubstr("sql failed: no such table: T");
    const std::string fail = Line("IsSetedDataToTable: execute sql fail.");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(missing, fail, missing, fail));
}

TEST_F(DerivedTablesTest, FileIsLeftWithoutAnyOtherBesideIt)
{
    EXPECT_TRUE(BuildFromExtras({"{}", "{}", "{}", "{}", "{}", R"({"s":"'(;"})"}, {ParamOf("s", "string")}));
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(mDerivedPath).parent_path())) {
        files.push_back(entry.path().filename().string());
    }
    EXPECT_THAT(files, ElementsAre("JankEventDb.db"));
    EXPECT_THAT(DatabaseRows(mDerivedPath, "pragma journal_mode"), ElementsAre("delete"));
}

TEST_F(DerivedTablesTest, RangesOfMillionsSelectTheSame)
{
    EventLogBuilder().Rows({{NOW - 1, 5, "", ""}, {NOW - 2, 2000000000, "", ""}, {NOW - 3, -1, "",
        ""}}).WriteTo(mLogPath);
    EXPECT_TRUE(Build({BeanOf("T", {EventsOf("1", "2147483647")})}));
    EXPECT_THAT(Rows("select occurrence_time from T order by 1"), ElementsAre("1699999998", "1699999999"));
}

TEST_F(DerivedTablesTest, BeanWithoutEventsLeavesItsTableEmptyAndLogs)
{
    LogExtras({"{}"});
    EXPECT_FALSE(Build({BeanOf("T", {EventsOf("8", "8")})}));
    EXPECT_THAT(Rows("select count(*) from T"), ElementsAre("0"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
        ElementsAre(Line("IsSuccessCreatePerfDb: createJankDB : Get lumbra DB fail-lumbraDatas is null.")));
}

TEST_F(DerivedTablesTest, NamesThatAreNoSqlFailWithTheirLines)
{
    LogExtras({"{}"});
    EXPECT_FALSE(Build({BeanOf("a b", {EventsOf("7", "7")}), BeanOf("T", {EventsOf("7", "7", {ParamOf("order",
        "int")})}),
        BeanOf("'", {EventsOf("7", "7")}), BeanOf("", {EventsOf("7", "7")})}));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(
        HasSubstr("sql failed"), Line("IsSuccessCreatePerfDb: createJankDB : Delete all tables fail."),
        HasSubstr("sql failed"), Line("IsSuccessCreatePerfDb: createJankDB : Step Create table T fail."),
        HasSubstr("sql failed"), Line("IsSuccessCreatePerfDb: createJankDB : Delete all tables fail."),
        HasSubstr("sql failed"), Line("IsSuccessCreatePerfDb: createJankDB : Delete all tables fail.")));
}

TEST_F(DerivedTablesTest, QuotedNameMakesATableThatIsNotFoundAgain)
{
    LogExtras({"{}"});
    EXPECT_FALSE(Build({BeanOf("\"a b\"", {EventsOf("7", "7")})}));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(Line("IsSetedDataToTable: table \"a b\" not exist."),
        Line("IsSuccessCreatePerfDb: insert data into table \"a b\" fail.")));
}

TEST_F(DerivedTablesTest, QuotedColumnIsMadeAndStaysAtItsDefault)
{
    EXPECT_TRUE(BuildFromExtras({R"({"\"my col\"":"x"})", "{}", "{}", "{}", "{}"}, {ParamOf("\"my col\"", "string")}));
    EXPECT_THAT(Rows("select \"my col\" from T where _ID = 1"), ElementsAre("x"));
}

TEST_F(DerivedTablesTest, DatabaseThatCannotBeOpenedIsToldByTheBuild)
{
    mDir.MakeDir("root/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db");
    LogExtras({"{}"});
    EXPECT_FALSE(Build({BeanOf("T", {EventsOf("7", "7")}), BeanOf("P", {EventsOf("7", "7")}, "lumbraPlusData")}));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(Line("IsSuccessCreatePerfDb: open JankEventDb fail."),
        Line("IsSuccessCreateLumbraPlusDb: open JankEventDb fail.")));
}

TEST_F(DerivedTablesTest, FileThatIsNoDatabaseIsToldByTheBuild)
{
    mDir.Write("root/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db", std::string(5000, 'x'));
    LogExtras({"{}"});
    EXPECT_FALSE(Build({BeanOf("T", {EventsOf("7", "7")})}));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        testing::Contains(Line("IsSuccessCreatePerfDb: createJankDB : Delete all tables fail.")));
}

TEST_F(DerivedTablesTest, PlusBeanGetsItsOneRowAndReadsNoLog)
{
    EXPECT_TRUE(Build({BeanOf("P", {EventsOf("7", "7", {ParamOf("ERRCODE", "int"), ParamOf("device_type", "string"),
        ParamOf("other", "string"), ParamOf("EXTERRINFO", "string"), ParamOf("SUBERRCODE", "int"),
        ParamOf("LU_TRACE_ID", "text")})}, "lumbraPlusData")}));
    EXPECT_THAT(
        Rows("select ERRCODE, device_type, other, EXTERRINFO, SUBERRCODE, LU_TRACE_ID, occurrence_time from P"),
        ElementsAre("1|tv||false|2|123456789|1700000000"));
    EXPECT_FALSE(mDir.Has("log.db"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(DerivedTablesTest, PlusBeanTellsItsOwnFailures)
{
    EXPECT_FALSE(Build({BeanOf("P", {EventsOf("7", "7", {ParamOf("select", "int")})}, "lumbraPlusData"),
        BeanOf("1", {EventsOf("7", "7")}, "lumbraPlusData"), BeanOf("\"p\"", {EventsOf("7", "7")}, "lumbraPlusData")}));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(
        HasSubstr("sql failed"), Line("IsSuccessCreateLumbraPlusDb: createJankDB : Step 3 Create table fail."),
        HasSubstr("sql failed"), Line("IsSuccessCreateLumbraPlusDb: createJankDB : Delete all tables fail."),
        Line("IsSetedDataToTable: table \"p\" not exist."),
        Line("IsSuccessCreateLumbraPlusDb: insert data into table \"p\" fail.")));
}

TEST_F(DerivedTablesTest, TableWithoutColumnsIsMadeAndNotFilled)
{
    EXPECT_FALSE(DerivedTables::BuildFixed({"T", {}}));
    EXPECT_THAT(mLog.Lines(), ElementsAre(Line("IsSuccessCreateLumbraPlusDb: insert data into table T fail.")));
    EXPECT_THAT(Rows("select count(*) from T"), ElementsAre("0"));
}

TEST_F(DerivedTablesTest, ColumnThatIsNoneIsLeftOut)
{
    EXPECT_TRUE(DerivedTables::BuildFixed({"T", {nullptr, ParamOf("DEVICE_TYPE", "string")}}));
    EXPECT_THAT(Rows("select * from T"), ElementsAre("1|tv"));
}

// ---- Against plain SQL with SQLite's own JSON functions. ----

struct RandomLog {
    explicit RandomLog(unsigned int seed) : random(seed) {}

    std::size_t Pick(std::size_t count) { return random() % count; }

    std::string Value()
    {
        static const char* const VALUES[] = {"1", "-5", "2147483648", "2.5", "1e3", "0.0", "\"text\"", "\"it's\"",
            "\"\"",
            "\"x'; drop\"", "true", "null", "[1]", "{\"n\":1}", "\"a(b\"", "-0.25"};
        return VALUES[Pick(std::size(VALUES))];
    }

    std::string Extra()
    {
        static const char* const OTHERS[] = {"", "no json", "[1,2]", "7", "\"t\"", "null", "{\"num\":"};
        if (Pick(8) == 0) {
            return OTHERS[Pick(std::size(OTHERS))];
        }
        std::string members;
        for (const char* name : {"NUM", "txt", "Real", "other"}) {
            if (Pick(4) != 0) {
                members += (members.empty() ? "" : ",") + ("\"" + std::string(name) + "\":" + Value());
            }
        }
        return "{" + members + "}";
    }

    std::mt19937 random;
};

// One column of the expected row: the member as SQLite's JSON reads it, and the default for what is no text or number.
std::string Expected(const std::string& member, const std::string& otherwise)
{
    const std::string object = "(case when json_valid(extra) then case json_type(extra) when 'object' then extra "
                               "else '{}' end else '{}' end)";
    return "case when json_type(" + object + ", '$." + member + "') in ('text', 'integer', 'real') then json_extract(" +
        object + ", '$." + member + "') else " + otherwise + " end";
}

class RandomDerivedTables : public DerivedTablesTest, public testing::WithParamInterface<unsigned int> {};

TEST_P(RandomDerivedTables, HoldWhatPlainSqlSelects)
{
    SCOPED_TRACE("seed " + std::to_string(GetParam()));
    RandomLog random(GetParam());
    EventLogBuilder log;
    const std::size_t count = 1 + random.Pick(60);
    for (std::size_t row = 0; row < count; ++row) {
        log.Row({NOW - static_cast<std::int64_t>(random.Pick(40)) * 86400, static_cast<std::int64_t>(random.Pick(4)),
            random.Pick(2) == 0 ? "v1" : "v2", random.Extra()});
    }
    log.WriteTo(mLogPath);
    const bool hasVersion = random.Pick(2) == 0;
    mSettings.Set(Settings::VERSION_NAME, hasVersion ? "v1" : "");
    // Sometimes a wide range, for the other form of the selection.
    const bool isWide = random.Pick(2) == 0;
    Build({BeanOf("T", {EventsOf("1", isWide ? "1000003" : "3",
        {ParamOf("num", "int"), ParamOf("txt", "string"), ParamOf("REAL", "double")})})});
    // A text with a quote in a known column loses its row; the columns have the affinity of the table.
    const std::string columns = Expected("NUM", "0") + " as num, " + Expected("Real", "null") + " as real, " +
        Expected("txt", "''") + " as txt, occurrence_time";
    const std::string from = " from event_info join event_info_flow on event_pid = event_info._ID join "
        "event_version on version_id = event_version._ID where event_id between 1 and 3 and occurrence_time > " +
        std::to_string(NOW - 30 * 86400) + (hasVersion ? " and VERSION_NAME = 'v1'" : "");
    const std::string quotes = " where instr(coalesce(num, '') || coalesce(txt, '') || coalesce(real, ''), '''') = 0";
    EventLogBuilder::Run(mLogPath, "create table expected (num int, real double, txt string, occurrence_time int);"
        "insert into expected select * from (select " + columns + from + ")" + quotes);
    EXPECT_EQ(Rows("select num, real, txt, occurrence_time from T order by 4, 1, 2, 3"),
        DatabaseRows(mLogPath, "select num, real, txt, occurrence_time from expected order by 4, 1, 2, 3"));
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomDerivedTables, testing::Range(1U, 61U));

} // namespace
