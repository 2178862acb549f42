#include "arborist/evaluation/command_rule_engine.h"

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/evaluation/command_rules.h"
#include "tests/support/evidence_lines.h"

struct CommandRuleEnginePeer {
    static std::string Join(const std::string& sql, std::int64_t start)
    {
        return CommandRuleEngine::JoinSqlStrWithTime(sql, start);
    }
};

namespace {

using Evidence::Reason;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST_F(CommandRuleEngineTest, RuleOfAnotherClassOrWithoutAnEventIsFalse)
{
    EXPECT_FALSE(Fires(nullptr, "event"));
    EXPECT_FALSE(Fires(std::make_shared<NodeRule>(), "event"));
    Conditions({Single("eq", "n", "5")});
    EXPECT_FALSE(Fires(mRule, ""));
    EXPECT_EQ(mReason, Reason::NO_EVENT_ID);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(CommandRuleEngineTest, RuleWithoutItsCommonPartOrWithAnotherMethodIsFalseInSilence)
{
    Conditions({Single("eq", "n", "5")});
    mRule->commonPartName = "None";
    EXPECT_FALSE(Fires());
    EXPECT_EQ(mReason, Reason::NO_COMMON_PART);
    mRule->commonPartName = "Jank";
    mRule->analysisMethod.type = "sql";
    EXPECT_FALSE(Fires());
    EXPECT_EQ(mReason, Reason::NOT_SQL);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    mRule->analysisMethod.type = "SQL";
    EXPECT_TRUE(Fires());
    EXPECT_EQ(mReason, Reason::CONDITION_MET);
}

TEST_F(CommandRuleEngineTest, WithoutAnyCommonPartEveryRuleIsFalse)
{
    Conditions({Single("eq", "n", "5")});
    CommandRuleEngine engine(nullptr, std::make_shared<RuleHelper>(std::make_shared<DetectInfo>(), nullptr));
    EXPECT_FALSE(engine.IsFaultHappened(mRule, "event"));
    Refer("", "", {});
    EXPECT_FALSE(engine.IsFaultHappened(mRule, "event"));
    EXPECT_EQ(engine.GetReason(), Reason::NO_COMMON_PART);
}

TEST_F(CommandRuleEngineTest, TimeConditionGoesToTheEndWithTheWordThatIsMissing)
{
    EXPECT_EQ(CommandRuleEnginePeer::Join("select 1 from t", 12), "select 1 from t where occurrence_time >12");
    EXPECT_EQ(CommandRuleEnginePeer::Join("select 1 from t where a", 12),
        "select 1 from t where a and occurrence_time >12");
    EXPECT_EQ(CommandRuleEnginePeer::Join("select nowhere from t", -3),
        "select nowhere from t and occurrence_time >-3");
    EXPECT_EQ(CommandRuleEnginePeer::Join("select 1 from t WHERE a", 12),
        "select 1 from t WHERE a where occurrence_time >12");
}

TEST_F(CommandRuleEngineTest, QueryLooksBackThePeriodAndTheLimitItselfIsOut)
{
    Conditions({Single("eq", "n", "5")});
    Item().time.period = 1;
    EXPECT_TRUE(Fires());
    EventLogBuilder::Run(mDerived, "update Jank set occurrence_time = 1699913600 where n = 5");
    EXPECT_FALSE(Fires());
    EXPECT_EQ(mReason, Reason::ROW_COUNT);
    EventLogBuilder::Run(mDerived, "update Jank set occurrence_time = 1699913601 where n = 5");
    EXPECT_TRUE(Fires());
}

TEST_F(CommandRuleEngineTest, WhereInCapitalsGetsASecondClauseAndFails)
{
    Item().sql = "select n, s from Jank WHERE n = 5";
    EXPECT_FALSE(Fires({Single("eq", "n", "5")}));
    EXPECT_EQ(mReason, Reason::STATEMENT_FAILED);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(HasSubstr("near \"where\": syntax error")));
}

TEST_F(CommandRuleEngineTest, ColumnWithTheFiveLettersInItMakesTheOtherForm)
{
    Item().sql = "select n as nowhere, s from Jank";
    EXPECT_FALSE(Fires({Single("eq", "n", "5")}));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(HasSubstr("near \"and\": syntax error")));
}

