#include "arborist/stores/common_part/command_rule_db_helper.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "arborist/frame/evidence.h"
#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "tests/support/case_name.h"
#include "tests/support/common_part_builder.h"
#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

struct CommandRuleDbHelperPeer {
    static void SetSteps(CommandRuleDbHelper& helper, std::uint64_t steps) { helper.mLimits = TextLimits({.steps = steps}); }
};

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class CommandRuleDbHelperTest : public testing::Test {
protected:
    using ParamList = CommandRuleDbHelper::ParamList;

    CommandRuleDbHelperTest() { EventLogBuilder::Run(mPath, "create table t(a, b); insert into t values (5, 'x')"); }

    ParamList Run(const std::string& sql, const ParamList& params, Evidence::Statement* record = nullptr)
    {
        EXPECT_TRUE(mHelper.IsOpenDbSuccess(mPath));
        return mHelper.RunSql(sql, params, false, nullptr, nullptr, record);
    }

    // Normalises the columns of one row from the days between its columns "start" and "end".
    ParamList Normalise(const std::string& row, const ParamList& params, const std::string& start = "start",
        const std::string& end = "start", Evidence::Statement* record = nullptr)
    {
        EXPECT_TRUE(mHelper.IsOpenDbSuccess(mPath));
        return mHelper.RunSql("select " + row, params, true, ParamOf(start, "long"), ParamOf(end, "long"), record);
    }

    static std::string Text(const ParamList& params)
    {
        std::string text;
        for (const auto& param : params) {
            text += (text.empty() ? "" : " ") + param->id + ":" + param->key + ":" + param->type + "=" + param->value;
        }
        return text;
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::string mPath = mDir.Path("a.db");
    CommandRuleDbHelper mHelper;
};

TEST_F(CommandRuleDbHelperTest, RowBeforeAStatementThatFailsStillCounts)
{
    EXPECT_EQ(Text(Run("select a from t; select nothing from t", {ParamOf("a", "int")})), "a:a:int=5");
    EXPECT_TRUE(mHelper.HasFailed());
}

TEST_F(CommandRuleDbHelperTest, IntervalWithoutColumnsIsMissing)
{
    Evidence::Statement record;
    EXPECT_TRUE(mHelper.IsOpenDbSuccess(mPath));
    EXPECT_THAT(mHelper.RunSql("select a from t", {ParamOf("a", "int")}, true, nullptr, nullptr, &record), IsEmpty());
    EXPECT_TRUE(mHelper.IsIntervalMissing());
    ASSERT_TRUE(record.interval.has_value());
    EXPECT_EQ(record.interval->startKey + record.interval->endKey, "");
}

TEST_F(CommandRuleDbHelperTest, OneRowFillsTheParametersAndComesBackAsCopies)
{
    const ParamList params = {ParamOf("a", "int"), nullptr, ParamOf("b", "string")};
    const ParamList result = Run("select a, b from t", params);
    EXPECT_EQ(Text(result), "a:a:int=5 b:b:string=x");
    EXPECT_EQ(params[0]->value, "5");
    EXPECT_NE(result[0], params[0]);
}

TEST_F(CommandRuleDbHelperTest, ColumnsAreTakenByTheirPlaceWhateverTheirNames)
{
    EXPECT_EQ(Text(Run("select b, a from t", {ParamOf("a", "int"), ParamOf("b", "string")})), "a:a:int=x b:b:string=5");
}

TEST_F(CommandRuleDbHelperTest, MissingColumnIsEmptyAndASurplusOneIsPassedOver)
{
    EXPECT_EQ(Text(Run("select a from t", {ParamOf("a", "int"), ParamOf("b", "string")})), "a:a:int=5 b:b:string=");
    EXPECT_EQ(Text(Run("select a, b from t", {ParamOf("a", "int")})), "a:a:int=5");
}

TEST_F(CommandRuleDbHelperTest, ColumnThatStandsTwiceIsReadAtItsLaterPlace)
{
    EXPECT_EQ(Text(Run("select 1, 2", {ParamOf("a", "int"), ParamOf("a", "int")})), "a:a:int=2 a:a:int=2");
}

TEST_F(CommandRuleDbHelperTest, AnyOtherNumberOfRowsGivesNothingAndKeepsTheValues)
{
    const auto param = ParamOf("a", "int");
    param->value = "old";
    EXPECT_THAT(Run("select 1 union select 2", {param}), IsEmpty());
    EXPECT_EQ(mHelper.GetRowCount(), 2u);
    EXPECT_THAT(Run("select a from t where a > 9", {param}), IsEmpty());
    EXPECT_THAT(Run("", {param}), IsEmpty());
    EXPECT_EQ(param->value, "old");
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(CommandRuleDbHelperTest, StatementThatFailsGivesNothing)
{
    EXPECT_THAT(Run("select x from t", {ParamOf("a", "int")}), IsEmpty());
    EXPECT_THAT(Run("no sql", {ParamOf("a", "int")}), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(HasSubstr("no such column: x"), HasSubstr("syntax error")));
}

TEST_F(CommandRuleDbHelperTest, FileThatIsMissingComesIntoBeingEmpty)
{
    EXPECT_TRUE(mHelper.IsOpenDbSuccess(mDir.Path("new.db")));
    EXPECT_THAT(mHelper.RunSql("select a from t", {ParamOf("a", "int")}, false, nullptr, nullptr), IsEmpty());
    EXPECT_EQ(mDir.Read("new.db"), "");
}

TEST_F(CommandRuleDbHelperTest, FileThatIsNoDatabaseSaysSoForEachStatement)
{
    mDir.Write("junk.db", std::string(5000, 'x'));
    for (int statement = 0; statement < 2; ++statement) {
        mLog.Clear();
        EXPECT_TRUE(mHelper.IsOpenDbSuccess(mDir.Path("junk.db")));
        EXPECT_THAT(mHelper.RunSql("select a from t", {ParamOf("a", "int")}, false, nullptr, nullptr), IsEmpty());
        EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(HasSubstr("Failed(26) to set cache size by"),
            HasSubstr("Failed(26) to set synchronous by"), HasSubstr("sql failed: file is not a database")));
    }
}

TEST_F(CommandRuleDbHelperTest, StatementWithoutEndIsBrokenOff)
{
    const std::string endless =
        "with recursive n(i) as (select 1 union all select i + 1 from n) select i from n";
    EXPECT_THAT(Run(endless, {ParamOf("a", "int")}), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(HasSubstr("sql failed: query aborted")));
    EXPECT_EQ(Text(Run("select a from t", {ParamOf("a", "int")})), "a:a:int=5");
}

TEST_F(CommandRuleDbHelperTest, StatementWithoutEndTakesNothingFromTheOthers)
{
    const std::string endless =
        "with recursive n(i) as (select 1 union all select i + 1 from n) select max(i) from n";
    const std::string longer =
        "with recursive n(i) as (select 1 union all select i + 1 from n where i < 2000) select max(i) as a from n";
    CommandRuleDbHelperPeer::SetSteps(mHelper, 100000);
    EXPECT_EQ(Text(Run(longer, {ParamOf("a", "int")})), "a:a:int=2000");
    EXPECT_THAT(Run("select nothing from t", {ParamOf("a", "int")}), IsEmpty()) << "a failure of another kind";
    EXPECT_THAT(Run(endless, {ParamOf("a", "int")}), IsEmpty());
    EXPECT_EQ(Text(Run(longer, {ParamOf("a", "int")})), "a:a:int=2000");
    EXPECT_THAT(Run(endless, {ParamOf("a", "int")}), IsEmpty());
    EXPECT_EQ(Text(Run(longer, {ParamOf("a", "int")})), "a:a:int=2000") << "it has steps of its own";
    EXPECT_EQ(Text(Run("select a from t", {ParamOf("a", "int")})), "a:a:int=5");
}

TEST_F(CommandRuleDbHelperTest, DirectoryCannotBeOpened)
{
    EXPECT_FALSE(mHelper.IsOpenDbSuccess(mDir.MakeDir("folder")));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_INFO), ElementsAre(HasSubstr("open db:")));
}

