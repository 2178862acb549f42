#include "arborist/loading/rule_parser.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/log.h"
#include "arborist/loading/rule_element_parse.h"
#include "tests/loading/xml_text.h"
#include "tests/support/log_capture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const char* const UNKNOWN_ELEMENT =
    "FUNc:RuleParser::HandleParseRuleElement: HandleParseRuleElement can not parse this element";

class RuleParserTest : public testing::Test {
protected:
    bool Parse(const std::string& text, const std::string& tag = "jank")
    {
        RuleParser parser;
        const bool parsed = parser.Parse(XmlText(text).Document(), tag);
        mRules = parser.TakeRuleMap();
        mCodeRules = parser.TakeCodeRuleList();
        mCodeRuleNames = parser.TakeCodeRuleNames();
        return parsed;
    }

    // The rule of one element, as its family; null with a failure when it is none.
    template <typename Family>
    std::shared_ptr<Family> RuleOf(const Xml& element)
    {
        EXPECT_TRUE(Parse(RuleXml("jank").Rule(element).Text()));
        auto rule = mRules.empty() ? nullptr : std::dynamic_pointer_cast<Family>(mRules.begin()->second);
        EXPECT_NE(rule, nullptr);
        return rule;
    }

    // "name=family ..." in order of name.
    std::string Rules() const
    {
        std::string told;
        for (const auto& [name, rule] : mRules) {
            told += name + "=" + rule->GetRuleType() + " ";
        }
        return told;
    }

    LogCapture mLog;
    RuleParser::RuleMap mRules;
    RuleParser::CodeRuleList mCodeRules;
    std::vector<std::string> mCodeRuleNames;
};

TEST_F(RuleParserTest, OneRuleElementMayHoldSeveralRules)
{
    Parse(RuleXml("jank").In("RuleList", Xml("rule").Child(AlarmRuleXml("A", {})).Child(CodeRuleXml("C", "1"))
        .Child(CommandRuleXml("Q")).Child(NodeRuleXml("N", {}))).Text());
    EXPECT_EQ(Rules(), "A=AlarmRule C=CodeRule N=NodeRule Q=CommandRule ");
    EXPECT_THAT(mCodeRuleNames, ElementsAre("C"));
}

TEST_F(RuleParserTest, UnknownChildIsRefusedAndTheOthersStay)
{
    EXPECT_TRUE(Parse(RuleXml("jank").In("RuleList", Xml("rule").Child(AlarmRuleXml("A", {})).Child(Xml("fooRule"))
        .Child(NodeRuleXml("N", {}))).Text()));
    EXPECT_EQ(Rules(), "A=AlarmRule N=NodeRule ");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(UNKNOWN_ELEMENT));
}

TEST_F(RuleParserTest, OtherElementsBesideRulesArePassedOver)
{
    Parse(RuleXml("jank").In("RuleList", AlarmRuleXml("A", {})).Rule(CodeRuleXml("C", "1")).Text());
    EXPECT_EQ(Rules(), "C=CodeRule ");
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RuleParserTest, LaterRuleOfAnameWinsWhateverTheFamilies)
{
    Parse(RuleXml("jank").Rule(CodeRuleXml("R", "1")).Rule(CodeRuleXml("S", "2")).Rule(AlarmRuleXml("R", {}))
        .Rule(CodeRuleXml("S", "3")).Text());
    EXPECT_EQ(Rules(), "R=AlarmRule S=CodeRule ");
    EXPECT_EQ(std::dynamic_pointer_cast<CodeRule>(mRules.at("S"))->codeItem.id, "3");
    EXPECT_THAT(mCodeRuleNames, ElementsAre("R", "S", "S")) << "a replaced code rule stays in the lists";
    EXPECT_EQ(mCodeRules.size(), 3U);
}

