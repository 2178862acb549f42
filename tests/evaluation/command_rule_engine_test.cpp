#include "arborist/evaluation/command_rule_engine.h"

#include <gmock/gmock.h>

#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/model/common_part.h"
#include "tests/support/common_part_builder.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/evidence_lines.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

struct CommandRuleEnginePeer {
    static std::string Join(const std::string& sql, std::int64_t start)
    {
        return CommandRuleEngine::JoinSqlStrWithTime(sql, start);
    }
};

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Evidence::Reason;

constexpr std::int64_t NOW = 1700000000;

std::shared_ptr<OrLogic> Single(const std::string& logic, const std::string& paramId, const std::string& value,
    const std::string& source = "static")
{
    auto orLogic = std::make_shared<OrLogic>();
    orLogic->SetType("single_logic");
    orLogic->SetLogic(logic);
    orLogic->SetParamId(paramId);
    orLogic->SetLogicType(source);
    // The same text for both; the source decides which one the engine uses.
    orLogic->SetValue(value);
    orLogic->SetCommonPartParamId(value);
    return orLogic;
}

std::shared_ptr<OrLogic> Multiple(const std::vector<std::vector<std::string>>& tests)
{
    auto orLogic = std::make_shared<OrLogic>();
    orLogic->SetType("multiple_logic");
    for (const auto& test : tests) {
        auto item = std::make_shared<OrLogic::LogicItem>();
        item->SetLogic(test[0]);
        item->SetParamId(test[1]);
        item->SetValue(test[2]);
        orLogic->InsertLogicItemList({item});
    }
    return orLogic;
}

class CommandRuleEngineTest : public testing::Test {
protected:
    CommandRuleEngineTest()
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("root"));
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW));
        mDir.MakeDir("root/Comms/Lumbra/zxdetectrepair/databases");
        EventLogBuilder::Run(mDerived, "create table Jank (n int, s string, occurrence_time int);"
                                       "insert into Jank values (5, 'x', 1699999999), (7, 'old', 1600000000)");
        mBean->SetThresholdMap(ParamMapOf({ParamOf("limit", "int")}));
        mBean->GetThresholdMap().at("limit")->value = "4";
        mBean->SetSystemParaMap(ParamMapOf({ParamOf("ram", "string")}));
        mBean->GetSystemParamMap().at("ram")->value = "16";
        mRule->analysisMethod.type = "SQL";
        mRule->commonPartName = "Jank";
        mRule->params = ParamMapOf({ParamOf("n", "int"), ParamOf("s", "string")});
        mRule->analysisMethod.sqlItem.sql = "select n, s from Jank";
    }

    CommandRule::SqlItem& Item() { return mRule->analysisMethod.sqlItem; }
    void Conditions(const ConditionList& conditions) { Item().conditionList = conditions; }

    // Runs the rule with these conditions.
    bool Fires(const ConditionList& conditions)
    {
        Conditions(conditions);
        return Fires();
    }
    bool Fires() { return Fires(mRule, "event"); }
    bool Fires(const std::shared_ptr<Rule>& rule, const std::string& eventId)
    {
        const bool fires = mEngine.IsFaultHappened(rule, eventId);
        mReason = mEngine.GetReason();
        return fires;
    }

    // Lets the rule query copies, one for each of these numbers, with the number as its n.
    void Refer(const std::string& type, const std::string& number, const std::vector<int>& numbers)
    {
        std::vector<std::string> files;
        for (const int n : numbers) {
            files.push_back(mDir.Path("copy" + std::to_string(files.size()) + ".db"));
            EventLogBuilder::Run(files.back(),
                "create table t(n, s); insert into t values (" + std::to_string(n) + ", '')");
        }
        mTable->SetCopyDbFileList(files);
        mRule->referenceDefDb = std::make_shared<CommandRule::ReferenceDefDb>();
        mRule->referenceDefDb->type = type;
        mRule->referenceDefDb->defDBName = "Copies";
        mRule->referenceDefDb->defDBNum = number;
        Item().sql = "select n, s from t";
        Conditions({Single("gt", "n", "10")});
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    Evidence::Rule mRecord;
    std::string mDerived = mDir.Path("root/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db");
    std::shared_ptr<ThresholdOrLumbraBean> mBean = BeanOf("Jank", {});
    std::shared_ptr<DefDbTableBean> mTable = TableBeanOf("Copies", {}, "");
    std::shared_ptr<CommandRule> mRule = std::make_shared<CommandRule>();
    CommandRuleEngine mEngine{PartOf({mBean}, {mTable}),
        std::make_shared<RuleHelper>(std::make_shared<DetectInfo>(), nullptr)};
    Reason mReason = Reason::NONE;
};

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

