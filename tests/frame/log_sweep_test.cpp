#include "arborist/frame/log_sweep.h"

#include <cstddef>
#include <optional>

#include <gmock/gmock.h>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/repair.h"
#include "arborist/frame/settings.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr std::int64_t DAY = 86400;

// A tree "T" whose event "E" asks the rule "r".
class LogSweepTest : public testing::Test, public SweepObserver {
protected:
    LogSweepTest()
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
        mSettings.Set(Settings::TEMPORARY_STORES, "1");
        mSettings.Set(Settings::VERSION_NAME, "1");
        mDir.Write("rules/FaultTrees.xml", TreeXml("Tag").Version("1").Tree("T", Or({Basic("E")})).Text());
        Rules(AlarmRuleXml("r", {AlarmIdXml("7", "7", {TimeXml("duration", "1", "2")})}));
    }

    static Xml TableXml(
        const std::string& first = "7", const std::string& last = "7", const std::string& name = "TABLE_A")
    {
        return Xml("thresholdsOrLumbraData").Attr("name", name).Child(Xml("retrieveLumbraData")
            .Child(Xml("alarmId").Attr("Eventid_Min", first).Attr("Eventid_Max", last)
                .Child(ParamsXml({ParamXml("1", "a", "int")}))));
    }

    void Rules(const Xml& rule)
    {
        mDir.Write("rules/FaultTreeRules.xml", RuleXml("Tag").CommonPart({TableXml()}).EventRule("E", {Single("r")})
            .Repair("E", {{"R", ""}}).Rule(rule).Text());
    }

    static Xml TableRule(const std::string& name = "r", const std::string& table = "TABLE_A")
    {
        const Xml condition = ConditionXml({SingleLogicXml(
            Xml("ge").Attr("type", "static").TextChild("id", "n").TextChild("value", "1"))});
        return CommandRuleXml(name).Child(Xml("referenceCommonPart").TextChild("commonPartName", table))
            .Child(Xml("queryReturnParam").Child(ParamsXml({ParamXml("n", "n", "int")})))
            .Child(AnalysisMethodXml("", {Xml("sql").Text("select count(*) as n from " + table),
                TimeXml("duration", "2", "0"), condition}));
    }

    void Log(const std::vector<LoggedRow>& rows)
    {
        EventLogBuilder().Rows(rows).Sql("update event_info_flow set event_pid = _ID")
            .WriteTo(mDir.Path("data/Comms/Lumbra/workDir/0/log.db"));
    }

    bool Sweep(SweepRequest request)
    {
        auto info = std::make_shared<DetectInfo>();
        info->mDetectScene = 1;
        info->mTreeTag = "Tag";
        info->mRuleFileDir = mDir.Path("rules");
        LogSweep sweep(info);
        mSweep = &sweep;
        return sweep.Run(request, *this);
    }

    void OnPlan(SweepPlan plan) override { mPlan = std::move(plan); }
    void OnEventDecided(std::int64_t moment, const Evidence::Event& event) override
    {
        mDecided.push_back(std::to_string(moment) + " " + event.id + (event.fired ? " fired" : ""));
    }
    void OnTreeJudged(std::int64_t moment, std::size_t, const Evidence::TreeResult& result,
        const std::vector<Evidence::RootCause>& causes) override
    {
        mAnswers.push_back(std::to_string(moment) + " " + Evidence::TreeVerdictText(result.verdict.word)
            + (causes.empty() ? "" : " " + causes.front().id));
        if (mAnswers.size() == mStopsAfter) {
            mSweep->RequestStop();
        }
    }
    void OnStopped(std::int64_t moment) override { mStopped = moment; }

    std::vector<std::string> Unswept() const
    {
        std::vector<std::string> rules;
        for (const SweepPlan::Unswept& rule : mPlan.unswept) {
            rules.push_back(rule.eventId + " " + rule.ruleName + " " + rule.reason);
        }
        return rules;
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::int64_t mUntil = 30 * DAY;
    SweepPlan mPlan;
    std::vector<std::string> mAnswers;
    std::vector<std::string> mDecided;
    LogSweep* mSweep = nullptr;
    // The number of answers after which it requests a stop; 0 for never.
    std::size_t mStopsAfter = 0;
    std::optional<std::int64_t> mStopped;
};