TEST_F(RuleParserTest, RuleWithoutNameIsDropped)
{
    Parse(RuleXml("jank").Rule(Xml("nodeRule")).Rule(Xml("alarmRule").Attr("name", "")).Rule(CodeRuleXml("", "1")).Text());
    EXPECT_EQ(Rules(), "");
    EXPECT_THAT(mCodeRules, IsEmpty());
    EXPECT_THAT(mCodeRuleNames, IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RuleParserTest, CommonAttributesAreStoredByName)
{
    const auto rule = RuleOf<NodeRule>(Xml("nodeRule").Attr("deviceType", "d").Attr("detectScene", "s")
        .Attr("blackProducts", "b").Attr("production", "p").Attr("platform", "f").Attr("type", "t").Attr("name", "n"));
    EXPECT_EQ(rule->name, "n");
    EXPECT_EQ(rule->type, "t");
    EXPECT_EQ(rule->platform, "f");
    EXPECT_EQ(rule->production, "p");
    EXPECT_EQ(rule->blackProducts, "b");
    EXPECT_EQ(rule->detectScene, "s");
    EXPECT_EQ(rule->deviceType, "d");
}

TEST_F(RuleParserTest, EmptyTagIsAnError)
{
    EXPECT_FALSE(Parse("<r/>", ""));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre("FUNc:RuleParser::Parse: Parse input tag empty"));
}