TEST_F(CommandRuleEngineTest, HowManyHitsThereAreAndMustBeIsNoted)
{
    mEngine.SetRecord(&mRecord);
    Refer("countDB", "2", {1, 30, 40});
    Fires();
    EXPECT_THAT(EvidenceLines(mRecord, "hits"), ElementsAre("hits 2 of 3 Copies needed 2"));
    mRule->referenceDefDb->type = "singleDB";
    mTable->SetCopyDbFileList({mDir.Path("copy0.db")});
    Fires();
    EXPECT_THAT(EvidenceLines(mRecord, "hits"), ElementsAre("hits 0 of 1 Copies needed 1"));
}

TEST_F(CommandRuleEngineTest, WhyThereIsNoCopyIsNoted)
{
    mEngine.SetRecord(&mRecord);
    Refer("countDB", "2", {});
    mTable->SetDbName(".*x");
    mTable->SetDbPathList(TableBeanOf("", {"/one", "", "/two"}, "")->GetDbPathList());
    mTable->SetNoCopy(Evidence::NoCopy::FOLDER_MISSING, "");
    Fires();
    EXPECT_THAT(EvidenceLines(mRecord, "missing"), ElementsAre("missing folder_missing '.*x' /one, /two"));
    mTable->SetNoCopy(Evidence::NoCopy::NO_MATCH, "/two");
    Fires();
    EXPECT_THAT(EvidenceLines(mRecord, "missing"), ElementsAre("missing no_match '.*x' /two"));
    Refer("countDB", "2", {5});
    Fires();
    EXPECT_THAT(EvidenceLines(mRecord, "missing"), ElementsAre()) << "there is a copy, whatever was told before";
}

TEST_F(CommandRuleEngineTest, TheNameThatLeadsNowhereIsNoted)
{
    mEngine.SetRecord(&mRecord);
    mRule->commonPartName = "None";
    Fires();
    EXPECT_EQ(mRecord.badName, "None");
    mRule->commonPartName = "Jank";
    mRule->analysisMethod.type = "sql";
    Fires();
    EXPECT_EQ(mRecord.badName, "sql");
    mRule->analysisMethod.type = "SQL";
    Refer("singleDB", "", {30});
    mRule->referenceDefDb->defDBName = "Unknown";
    Fires();
    EXPECT_EQ(mRecord.badName, "Unknown");
    EXPECT_THAT(EvidenceLines(mRecord, "query"), IsEmpty());
}

TEST_F(CommandRuleEngineTest, StatementValuesAndComparisonsAreNoted)
{
    mEngine.SetRecord(&mRecord);
    Fires({Single("gt", "n", "limit", "dynamic")});
    EXPECT_THAT(EvidenceLines(mRecord), ElementsAre(testing::StartsWith("start 1697408000 "),
        "query " + mDerived + " rows 1: select n, s from Jank where occurrence_time >1697408000",
        "parameter n n int '5' -> '5'", "parameter s s string 'x' -> 'x'",
        "compare n n int '5' gt '4' from dynamic limit holds"));
    mRecord = {};
    mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("nowhere"));
    Fires({Multiple({{"gt", "n", "9"}})});
    EXPECT_THAT(EvidenceLines(mRecord), ElementsAre(testing::StartsWith("start 1697408000 "),
        HasSubstr(" not opened rows 0: select n"),
        "compare n n int '5' gt '9' fails"));
}