TEST_F(CommandRuleDbHelperTest, EmptyPathStandsForTheDerivedDatabase)
{
    mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("root"));
    EXPECT_FALSE(mHelper.IsOpenDbSuccess(""));
    mDir.MakeDir("root/Comms/Lumbra/zxdetectrepair/databases");
    EventLogBuilder::Run(mDir.Path("root/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db"), "create table j(a)");
    EXPECT_TRUE(mHelper.IsOpenDbSuccess(""));
    EXPECT_EQ(Text(mHelper.RunSql("select count(*) from j", {ParamOf("n", "int")}, false, nullptr, nullptr)),
        "n:n:int=0");
}

TEST_F(CommandRuleDbHelperTest, FileThatWasReplacedBetweenTwoRulesIsReadAnew)
{
    EXPECT_EQ(Text(Run("select a from t", {ParamOf("a", "int")})), "a:a:int=5");
    EventLogBuilder::Run(mDir.Path("b.db"), "create table t(a, b); insert into t values (6, 'y')");
    std::filesystem::rename(mDir.Path("b.db"), mPath);
    EXPECT_EQ(Text(Run("select a from t", {ParamOf("a", "int")})), "a:a:int=6");
    std::filesystem::remove(mPath);
    EXPECT_THAT(Run("select a from t", {ParamOf("a", "int")}), IsEmpty());
}