TEST_F(LogSweepTest, TreeIsAFaultFromTheRowThatReachesTheThresholdUntilTheFirstLeaves)
{
    Log({{10 * DAY, 7, "", ""}, {10 * DAY + 5, 7, "", ""}});
    ASSERT_TRUE(Sweep({DAY, 30 * DAY}));
    EXPECT_THAT(mAnswers, ElementsAre(std::to_string(DAY) + " no_fault", std::to_string(10 * DAY + 5) + " fault E",
        std::to_string(11 * DAY + 1) + " no_fault"));
    EXPECT_EQ(mPlan.moments, 2U);
    EXPECT_EQ(mPlan.tableMoments, 0U);
}

TEST_F(LogSweepTest, AStoppedSweepTellsTheMomentBeforeWhichItsAnswersHold)
{
    Log({{10 * DAY, 7, "", ""}, {10 * DAY + 5, 7, "", ""}});
    const std::vector<std::int64_t> moments = {DAY, 10 * DAY + 5, 11 * DAY + 1};
    ASSERT_TRUE(Sweep({DAY, 30 * DAY}));
    EXPECT_EQ(mStopped, std::nullopt);
    const std::vector<std::string> whole = mAnswers;
    ASSERT_EQ(whole.size(), moments.size());
    for (mStopsAfter = 1; mStopsAfter < moments.size(); ++mStopsAfter) {
        mAnswers.clear();
        ASSERT_TRUE(Sweep({DAY, 30 * DAY}));
        EXPECT_EQ(mStopped, moments[mStopsAfter]);
        EXPECT_THAT(mAnswers, ElementsAreArray(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(mStopsAfter)));
    }
}

TEST_F(LogSweepTest, ATimeLimitThatIsOverAtOnceStopsASweepAtItsFirstMoment)
{
    Log({{10 * DAY, 7, "", ""}});
    mSettings.Set(Settings::TIME_LIMIT, "0.000001");
    ASSERT_TRUE(Sweep({DAY, 30 * DAY}));
    EXPECT_EQ(mStopped, DAY);
    EXPECT_THAT(mAnswers, IsEmpty());
}

TEST_F(LogSweepTest, ARowCountsStillInTheSecondInWhichItsWindowBegins)
{
    Log({{10 * DAY, 7, "", ""}, {11 * DAY, 7, "", ""}});
    ASSERT_TRUE(Sweep({DAY, 30 * DAY}));
    EXPECT_THAT(mAnswers, ElementsAre(std::to_string(DAY) + " no_fault", std::to_string(11 * DAY) + " fault E",
        std::to_string(11 * DAY + 1) + " no_fault"));
}

TEST_F(LogSweepTest, TheTopEventIsDecidedByItsOwnRules)
{
    mDir.Write("rules/FaultTreeRules.xml", RuleXml("Tag").EventRule("T", {Single("r")})
        .Rule(AlarmRuleXml("r", {AlarmIdXml("7", "7", {TimeXml("duration", "1", "2")})})).Text());
    Log({{10 * DAY, 7, "", ""}, {10 * DAY + 5, 7, "", ""}});
    ASSERT_TRUE(Sweep({DAY, 30 * DAY}));
    EXPECT_THAT(mDecided, ElementsAre(std::to_string(DAY) + " T", std::to_string(10 * DAY + 5) + " T fired",
        std::to_string(11 * DAY + 1) + " T"));
}

// Its version is none that the log names.
TEST_F(LogSweepTest, ARowThatNoRuleCanSeeIsAskedForWhileItsWindowHasIt)
{
    const auto momentsWithRowAt = [this](std::int64_t time) {
        Log({{time, 7, "", ""}});
        EventLogBuilder::Run(
            mDir.Path("data/Comms/Lumbra/workDir/0/log.db"), "update event_info set version_id = 77");
        EXPECT_TRUE(Sweep({DAY, mUntil}));
        EXPECT_THAT(Unswept(), IsEmpty());
        return mPlan.moments;
    };
    EXPECT_EQ(momentsWithRowAt(10 * DAY), 2U);
    EXPECT_EQ(momentsWithRowAt(40 * DAY), 0U);
    EXPECT_EQ(momentsWithRowAt(10 * DAY - (std::int64_t{1} << 32)), 0U);
    EXPECT_EQ(momentsWithRowAt(10 * DAY + (std::int64_t{1} << 32)), 0U);
    mUntil = 30 * DAY + (std::int64_t{1} << 32);
    EXPECT_EQ(momentsWithRowAt(10 * DAY + (std::int64_t{1} << 32)), 0U) << "rows that count have times of 32 bits";
    EXPECT_EQ(momentsWithRowAt(10 * DAY), 2U);
}