// The row in front of the failure decides the rule, and yet nobody knows what the others hold.
TEST_F(CommandRuleEngineTest, StatementThatBreaksOffBehindItsFirstRowIsNoted)
{
    EventLogBuilder::Run(mDerived, "insert into Jank values (-9223372036854775807 - 1, 'y', 1699999999)");
    Item().sql = "select abs(n) as n, s from Jank";
    EXPECT_FALSE(Fires({Single("eq", "n", "6")}));
    EXPECT_EQ(mReason, Reason::STATEMENT_FAILED);
    mEngine.SetRecord(&mRecord);
    EXPECT_TRUE(Fires({Single("eq", "n", "5")}));
    EXPECT_EQ(mReason, Reason::CONDITION_MET);
    EXPECT_THAT(mRecord.notes, testing::Contains(Reason::STATEMENT_FAILED));
}

TEST_F(CommandRuleEngineTest, WhyAStatementFailedIsNoted)
{
    mEngine.SetRecord(&mRecord);
    Item().sql = "select n from Missing";
    EXPECT_FALSE(Fires({Single("eq", "n", "5")}));
    EXPECT_EQ(mReason, Reason::STATEMENT_FAILED);
    EXPECT_THAT(EvidenceLines(mRecord, "query"), ElementsAre("query " + mDerived
        + " rows 0: select n from Missing where occurrence_time >1697408000 failed: no such table: Missing"));
}

TEST_F(CommandRuleEngineTest, TheIntervalAndWhatIsScaledByItAreNoted)
{
    mEngine.SetRecord(&mRecord);
    Item().type = "normalization";
    Item().timeParamList = {"t", "n"};
    mRule->params = ParamMapOf({ParamOf("n", "int"), ParamOf("t", "string")});
    Item().sql = "select 1, n, occurrence_time, occurrence_time from Jank";
    EXPECT_TRUE(Fires({Single("eq", "n", "150")}));
    EXPECT_THAT(EvidenceLines(mRecord, "interval"), ElementsAre("interval t=1699999999 to t=1699999999 days 0"));
    EXPECT_THAT(EvidenceLines(mRecord, "parameter"), testing::Contains("parameter n n int '5' -> '150'"));
}

TEST_F(CommandRuleEngineTest, WithoutAnIntervalNothingIsScaled)
{
    mEngine.SetRecord(&mRecord);
    Item().type = "normalization";
    Item().timeParamList = {"t", "n"};
    mRule->params = ParamMapOf({ParamOf("n", "int"), ParamOf("t", "string")});
    Item().sql = "select 1, n, occurrence_time, 0 from Jank";
    EXPECT_FALSE(Fires({Single("eq", "n", "150")}));
    EXPECT_EQ(mReason, Reason::NO_INTERVAL);
    EXPECT_THAT(EvidenceLines(mRecord, "interval"), ElementsAre("interval t=0 to t=0 days 0 unusable"));
    EXPECT_THAT(EvidenceLines(mRecord, "parameter"), IsEmpty());
    mRecord = {};
    Item().timeParamList = {"t"};
    EXPECT_FALSE(Fires({Single("eq", "n", "150")}));
    EXPECT_EQ(mReason, Reason::NO_INTERVAL);
    EXPECT_THAT(EvidenceLines(mRecord, "interval"), ElementsAre("interval =0 to =0 days 0 unusable"));
}

TEST_F(CommandRuleEngineTest, AnEmptyThresholdIsAReasonOfItsOwn)
{
    mEngine.SetRecord(&mRecord);
    mBean->GetThresholdMap().at("limit")->value = "";
    EXPECT_FALSE(Fires({Single("gt", "n", "limit", "dynamic")}));
    EXPECT_EQ(mReason, Reason::NO_THRESHOLD);
    EXPECT_THAT(EvidenceLines(mRecord, "compare"), ElementsAre("compare n n int '5' gt '' from dynamic limit fails"));
    EXPECT_FALSE(Fires({Single("eq", "n", "nothing", "systemParam")}));
    EXPECT_EQ(mReason, Reason::NO_THRESHOLD);
    EXPECT_FALSE(Fires({Single("gt", "n", "")}));
    EXPECT_EQ(mReason, Reason::NO_THRESHOLD);
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

} // namespace