TEST_F(CommandRuleDbHelperTest, ChangeOfSomebodyElseIsSeenByTheNextRule)
{
    Run("select a from t", {ParamOf("a", "int")});
    EventLogBuilder::Run(mPath, "update t set a = 8");
    EXPECT_EQ(Text(Run("select a from t", {ParamOf("a", "int")})), "a:a:int=8");
}

TEST_F(CommandRuleDbHelperTest, OneDatabaseFollowsAnother)
{
    EventLogBuilder::Run(mDir.Path("b.db"), "create table t(a); insert into t values (6)");
    Run("select a from t", {ParamOf("a", "int")});
    EXPECT_TRUE(mHelper.IsOpenDbSuccess(mDir.Path("b.db")));
    EXPECT_EQ(Text(mHelper.RunSql("select a from t", {ParamOf("a", "int")}, false, nullptr, nullptr)), "a:a:int=6");
}

TEST_F(CommandRuleDbHelperTest, WhatAStatementSetsOnItsConnectionIsGoneForTheNext)
{
    Run("create temp table t as select 9 as a", {});
    EXPECT_EQ(Text(Run("select a from t", {ParamOf("a", "int")})), "a:a:int=5");
    Run("select 1; begin; delete from t; select 1", {});
    EXPECT_EQ(Text(Run("select count(*) from t", {ParamOf("n", "int")})), "n:n:int=1");
    Run("insert into t values (1, 2)", {});
    EXPECT_EQ(Text(Run("select total_changes()", {ParamOf("n", "int")})), "n:n:int=0");
}

TEST_F(CommandRuleDbHelperTest, StatementThatWritesWritesIntoItsDatabaseAlone)
{
    EventLogBuilder::Run(mDir.Path("log.db"), "create table e(a)");
    const std::string before = mDir.Read("log.db");
    EXPECT_THAT(Run("insert into t values (7, 'z')", {}), IsEmpty());
    EXPECT_THAT(Run("attach '" + mDir.Path("log.db") + "' as l; drop table l.e", {}), IsEmpty());
    EXPECT_THAT(DatabaseRows(mPath, "select a from t"), ElementsAre("5", "7"));
    EXPECT_EQ(mDir.Read("log.db"), before);
}

TEST_F(CommandRuleDbHelperTest, ColumnOfTheIntervalIsReadAtItsLastPlace)
{
    // A parameter that is value, start and end occurs three times among the fields, so that the row must have that many
    // columns.
    const auto param = ParamOf("v", "long");
    EXPECT_TRUE(mHelper.IsOpenDbSuccess(mPath));
    EXPECT_THAT(mHelper.RunSql("select 5", {param}, true, param, param), IsEmpty());
    EXPECT_TRUE(mHelper.IsOpenDbSuccess(mPath));
    EXPECT_EQ(Text(mHelper.RunSql("select 5, 5, 5", {param}, true, param, param)), "v:v:long=150");
}

struct ScaleCase { const char* name; const char* type; const char* value; const char* end; const char* result; };
void PrintTo(const ScaleCase& scaleCase, std::ostream* out) { *out << scaleCase.name; }
class NormalisedValue : public CommandRuleDbHelperTest, public testing::WithParamInterface<ScaleCase> {};