TEST_F(CommandRuleEngineTest, ThresholdComesFromWhereTheConditionSays)
{
    EXPECT_TRUE(Fires({Single("gt", "n", "4")}));
    EXPECT_FALSE(Fires({Single("gt", "n", "5")}));
    EXPECT_TRUE(Fires({Single("gt", "n", "limit", "dynamic")}));
    EXPECT_FALSE(Fires({Single("gt", "n", "unknown", "dynamic")}));
    EXPECT_TRUE(Fires({Single("lt", "n", "ram", "systemParam")}));
    EXPECT_FALSE(Fires({Single("gt", "n", "4", "other")}));
    EXPECT_FALSE(Fires({Single("gt", "n", "4", "")}));
}

TEST_F(CommandRuleEngineTest, WordThatTheComparisonDoesNotKnowIsFalse)
{
    EXPECT_FALSE(Fires({Single("in", "n", "5")}));
    EXPECT_EQ(mReason, Reason::CONDITION_NOT_MET);
}

TEST_F(CommandRuleEngineTest, MissingValueEndsTheRuleBeforeALaterCondition)
{
    EXPECT_FALSE(Fires({Single("eq", "none", "5"), Single("eq", "n", "5")}));
    EXPECT_EQ(mReason, Reason::NO_VALUE);
    Item().sql = "select n, null from Jank";
    EXPECT_FALSE(Fires({Single("eq", "s", "x"), Single("eq", "n", "5")}));
}

TEST_F(CommandRuleEngineTest, ConditionThatFailsLeavesTheNextItsTurn)
{
    EXPECT_TRUE(Fires({Single("eq", "n", "9"), Single("eq", "s", "x")}));
}

TEST_F(CommandRuleEngineTest, WithoutConditionsIsFalse)
{
    EXPECT_FALSE(Fires({}));
    EXPECT_EQ(mReason, Reason::NO_CONDITION);
}

TEST_F(CommandRuleEngineTest, UnknownConditionEndsTheRuleWithALine)
{
    auto unknown = std::make_shared<OrLogic>();
    unknown->SetType("triple_logic");
    EXPECT_FALSE(Fires({unknown, Single("eq", "n", "5")}));
    EXPECT_EQ(mReason, Reason::UNKNOWN_CONDITION);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
        ElementsAre("FUNc:CommandRuleEngine::IsFaultForSingleSql: Undefined orLogic type: triple_logic."));
}

TEST_F(CommandRuleEngineTest, SeveralTestsAreARangeOfTheFirstOnesColumn)
{
    EXPECT_TRUE(Fires({Multiple({{"ge", "n", "5"}, {"le", "n", "6"}})}));
    EXPECT_FALSE(Fires({Multiple({{"ge", "n", "5"}, {"le", "n", "4"}})}));
    // The parameter of the second test is ignored.
    EXPECT_TRUE(Fires({Multiple({{"ge", "n", "5"}, {"le", "s", "6"}})}));
    EXPECT_TRUE(Fires({Multiple({{"ge", "n", "5"}, {"le", "none", "6"}})}));
}

TEST_F(CommandRuleEngineTest, SeveralTestsWithoutAFirstValueFailAndLeaveTheNextItsTurn)
{
    EXPECT_FALSE(Fires({Multiple({})}));
    EXPECT_FALSE(Fires({Multiple({{"ge", "none", "5"}})}));
    EXPECT_TRUE(Fires({Multiple({}), Multiple({{"ge", "none", "5"}}), Single("eq", "n", "5")}));
    auto withNull = Multiple({{"ge", "n", "5"}});
    withNull->InsertLogicItemList({nullptr});
    EXPECT_FALSE(Fires({withNull}));
}