TEST_F(LogSweepTest, ARuleOnADamagedLogIsNotSwept)
{
    std::vector<LoggedRow> rows;
    for (int row = 0; row < 3000; ++row) {
        rows.push_back({10 * DAY + row, row % 10, "", std::string(60, ' ')});
    }
    Log(rows);
    const std::string log = "data/Comms/Lumbra/workDir/0/log.db";
    std::string file = mDir.Read(log);
    file.replace(file.size() / 2, 4096, 4096, '\xFF');
    mDir.Write(log, file);
    ASSERT_TRUE(Sweep({DAY, 30 * DAY}));
    EXPECT_THAT(Unswept(), ElementsAre("E r log_damaged"));
}

TEST_F(LogSweepTest, ARepairEndsAFault)
{
    Log({{10 * DAY, 7, "", ""}, {10 * DAY + 5, 7, "", ""}});
    mSettings.Set(Settings::CURRENT_TIME, std::to_string(10 * DAY + 9));
    UpdateRepairDb("R");
    ASSERT_TRUE(Sweep({10 * DAY + 5, 30 * DAY}));
    EXPECT_THAT(mAnswers,
        ElementsAre(std::to_string(10 * DAY + 5) + " fault E", std::to_string(10 * DAY + 9) + " no_fault"));
}

TEST_F(LogSweepTest, TheMomentInForceIsRestored)
{
    Log({{10 * DAY, 7, "", ""}});
    mSettings.Set(Settings::CURRENT_TIME, "17");
    mSettings.Set(Settings::AS_OF, "");
    ASSERT_TRUE(Sweep({DAY, 30 * DAY}));
    const auto& settings = FaultTreePropGlobal::GetInstance();
    EXPECT_EQ(settings.GetFaultTreeProperty(Settings::CURRENT_TIME, ""), "17");
    EXPECT_EQ(settings.GetFaultTreeProperty(Settings::AS_OF, "?"), "");
}

TEST_F(LogSweepTest, TreesWithoutRulesAreJudgedOnce)
{
    mDir.Write("rules/FaultTreeRules.xml",
        RuleXml("Tag").Rule(AlarmRuleXml("r", {AlarmIdXml("7", "7", {TimeXml("duration", "1", "2")})})).Text());
    Log({{10 * DAY, 7, "", ""}});
    ASSERT_TRUE(Sweep({DAY, 30 * DAY}));
    EXPECT_THAT(mAnswers, ElementsAre(testing::StartsWith(std::to_string(DAY))));
    EXPECT_THAT(mDecided, IsEmpty());
    EXPECT_EQ(mPlan.moments, 0U);
}

TEST_F(LogSweepTest, AMissingLogIsNotJudgedAtAnyMoment)
{
    ASSERT_TRUE(Sweep({DAY, 30 * DAY}));
    EXPECT_THAT(mAnswers, ElementsAre(std::to_string(DAY) + " undecided"));
}

TEST_F(LogSweepTest, StatementsOnDerivedTablesExcludeTheirLimit)
{
    Rules(TableRule());
    Log({{10 * DAY, 7, "", ""}});
    ASSERT_TRUE(Sweep({DAY, 60 * DAY}));
    EXPECT_THAT(mAnswers, ElementsAre(std::to_string(DAY) + " no_fault", std::to_string(10 * DAY) + " fault E",
        std::to_string(12 * DAY) + " no_fault"));
    EXPECT_EQ(mPlan.tableMoments, 3U); // also where the row leaves the table
    ASSERT_EQ(mPlan.asked.size(), 1U);
    EXPECT_EQ(mPlan.asked[0].times, 4U);
}