TEST_P(NormalisedValue, IsScaledToThirtyDays)
{
    const auto param = ParamOf("v", GetParam().type);
    param->value = "old";
    const ParamList result = Normalise(std::string(GetParam().value) + ", 1000000, " + GetParam().end, {param},
        "start", "end");
    ASSERT_EQ(result.size(), 1u);
    EXPECT_EQ(result[0], param);
    EXPECT_EQ(param->value, GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Table, NormalisedValue, testing::Values(
    ScaleCase{"NoDaysTimesThirty", "long", "5", "1000000", "150"},
    ScaleCase{"TwoDays", "long", "6", "1200000", "60"},
    ScaleCase{"EndBeforeStart", "long", "6", "800000", "60"},
    ScaleCase{"TruncatesTowardsZero", "int", "-5", "1600000", "-21"},
    ScaleCase{"WrapsAt32Bits", "int", "100000000", "1000000", "-1294967296"},
    ScaleCase{"WrapsBeforeItIsDivided", "int", "100000000", "1200000", "-431655765"},
    ScaleCase{"LongWrapsBeforeItIsDivided", "long", "100000000", "1200000", "-431655765"},
    ScaleCase{"LongIsReadWith32Bits", "long", "4294967301", "1000000", "150"},
    ScaleCase{"FloatHasSevenDigits", "float", "1234567.875", "1000000", "37037036.000000"},
    ScaleCase{"DoubleHasMore", "double", "1234567.875", "1000000", "37037036.250000"},
    ScaleCase{"FloatIsReadAsOne", "float", "16777217", "1000000", "503316480.000000"},
    ScaleCase{"Double", "double", "1.5", "1000000", "45.000000"},
    ScaleCase{"Float", "float", "1.5", "1200000", "15.000000"},
    ScaleCase{"NoNumberIsZero", "int", "'x'", "1000000", "0"},
    ScaleCase{"NoNumberIsZeroOfFloat", "float", "'x'", "1000000", "0.000000"},
    ScaleCase{"NoNumberIsZeroInItsForm", "double", "'x'", "1000000", "0.000000"},
    ScaleCase{"UnknownTypeKeepsItsValue", "bool", "5", "1000000", "old"},
    ScaleCase{"EmptyColumnKeepsItsValue", "int", "null", "1000000", "old"}),
    CaseName());

TEST_F(CommandRuleDbHelperTest, ScaledTextThatIsNoNumberIsTold)
{
    Normalise("'x', 'x', 'x', 1, 1", {ParamOf("i", "int"), ParamOf("f", "float"), ParamOf("d", "double")});
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(
        "FUNc:StringUtil::StollS: stoll exception: invalid stoll argument",
        "FUNc:StringUtil::StringToFloatDef: The retVal is invalid.", "FUNc:StringUtil::StringToDoubleDef: stod error"));
}

TEST_F(CommandRuleDbHelperTest, TextsNeverReachANormalisedResult)
{
    EXPECT_EQ(Text(Normalise("'x', 5, 1, 1", {ParamOf("s", "string"), nullptr, ParamOf("v", "int")})), "v:v:int=150");
}

TEST_F(CommandRuleDbHelperTest, IntervalOfZeroOrOneSecondGivesNothing)
{
    const ParamList params = {ParamOf("v", "int")};
    EXPECT_THAT(Normalise("5, 0, 0", params), IsEmpty());
    EXPECT_THAT(Normalise("5, 10, 11", params, "start", "end"), IsEmpty());
    EXPECT_THAT(Normalise("5, 11, 10", params, "start", "end"), IsEmpty());
    EXPECT_THAT(Normalise("5, 0, 10", params, "start", "end"), IsEmpty());
    EXPECT_THAT(Normalise("5, 10, 0", params, "start", "end"), IsEmpty());
    EXPECT_THAT(Normalise("5, 10, 12", params, "start", "end"), testing::SizeIs(1));
    EXPECT_THAT(mHelper.RunSql("select 5", params, true, nullptr, nullptr), IsEmpty());
}

TEST_F(CommandRuleDbHelperTest, EndsOfTheNumbersScaleWithoutHarm)
{
    EXPECT_EQ(Text(Normalise("-2147483648, -9223372036854775807, 9223372036854775807", {ParamOf("v", "int")}, "start",
        "end"))
        .substr(0, 8), "v:v:int=");
    // 4294967295 days: one more is 0 in 32 bits.
    EXPECT_EQ(Text(Normalise("7, 1, 371085174288001", {ParamOf("v", "int")}, "start", "end")), "v:v:int=0");
}

TEST_F(CommandRuleDbHelperTest, ARecordHoldsTheStatementAndEachValueRawAndScaled)
{
    Evidence::Statement record;
    Normalise("5, 1, 1", {ParamOf("v", "int")}, "start", "start", &record);
    EXPECT_EQ(record.sql, "") << "the caller's";
    EXPECT_EQ(record.database, mPath);
    EXPECT_EQ(record.rows, 1U);
    EXPECT_TRUE(record.opened);
    ASSERT_EQ(record.columns.size(), 1U);
    EXPECT_EQ(record.columns[0].raw + " " + record.columns[0].value, "5 150");
    record = {};
    Run("select no", {ParamOf("a", "int")}, &record);
    EXPECT_EQ(record.rows, 0U);
    EXPECT_EQ(record.error, "no such column: no");
    EXPECT_THAT(record.columns, IsEmpty());
}

TEST_F(CommandRuleDbHelperTest, BlankTextGivesNothing)
{
    const ParamList params = {ParamOf("a", "int")};
    EXPECT_THAT(Run("", params), IsEmpty());
    EXPECT_THAT(Run(" \t\r\n", params), IsEmpty());
    EXPECT_EQ(Text(Run("select a from t", params)), "a:a:int=5");
}

} // namespace