TEST_F(CommandRuleEngineTest, NormalisedValueCountsTimesThirty)
{
    Item().type = "normalization";
    Item().timeParamList = {"t", "none", "n"};
    mRule->params = ParamMapOf({ParamOf("n", "int"), ParamOf("t", "long"), ParamOf("s", "string")});
    // The first of the two is also start and end, and so takes three of the four columns.
    Item().sql = "select 1, n, occurrence_time, occurrence_time from Jank";
    EXPECT_TRUE(Fires({Single("eq", "n", "150")}));
    Item().sql = "select 1, n, occurrence_time, 0 from Jank";
    EXPECT_FALSE(Fires({Single("eq", "n", "150")}));
}

TEST_F(CommandRuleEngineTest, NormalisingTakesTwoParametersAndNoMore)
{
    Item().type = "normalization";
    Item().sql = "select n, n, n, n, n from Jank";
    Item().timeParamList = {"n"};
    EXPECT_FALSE(Fires({Single("ge", "n", "0")}));
    Item().timeParamList = {"n", "n", "n"};
    EXPECT_FALSE(Fires({Single("ge", "n", "0")}));
}

TEST_F(CommandRuleEngineTest, KindOfSqlSaysWhichParametersAreRead)
{
    Item().type = "defDBSql";
    EXPECT_TRUE(Fires({Single("eq", "n", "5")}));
    Item().type = "other";
    EXPECT_FALSE(Fires({Single("eq", "n", "5")}));
}

TEST_F(CommandRuleEngineTest, DatabaseThatCannotBeOpenedIsJudgedByTheLastValues)
{
    mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("nowhere"));
    EXPECT_FALSE(Fires({Single("eq", "n", "5")}));
    EXPECT_EQ(mReason, Reason::DATABASE_UNAVAILABLE);
    EXPECT_THAT(mLog.Lines(), ElementsAre("FUNc:FT::sql::SqlDatabase::Open: open db:"
        + mDir.Path("nowhere/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db")
        + " failed, error msg is :unable to open database file"));
    mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("root"));
    EXPECT_TRUE(Fires({Single("eq", "n", "5")}));
    mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("nowhere"));
    EXPECT_TRUE(Fires({Single("eq", "n", "5")}));
}

TEST_F(CommandRuleEngineTest, OneHitAmongTheCopiesIsEnoughForASingleDatabase)
{
    Refer("singleDB", "", {1, 2, 30});
    EXPECT_TRUE(Fires());
    EXPECT_EQ(mReason, Reason::HITS_REACHED);
    Refer("singleDB", "", {});
    EXPECT_FALSE(Fires());
    EXPECT_EQ(mReason, Reason::HITS_SHORT);
}

TEST_F(CommandRuleEngineTest, HitsAreCountedAgainstTheirNumber)
{
    Refer("countDB", "2", {1, 2, 30});
    EXPECT_FALSE(Fires());
    mDir.MakeDir("more");
    EventLogBuilder::Run(mDir.Path("copy0.db"), "update t set n = 40");
    EXPECT_TRUE(Fires());
}

TEST_F(CommandRuleEngineTest, WithoutANumberNoHitIsNeeded)
{
    Refer("", "", {});
    EXPECT_TRUE(Fires());
    Refer("", "-1", {});
    EXPECT_TRUE(Fires());
    Refer("", "1", {});
    EXPECT_FALSE(Fires());
}