// The value of two rows is empty, which leaves a normalised parameter the value that it had.
TEST_F(LogSweepTest, ARuleFindsNoValueOfAnEarlierMoment)
{
    const Xml condition = ConditionXml({SingleLogicXml(Xml("ge").Attr("type", "static").TextChild("id", "n").TextChild("value", "1"))});
    const Xml scaled = Xml("normalization").Child(
        Xml("timeParam").Child(Xml("defineTimeProp").Attr("id", "t")).Child(Xml("defineTimeProp").Attr("id", "n")));
    Rules(CommandRuleXml("r").Child(Xml("referenceCommonPart").TextChild("commonPartName", "TABLE_A"))
        .Child(Xml("queryReturnParam").Child(ParamsXml({ParamXml("n", "n", "int"), ParamXml("t", "t", "long")})))
        .Child(AnalysisMethodXml("normalization", {Xml("sql").Text("select 0, case when count(*) = 1 then 1 else '' end, 0, "
            "max(occurrence_time) from TABLE_A"), TimeXml("duration", "2", "0"), scaled, condition})));
    Log({{10 * DAY, 7, "", ""}, {11 * DAY, 7, "", ""}});
    ASSERT_TRUE(Sweep({DAY, 60 * DAY}));
    EXPECT_THAT(mAnswers, ElementsAre(std::to_string(DAY) + " undecided", std::to_string(10 * DAY) + " fault E",
        std::to_string(11 * DAY) + " undecided", std::to_string(12 * DAY) + " fault E", std::to_string(13 * DAY) + " undecided"));
}

TEST_F(LogSweepTest, DerivedTablesThatChangeTooOftenAreNotSwept)
{
    Rules(TableRule());
    Log({{10 * DAY, 7, "", ""}});
    SweepRequest request{DAY, 60 * DAY};
    request.mostTableMoments = 2;
    ASSERT_TRUE(Sweep(request));
    EXPECT_THAT(Unswept(), ElementsAre("E r too_many_moments"));
    EXPECT_THAT(mPlan.unsweptTrees, ElementsAre(0U));
    EXPECT_EQ(mPlan.unswept[0].moments, 3U);
    EXPECT_EQ(mPlan.tableMoments, 0U);
    EXPECT_EQ(mAnswers.size(), 1U);
    request.mostTableMoments = 3;
    ASSERT_TRUE(Sweep(request));
    EXPECT_THAT(Unswept(), IsEmpty());
}

TEST_F(LogSweepTest, OfRulesThatShareAnEventOnlyThoseOnTablesAreLeftOut)
{
    mDir.Write("rules/FaultTreeRules.xml", RuleXml("Tag").CommonPart({TableXml(), Xml("defDBTable").Attr("name", "x")})
        .EventRule("E", {Single("r"), Single("a"), Single("d")})
        .Rule(CommandRuleXml("d").Child(Xml("referenceDefDB").TextChild("defDBName", "x")))
        .Rule(TableRule()).Rule(AlarmRuleXml("a", {AlarmIdXml("8", "8", {TimeXml("duration", "1", "1")})})).Text());
    Log({{10 * DAY, 7, "", ""}, {20 * DAY, 8, "", ""}});
    SweepRequest request{DAY, 60 * DAY};
    request.mostTableMoments = 0;
    ASSERT_TRUE(Sweep(request));
    EXPECT_THAT(Unswept(), ElementsAre("E r too_many_moments"));
    EXPECT_EQ(mPlan.moments, 2U) << "where the alarm begins and ends";
    Log({{10 * DAY, 7, "", ""}, {10 * DAY, 8, "", ""}});
    ASSERT_TRUE(Sweep(request));
    EXPECT_EQ(mPlan.moments, 2U) << "also where the table changes";
}

// Two trees: "T" asks an alarm rule and one on TABLE_A, "U" one on TABLE_B, which changes much more often.
class LogSweepTablesTest : public LogSweepTest {
protected:
    LogSweepTablesTest()
    {
        mDir.Write("rules/FaultTrees.xml",
            TreeXml("Tag").Version("1").Tree("U", Or({Basic("F")})).Tree("T", Or({Basic("E")})).Text());
        Entry({Single("a"), Single("r")});
        Log({{10 * DAY, 7, "", ""}, {20 * DAY, 9, "", ""}, {12 * DAY, 8, "", ""}, {12 * DAY + 5, 8, "", ""},
            {12 * DAY + 9, 8, "", ""}});
    }