TEST_F(RuleParserTest, DocumentWithoutARootIsFalseInSilence)
{
    EXPECT_FALSE(Parse("<?xml version=\"1.0\"?>"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RuleParserTest, MissingSectionOrTagIsTrueWithNoRules)
{
    EXPECT_TRUE(Parse("<r/>"));
    EXPECT_TRUE(Parse("<r><RuleList/></r>"));
    EXPECT_TRUE(Parse(RuleXml("other").Rule(CodeRuleXml("C", "1")).Text()));
    EXPECT_TRUE(Parse("<r><RuleList><jank/></RuleList></r>"));
    EXPECT_EQ(Rules(), "");
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

// ---- Alarm rules. ----

TEST_F(RuleParserTest, AlarmItemsKeepTheirAttributesWindowsParametersAndTests)
{
    const auto rule = RuleOf<AlarmRule>(AlarmRuleXml("R", {
        Xml("alarmId").Attr("type", "param_eventid").Attr("Eventid_Min", "10").Attr("Eventid_Max", "20")
            .Attr("BeginFlag", "3").Child(TimeXml("duration", "1", "2")).Child(TimeXml("daily_peak", "3", "4"))
            .Child(TimeXml("latest", "5", "6")).Child(ParamsXml({ParamXml("p", "k", "int")}))
            .Child(ConditionXml({SingleLogicXml(TestXml("gt", "p", "5"))})),
        AlarmIdXml("7", "8", {})}));
    ASSERT_EQ(rule->alarmItemList.size(), 2U);
    const auto& item = *rule->alarmItemList[0];
    EXPECT_EQ(item.type, "param_eventid");
    EXPECT_EQ(item.Eventid_Min, "10");
    EXPECT_EQ(item.Eventid_Max, "20");
    EXPECT_EQ(item.BeginFlag, "3");
    EXPECT_EQ(item.duration->period, 1);
    EXPECT_EQ(item.duration->threshold, 2);
    EXPECT_EQ(item.daily_peak->period, 3);
    EXPECT_EQ(item.latest->threshold, 6);
    EXPECT_EQ(item.latest->type, "latest");
    EXPECT_EQ(item.params.at("p")->key, "k");
    ASSERT_EQ(item.conditionList.size(), 1U);
    EXPECT_EQ(item.conditionList[0]->GetParamId(), "p");
    EXPECT_EQ(rule->alarmItemList[1]->Eventid_Min, "7");
}

TEST_F(RuleParserTest, BeginFlagOfAnAlarmItemIsOneUnlessGivenAlsoWhenEmpty)
{
    const auto rule = RuleOf<AlarmRule>(AlarmRuleXml("R", {Xml("alarmId"), Xml("alarmId").Attr("BeginFlag", "")}));
    EXPECT_EQ(rule->alarmItemList.at(0)->BeginFlag, "1");
    EXPECT_EQ(rule->alarmItemList.at(1)->BeginFlag, "");
    EXPECT_EQ(rule->alarmItemList.at(0)->duration, nullptr);
}

TEST_F(RuleParserTest, LaterWindowOfATypeReplacesTheEarlierAndOtherTypesAreDropped)
{
    const auto rule = RuleOf<AlarmRule>(AlarmRuleXml("R", {AlarmIdXml("1", "2", {TimeXml("latest", "1", "1"),
        TimeXml("weekly", "9", "9"), Xml("time").Attr("period", "8"), TimeXml("latest", "2", "3")})}));
    const auto& item = *rule->alarmItemList.at(0);
    EXPECT_EQ(item.latest->period, 2);
    EXPECT_EQ(item.latest->threshold, 3);
    EXPECT_EQ(item.duration, nullptr);
    EXPECT_EQ(item.daily_peak, nullptr);
}

TEST_F(RuleParserTest, NumberThatIsNoneReadsAsZero)
{
    const auto rule = RuleOf<AlarmRule>(AlarmRuleXml("R", {AlarmIdXml("1", "2", {
        TimeXml("latest", "many", ""), Xml("time").Attr("type", "duration"), TimeXml("daily_peak", "-4", "0")})}));
    const auto& item = *rule->alarmItemList.at(0);
    EXPECT_EQ(item.latest->period, 0);
    EXPECT_EQ(item.latest->threshold, 0);
    EXPECT_EQ(item.duration->period, 0);
    EXPECT_EQ(item.daily_peak->period, -4);
}

TEST_F(RuleParserTest, FirstParamsAndConditionOfAnAlarmItemCount)
{
    const auto rule = RuleOf<AlarmRule>(AlarmRuleXml("R", {AlarmIdXml("1", "2", {
        ParamsXml({ParamXml("p", "k", "int")}), ParamsXml({ParamXml("q", "k", "int")}),
        ConditionXml({SingleLogicXml(TestXml("gt", "p", "5"))}), ConditionXml({SingleLogicXml(TestXml("lt", "p", "5"))})})}));
    EXPECT_EQ(rule->alarmItemList.at(0)->params.size(), 1U);
    EXPECT_EQ(rule->alarmItemList.at(0)->conditionList.size(), 1U);
}

// ---- Code rules. ----

TEST_F(RuleParserTest, CodeRuleKeepsItsCodeAndUserDefinedInfo)
{
    const auto rule = RuleOf<CodeRule>(CodeRuleXml("C", "850001001", "{\"a\": 1}"));
    EXPECT_EQ(rule->codeItem.id, "850001001");
    EXPECT_EQ(rule->userDefinedInfo, "{\"a\": 1}");
    EXPECT_EQ(mCodeRules.at(0), rule);
}

TEST_F(RuleParserTest, CodeRuleWithoutDetectInfoGivesNoRuleAndNoLine)
{
    EXPECT_TRUE(Parse(RuleXml("jank").Rule(Xml("codeRule").Attr("name", "C")).Text()));
    EXPECT_EQ(Rules(), "");
    EXPECT_THAT(mCodeRules, IsEmpty());
    EXPECT_THAT(mCodeRuleNames, IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RuleParserTest, CodeRuleWithoutAnIdIsKeptWithTheEmptyCode)
{
    const auto rule = RuleOf<CodeRule>(Xml("codeRule").Attr("name", "C").Child(Xml("detectInfo"))
        .Child(Xml("detectInfo").Attr("id", "second")));
    EXPECT_EQ(rule->codeItem.id, "");
    EXPECT_EQ(rule->userDefinedInfo, "");
}

// ---- Command rules. ----

TEST_F(RuleParserTest, CommandRuleKeepsAllItsParts)
{
    const auto rule = RuleOf<CommandRule>(CommandRuleXml("Q")
        .Child(Xml("referenceCommonPart").TextChild("commonPartDomain", "domain").TextChild("commonPartName", "bean"))
        .Child(Xml("referenceDefDB").Attr("type", "singleDB").TextChild("defDBDomain", "dd").TextChild("defDBName", "dn")
            .TextChild("defDBNum", "3"))
        .Child(Xml("queryReturnParam").Child(ParamsXml({ParamXml("p", "first", "int")}))
            .Child(ParamsXml({ParamXml("p", "second", "int"), ParamXml("q", "k", "int")})))
        .Child(AnalysisMethodXml("normalization", {
            Xml("sql").Text("SELECT 1 < 2"), TimeXml("latest", "7", "2"), Xml("BeginFlag").Attr("value", "4"),
            ConditionXml({SingleLogicXml(TestXml("gt", "p", "5"))}),
            Xml("normalization").Child(Xml("normalizationParam").Child(Xml("defineNormalizationProp").Attr("id", "n1"))
                    .Child(Xml("defineNormalizationProp")).Child(Xml("defineNormalizationProp").Attr("id", "n2")))
                .Child(Xml("timeParam").Child(Xml("defineTimeProp").Attr("id", "t1")).Child(Xml("defineTimeProp")))})));
    EXPECT_EQ(rule->commonPartDomain, "domain");
    EXPECT_EQ(rule->commonPartName, "bean");
    ASSERT_NE(rule->referenceDefDb, nullptr);
    EXPECT_EQ(rule->referenceDefDb->type, "singleDB");
    EXPECT_EQ(rule->referenceDefDb->defDBDomain, "dd");
    EXPECT_EQ(rule->referenceDefDb->defDBName, "dn");
    EXPECT_EQ(rule->referenceDefDb->defDBNum, "3");
    ASSERT_EQ(rule->params.size(), 2U);
    EXPECT_EQ(rule->params.at("p")->key, "first");
    EXPECT_EQ(rule->analysisMethod.type, "SQL");
    const auto& item = rule->analysisMethod.sqlItem;
    EXPECT_EQ(item.type, "normalization");
    EXPECT_EQ(item.sql, "SELECT 1 < 2");
    EXPECT_EQ(item.time.type, "latest");
    EXPECT_EQ(item.time.period, 7);
    EXPECT_EQ(item.time.threshold, 2);
    EXPECT_EQ(item.BeginFlag, "4");
    EXPECT_EQ(item.conditionList.size(), 1U);
    EXPECT_THAT(item.normalizationParamList, ElementsAre("n1", "n2"));
    EXPECT_THAT(item.timeParamList, ElementsAre("t1"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RuleParserTest, CommandRuleWithAnEmptyBodyHasDefaults)
{
    const auto rule = RuleOf<CommandRule>(CommandRuleXml("Q"));
    EXPECT_EQ(rule->referenceDefDb, nullptr);
    EXPECT_EQ(rule->analysisMethod.type, "");
    EXPECT_EQ(rule->analysisMethod.sqlItem.BeginFlag, "1");
    EXPECT_THAT(rule->params, IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RuleParserTest, AnalysisMethodWithoutSqlConditionWarnsAndTheRuleStays)
{
    const auto rule = RuleOf<CommandRule>(CommandRuleXml("Q").Child(Xml("AnalysisMethod").Attr("type", "SQL")));
    EXPECT_EQ(rule->analysisMethod.type, "SQL");
    EXPECT_EQ(rule->analysisMethod.sqlItem.sql, "");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
        ElementsAre("FUNc:CommandRuleElementParse::ParseAnalysisMethod: sqlCondition element is null."));
}

TEST_F(RuleParserTest, SqlConditionWithoutAnItemKeepsItsType)
{
    const auto rule = RuleOf<CommandRule>(CommandRuleXml("Q").Child(
        Xml("AnalysisMethod").Child(Xml("SQL_Condition").Attr("type", "defDBSql"))));
    EXPECT_EQ(rule->analysisMethod.sqlItem.type, "defDBSql");
    EXPECT_EQ(rule->analysisMethod.sqlItem.sql, "");
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RuleParserTest, NormalizationWithTimeParamAloneFillsIt)
{
    const auto rule = RuleOf<CommandRule>(CommandRuleXml("Q").Child(AnalysisMethodXml("normalization",
        {Xml("normalization").Child(Xml("timeParam").Child(Xml("defineTimeProp").Attr("id", "t")))})));
    EXPECT_THAT(rule->analysisMethod.sqlItem.timeParamList, ElementsAre("t"));
    EXPECT_THAT(rule->analysisMethod.sqlItem.normalizationParamList, IsEmpty());
}

TEST_F(RuleParserTest, BeginFlagOfASqlItemIsItsValueAttributeAlone)
{
    const auto textOnly = RuleOf<CommandRule>(CommandRuleXml("Q").Child(
        AnalysisMethodXml("defDBSql", {Xml("BeginFlag").Text("3")})));
    EXPECT_EQ(textOnly->analysisMethod.sqlItem.BeginFlag, "1");
    const auto empty = RuleOf<CommandRule>(CommandRuleXml("Q").Child(
        AnalysisMethodXml("defDBSql", {Xml("BeginFlag").Attr("value", "")})));
    EXPECT_EQ(empty->analysisMethod.sqlItem.BeginFlag, "");
}

// ---- Node rules. ----

TEST_F(RuleParserTest, NodeRuleKeepsItsNodesParametersExpressionAndTests)
{
    const auto rule = RuleOf<NodeRule>(NodeRuleXml("N", {
        NodeInfoXml("a", "/proc/a", "int"), Xml("nodeInfo").Attr("param", "b"), ParamsXml({ParamXml("a", "k", "int")}),
        ParamsXml({ParamXml("b", "k", "int")}), LogicExpressionXml("a+b", "c", "double"), LogicExpressionXml("2", "d"),
        ConditionXml({SingleLogicXml(TestXml("gt", "c", "5"))})}));
    ASSERT_EQ(rule->GetNodeInfoList().size(), 2U);
    EXPECT_EQ(rule->GetNodeInfoList()[0]->GetParam(), "a");
    EXPECT_EQ(rule->GetNodeInfoList()[0]->GetPath(), "/proc/a");
    EXPECT_EQ(rule->GetNodeInfoList()[0]->GetType(), "int");
    EXPECT_EQ(rule->GetNodeInfoList()[1]->GetPath(), "");
    EXPECT_EQ(rule->GetParamMap().size(), 1U) << "the first block counts";
    EXPECT_EQ(rule->GetLogicExpression().GetExpress(), "a+b");
    EXPECT_EQ(rule->GetLogicExpression().GetRet(), "c");
    EXPECT_EQ(rule->GetLogicExpression().GetType(), "double");
    EXPECT_EQ(rule->GetConditionList().size(), 1U);
}

TEST_F(RuleParserTest, NodeRuleWithAnEmptyBodyHasDefaults)
{
    const auto rule = RuleOf<NodeRule>(NodeRuleXml("N", {}));
    EXPECT_THAT(rule->GetNodeInfoList(), IsEmpty());
    EXPECT_THAT(rule->GetParamMap(), IsEmpty());
    EXPECT_THAT(rule->GetConditionList(), IsEmpty());
    EXPECT_EQ(rule->GetLogicExpression().GetExpress(), "");
}

TEST(RuleElementParseTest, ElementOfAnotherFamilyGivesNoRule)
{
    const XmlText xml(Xml("otherRule").Attr("name", "R").Child(Xml("detectInfo")));
    EXPECT_EQ(AlarmRuleElementParse(xml.Root()).Parse(), nullptr);
    EXPECT_EQ(CodeRuleElementParse(xml.Root()).Parse(), nullptr);
    EXPECT_EQ(CommandRuleElementParse(xml.Root()).Parse(), nullptr);
    EXPECT_EQ(NodeAlarmElementParse(xml.Root()).Parse(), nullptr);
}

} // namespace