TEST_F(CommandRuleEngineTest, CopiesAreTakenWholeAndNeedNoThresholds)
{
    mRule->commonPartName = "";
    Refer("singleDB", "", {30});
    EXPECT_TRUE(Fires());
    mRule->referenceDefDb->defDBName = "Unknown";
    EXPECT_FALSE(Fires());
    EXPECT_EQ(mReason, Reason::NO_SUCH_DATABASE);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(CommandRuleEngineTest, EveryCopyIsAskedAlsoAfterAHit)
{
    Refer("singleDB", "", {30, 1});
    mEngine.SetRecord(&mRecord);
    EXPECT_TRUE(Fires());
    EXPECT_THAT(EvidenceLines(mRecord, "query"), ElementsAre(
        "query " + mDir.Path("copy0.db") + " rows 1: select n, s from t",
        "query " + mDir.Path("copy1.db") + " rows 1: select n, s from t"));
}

TEST_F(CommandRuleEngineTest, StatementThatWritesLeavesTheEventLogAlone)
{
    EventLogBuilder().Row({NOW, 7, "", ""}).WriteTo(mDir.Path("root/Comms/Lumbra/workDir/0/log.db"));
    const std::string before = mDir.Read("root/Comms/Lumbra/workDir/0/log.db");
    Item().sql = "attach '" + mDir.Path("root/Comms/Lumbra/workDir/0/log.db") + "' as l; delete from l.event_info";
    EXPECT_FALSE(Fires({Single("eq", "n", "5")}));
    Item().sql = "delete from Jank";
    EXPECT_FALSE(Fires({Single("eq", "n", "5")}));
    EXPECT_EQ(mDir.Read("root/Comms/Lumbra/workDir/0/log.db"), before);
}

TEST_F(CommandRuleEngineTest, WhatIsNullInARuleIsPassedOver)
{
    mRule->params["gone"] = nullptr;
    EXPECT_TRUE(Fires({nullptr, Single("eq", "n", "5")}));
    EXPECT_FALSE(Fires({nullptr}));
    EXPECT_EQ(mReason, Reason::NO_CONDITION);
    Item().type = "normalization";
    Item().timeParamList = {"s", "gone", "n"};
    Item().sql = "select 1, n, occurrence_time, occurrence_time from Jank";
    EXPECT_TRUE(Fires({Single("eq", "n", "150")}));
}

TEST_F(CommandRuleEngineTest, SeveralTestsBehindANullOneFail)
{
    const auto tests = Multiple({{"eq", "n", "5"}});
    tests->SetLogicItemList({nullptr, tests->GetLogicItemList().front()});
    mEngine.SetRecord(&mRecord);
    EXPECT_FALSE(Fires({tests}));
    EXPECT_THAT(mRecord.notes, ElementsAre(Reason::NO_CONDITION));
    EXPECT_FALSE(Fires({Multiple({})}));
}

TEST_F(CommandRuleEngineTest, SeveralTestsOfAnEmptyValueFail)
{
    EventLogBuilder::Run(mDerived, "update Jank set s = '' where n = 5");
    EXPECT_FALSE(Fires({Multiple({{"ne", "s", "x"}})}));
    EXPECT_EQ(mReason, Reason::NO_VALUE);
    mRule->params.clear();
    EXPECT_FALSE(Fires({Multiple({{"ne", "s", "x"}})}));
}

TEST_F(CommandRuleEngineTest, WithoutAHelperNoRowIsTooOld)
{
    CommandRuleEngine engine(PartOf({mBean}, {mTable}), nullptr);
    Conditions({Single("eq", "s", "old")});
    Item().sql = "select n, s from Jank where n = 7";
    EXPECT_TRUE(engine.IsFaultHappened(mRule, "event"));
    engine.SetRecord(&mRecord);
    EXPECT_TRUE(engine.IsFaultHappened(mRule, "event"));
    EXPECT_FALSE(std::get<Evidence::Command>(mRecord.part).start.has_value());
    engine.SetRecord(nullptr);
}

TEST_F(CommandRuleEngineTest, NullParametersArePassedOverWhereNoDatabaseOpens)
{
    mRule->params["gone"] = nullptr;
    mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("nowhere"));
    EXPECT_FALSE(Fires({Single("eq", "n", "5")}));
    EXPECT_EQ(mReason, Reason::DATABASE_UNAVAILABLE);
}

} // namespace