    void Entry(const std::vector<Xml>& alternatives)
    {
        mDir.Write("rules/FaultTreeRules.xml", RuleXml("Tag")
            .CommonPart({TableXml(), TableXml("8", "8", "TABLE_B")}).EventRule("E", alternatives)
            .EventRule("F", {Single("b")}).Rule(TableRule()).Rule(TableRule("b", "TABLE_B"))
            .Rule(AlarmRuleXml("a", {AlarmIdXml("9", "9", {TimeXml("duration", "1", "1")})})).Text());
    }

    void OnEventDecided(std::int64_t moment, const Evidence::Event& event) override
    {
        LogSweepTest::OnEventDecided(moment, event);
        for (const Evidence::Alternative& alternative : event.alternatives) {
            for (const Evidence::Rule& rule : alternative.rules) {
                if (const auto* const command = std::get_if<Evidence::Command>(&rule.part)) {
                    for (const Evidence::Statement& statement : command->statements) {
                        mStatements[event.id].insert(statement.sql);
                    }
                }
            }
        }
    }

    std::vector<std::string> Asked() const
    {
        std::vector<std::string> asked;
        for (const SweepPlan::Asked& unit : mPlan.asked) {
            asked.push_back(unit.eventId + " " + std::to_string(unit.times));
        }
        return asked;
    }

    std::map<std::string, std::set<std::string>> mStatements;
};

TEST_F(LogSweepTablesTest, RulesAreAskedOnlyWhereTheirOwnTablesChange)
{
    ASSERT_TRUE(Sweep({DAY, 60 * DAY}));
    EXPECT_THAT(Asked(), testing::UnorderedElementsAre("E 4", "F 10"));
    EXPECT_EQ(mPlan.tableMoments, 11U) << "the tables share a moment";
    EXPECT_EQ(mPlan.moments, 13U);
    EXPECT_EQ(mStatements["E"].size(), 4U) << "each moment has its own limit of time";
    EXPECT_EQ(mStatements["F"].size(), 10U);
}

TEST_F(LogSweepTablesTest, ARuleBehindOneOfItsGroupKeepsItsAnswerUntilItIsReached)
{
    Entry({Multiple({"a", "r"})});
    Log({{20 * DAY, 9, "", ""}, {19 * DAY, 7, "", ""}});
    ASSERT_TRUE(Sweep({DAY, 60 * DAY}));
    EXPECT_THAT(mDecided, testing::Contains(std::to_string(20 * DAY) + " E fired"));
    EXPECT_THAT(mDecided, testing::Contains(std::to_string(21 * DAY) + " E"));
}

TEST_F(LogSweepTablesTest, OneTableThatChangesTooOftenLeavesTheOthersSwept)
{
    SweepRequest request{DAY, 60 * DAY};
    request.mostTableMoments = 3;
    ASSERT_TRUE(Sweep(request));
    EXPECT_THAT(Unswept(), ElementsAre("F b too_many_moments"));
    EXPECT_THAT(mPlan.unsweptTrees, ElementsAre(0U));
    EXPECT_EQ(mPlan.tableMoments, 3U);
    EXPECT_EQ(mPlan.unswept[0].moments, 9U);
    EXPECT_THAT(Asked(), ElementsAre("E 4"));
    request.mostTableMoments = 10;
    ASSERT_TRUE(Sweep(request));
    EXPECT_THAT(Unswept(), ElementsAre("F b too_many_moments")) << "the least moments come first";
    request.mostTableMoments = 11;
    ASSERT_TRUE(Sweep(request));
    EXPECT_THAT(Unswept(), IsEmpty());
}

TEST_F(LogSweepTablesTest, TablesAreBuiltOnlyForTheTreeOrTheRuleThatIsAskedFor)
{
    SweepRequest request{DAY, 60 * DAY};
    request.mostTableMoments = 9;
    request.tree = "U";
    ASSERT_TRUE(Sweep(request));
    EXPECT_THAT(Unswept(), ElementsAre("E r not_asked_for"));
    EXPECT_THAT(Asked(), ElementsAre("F 10"));
    request.tree.clear();
    request.rule = "r";
    ASSERT_TRUE(Sweep(request));
    EXPECT_THAT(Unswept(), ElementsAre("F b not_asked_for"));
    EXPECT_THAT(Asked(), ElementsAre("E 4"));
}

