#include "tests/support/xml_builder.h"

#include <gtest/gtest.h>

namespace {

TEST(XmlBuilderTest, ElementEscapesTextsAndAttributesButNotRawText)
{
    EXPECT_EQ(Xml("a").Attr("b", "\"<&>").Text("1 < 2").Raw("<c/>").ToText(),
        "<a b=\"&quot;&lt;&amp;&gt;\">1 &lt; 2<c/></a>");
    EXPECT_EQ(Xml("a").ToText(), "<a/>");
}

TEST(XmlBuilderTest, TreeFileHoldsTreesInItsSection)
{
    EXPECT_EQ(TreeXml("jank").Version("7").Tree("T", Or({Basic("A", {"n", "v", "u", "2"})})).Text(),
        "<FaultTrees version=\"7\">\n"
        "<jank>\n"
        "<Fault-Tree id=\"T\" version=\"1\" type=\"test\"><Intermediate-Event><ID>T</ID><Or-Gate>"
        "<Basic-Event><ID>A</ID><Name>n</Name><Value>v</Value><UserDefined>u</UserDefined>"
        "<DetectMode>2</DetectMode></Basic-Event></Or-Gate></Intermediate-Event></Fault-Tree>\n"
        "</jank>\n"
        "</FaultTrees>");
}

TEST(XmlBuilderTest, GatesNest)
{
    EXPECT_EQ(Intermediate("I", And({Basic("A")})).ToText(),
        "<Intermediate-Event><ID>I</ID><And-Gate><Basic-Event><ID>A</ID></Basic-Event></And-Gate>"
        "</Intermediate-Event>");
}

TEST(XmlBuilderTest, RuleFileHoldsOnlySectionsThatWereGivenSomething)
{
    EXPECT_EQ(RuleXml("jank").EventRule("A", {Single("R"), Multiple({"R1", "R2"})}).Text(),
        "<FaultTreeRules>\n<EventRules><jank>\n"
        "<Event><ID>A</ID><or type=\"singleRule\"><Rule><Rule-name>R</Rule-name></Rule></or>"
        "<or type=\"multipleRule\"><and><Rule><Rule-name>R1</Rule-name></Rule>"
        "<Rule><Rule-name>R2</Rule-name></Rule></and></or></Event>\n"
        "</jank></EventRules></FaultTreeRules>");
}

TEST(XmlBuilderTest, DescriptionsStandInTheirSections)
{
    EXPECT_EQ(RuleXml("t").FaultDescription("A", {"d"}).Solution("A", {"s"}).Repair("A", {{"r", "x"}, {"q", ""}}).Text(),
        "<FaultTreeRules>\n"
        "<EventFaultDescriptions><t>\n<Event><ID>A</ID><FaultDescriptions><description id=\"d\"/>"
        "</FaultDescriptions></Event>\n</t></EventFaultDescriptions>\n"
        "<EventSolutions><t>\n<Event><ID>A</ID><Solutions><solution id=\"s\"/></Solutions></Event>\n"
        "</t></EventSolutions>\n"
        "<RepairDescriptions><t>\n<Event><ID>A</ID><Descriptions><description id=\"r\" extra=\"x\"/>"
        "<description id=\"q\"/></Descriptions></Event>\n</t></RepairDescriptions></FaultTreeRules>");
}

TEST(XmlBuilderTest, RulesOfAllFamilies)
{
    EXPECT_EQ(AlarmRuleXml("R", {AlarmIdXml("1", "2", {TimeXml("latest", "3", "4")})}).ToText(),
        "<alarmRule name=\"R\" detectScene=\"1\"><alarmId Eventid_Min=\"1\" Eventid_Max=\"2\">"
        "<time type=\"latest\" period=\"3\" threshold=\"4\"/></alarmId></alarmRule>");
    EXPECT_EQ(CodeRuleXml("R", "c", "u", "1,2").ToText(),
        "<codeRule name=\"R\" detectScene=\"1,2\"><detectInfo id=\"c\"/><userDefinedInfo>u</userDefinedInfo>"
        "</codeRule>");
    EXPECT_EQ(CommandRuleXml("R").Child(AnalysisMethodXml("defDBSql", {Xml("sql").Text("q")})).ToText(),
        "<commandRule name=\"R\" detectScene=\"1\"><AnalysisMethod type=\"SQL\"><SQL_Condition type=\"defDBSql\">"
        "<SQLItem><sql>q</sql></SQLItem></SQL_Condition></AnalysisMethod></commandRule>");
    EXPECT_EQ(NodeRuleXml("R", {NodeInfoXml("p", "/f"), LogicExpressionXml("p+1", "x")}).ToText(),
        "<nodeRule name=\"R\" detectScene=\"1\"><nodeInfo type=\"\" path=\"/f\" param=\"p\"/>"
        "<logicExpression type=\"\" ret=\"x\" express=\"p+1\"/></nodeRule>");
}

TEST(XmlBuilderTest, ConditionsAndParameters)
{
    const Xml test = TestXml("gt", "p", "5");
    EXPECT_EQ(ConditionXml({SingleLogicXml(test), MultipleLogicXml({test})}).ToText(),
        "<condition><or type=\"single_logic\"><gt><id>p</id><value>5</value></gt></or>"
        "<or type=\"multiple_logic\"><and><gt><id>p</id><value>5</value></gt></and></or></condition>");
    EXPECT_EQ(ParamsXml({ParamXml("p", "k", "int")}).ToText(),
        "<params><param id=\"p\" key=\"k\" type=\"int\"/></params>");
}

TEST(XmlBuilderTest, DetectInfoNamesTheFolderAndTheTag)
{
    const TempDir dir;
    const auto detectInfo = DetectInfoFor(dir, "jank");
    EXPECT_EQ(detectInfo->mRuleFileDir, dir.Path());
    EXPECT_EQ(detectInfo->mTreeTag, "jank");
    EXPECT_EQ(detectInfo->mDetectScene, 1);
}

} // namespace