TEST_F(LogSweepTablesTest, ATreeWithoutAnIdIsNotTheOneThatIsAskedForWhereOnlyARuleIs)
{
    mDir.Write("rules/FaultTrees.xml",
        TreeXml("Tag").Version("1").Tree("", Or({Basic("F")})).Tree("T", Or({Basic("E")})).Text());
    SweepRequest request{DAY, 60 * DAY};
    request.rule = "r";
    ASSERT_TRUE(Sweep(request));
    EXPECT_THAT(Unswept(), ElementsAre("F b not_asked_for"));
}

TEST_F(LogSweepTest, StatementsWithoutATableOfEventsAreAskedOnce)
{
    const Xml fixed = TableXml("0", "0").Attr("type", "lumbraPlusData");
    const std::vector<std::vector<Xml>> commonParts{{}, {Xml("defDBTable").Attr("name", "x")}, {fixed}, {TableXml("0", "0")}};
    for (const std::vector<Xml>& commonPart : commonParts) {
        mAnswers.clear();
        mDir.Write("rules/FaultTreeRules.xml",
            RuleXml("Tag").CommonPart(commonPart).EventRule("E", {Single("r")}).Rule(TableRule()).Text());
        Log({{10 * DAY, 7, "", ""}});
        ASSERT_TRUE(Sweep({DAY, 60 * DAY}));
        EXPECT_EQ(mAnswers.size(), 1U);
        EXPECT_EQ(mPlan.moments, 0U);
    }
}

TEST_F(LogSweepTest, RulesThatTheCallerNamesAreToldAsNotSwept)
{
    Rules(TableRule());
    SweepRequest request{DAY, 60 * DAY};
    request.unsweptRules = {{"r", "reads_clock"}, {"other", "reads_clock"}};
    ASSERT_TRUE(Sweep(request));
    EXPECT_THAT(Unswept(), ElementsAre("E r reads_clock"));
}

TEST_F(LogSweepTest, EventsWithTimesThatAreNoWholeSecondsAreNotSwept)
{
    Log({{10 * DAY, 7, "", ""}, {10 * DAY + 5, 7, "", ""}});
    EventLogBuilder::Run(mDir.Path("data/Comms/Lumbra/workDir/0/log.db"),
        "update event_info_flow set occurrence_time = occurrence_time + 0.5 where _ID = 2");
    ASSERT_TRUE(Sweep({DAY, 30 * DAY}));
    EXPECT_THAT(Unswept(), ElementsAre("E r odd_times"));
}

TEST_F(LogSweepTest, WithoutTreesNothingIsSwept)
{
    mDir.Write("rules/FaultTrees.xml", TreeXml("Tag").Version("1").Text());
    EXPECT_FALSE(Sweep({DAY, 30 * DAY}));
    EXPECT_THAT(mAnswers, IsEmpty());
}

TEST_F(LogSweepTest, AnObserverNeedsToHearNothing)
{
    Log({{10 * DAY, 7, "", ""}});
    auto info = std::make_shared<DetectInfo>();
    info->mDetectScene = 1;
    info->mTreeTag = "Tag";
    info->mRuleFileDir = mDir.Path("rules");
    SweepObserver deaf;
    EXPECT_TRUE(LogSweep(info).Run({DAY, 30 * DAY}, deaf));
    mSettings.Set(Settings::TIME_LIMIT, "0.000001");
    EXPECT_TRUE(LogSweep(info).Run({DAY, 30 * DAY}, deaf)) << "stopped";
}

TEST(SweepPlanTest, RulesAreInTheOrderOfEventsAndNames)
{
    using Unswept = SweepPlan::Unswept;
    EXPECT_LT((Unswept{"A", "z", ""}), (Unswept{"B", "a", ""}));
    EXPECT_LT((Unswept{"A", "a", "z"}), (Unswept{"A", "b", "a"}));
    EXPECT_FALSE((Unswept{"A", "a", "x"}) < (Unswept{"A", "a", "y"}));
}

TEST_F(LogSweepTest, WithoutARuleFileNothingIsSwept)
{
    auto info = std::make_shared<DetectInfo>();
    info->mRuleFileDir = mDir.Path("nowhere");
    EXPECT_FALSE(LogSweep(info).Run({0, 5}, *this));
    EXPECT_THAT(mAnswers, IsEmpty());
}

} // namespace
