#include "diagnosis/rule_set/difference.h"

#include <gmock/gmock.h>

#include "tests/diagnosis/rule_set/rule_set_folder.h"
#include "tests/support/case_name.h"

namespace {

using diagnosis::rule_set::Change;
using testing::ElementsAre;
using testing::IsEmpty;

// "changed rule r, detectScene: 1 -> 2"
std::vector<std::string> Lines(const std::vector<Change>& changes)
{
    std::vector<std::string> lines;
    for (const Change& change : changes) {
        lines.push_back(std::string(diagnosis::rule_set::ChangeWord(change.what)) + " "
            + diagnosis::rule_set::KindWord(change.kind) + " " + change.name
            + (change.key.empty() ? "" : ", " + change.key + ": " + change.before + " -> " + change.after));
    }
    return lines;
}

TreeXml Trees(const Xml& gate = Or({Basic("A"), Basic("B")})) { return TreeXml("Tag").Version("1").Tree("T", gate); }

RuleXml Rules(const std::string& scene = "1", const std::string& threshold = "3")
{
    return RuleXml("Tag")
        .EventRule("A", {Single("r")})
        .Rule(AlarmRuleXml("r", {AlarmIdXml("7", "9", {TimeXml("duration", "30", threshold)})}, scene))
        .FaultDescription("A", {"D1", "D2"});
}

class Difference : public testing::Test {
protected:
    std::vector<std::string> Of(const TreeXml& trees, const RuleXml& rules)
    {
        WriteRuleSet(mDir, "a", Trees(), Rules());
        WriteRuleSet(mDir, "b", trees, rules);
        return Lines(DifferencesOf(*ReadFolder("a"), *ReadFolder("b")));
    }

    TempDir mDir;
};

TEST_F(Difference, OfEqualRuleSetsIsEmpty)
{
    EXPECT_THAT(Of(Trees(), Rules()), IsEmpty());
}

// The second text has other attribute order, blanks around an id, comments, what nobody reads, and a replaced rule.
TEST_F(Difference, IsEmptyForTextsThatReadTheSame)
{
    mDir.Write("a/FaultTrees.xml", "<R version=\"1\"><Tag><t id=\"T\" version=\"1\" type=\"x\"><Intermediate-Event><ID>T</ID>"
        "<Or-Gate><Basic-Event><ID>A</ID></Basic-Event></Or-Gate></Intermediate-Event></t></Tag></R>");
    mDir.Write("b/FaultTrees.xml", "<Other version=\"1\"><!-- c --><Tag>\n <u type=\"x\" id=\"T\" version=\"1\" more=\"z\">"
        "<Intermediate-Event>\n<Or-Gate> <Basic-Event><Note>n</Note><ID> A </ID></Basic-Event></Or-Gate>"
        "<And-Gate><Basic-Event><ID>Z</ID></Basic-Event></And-Gate><ID>T</ID></Intermediate-Event></u></Tag></Other>");
    mDir.Write("a/FaultTreeRules.xml", "<R><RuleList><Tag><rule><alarmRule name=\"r\" detectScene=\"1\"><alarmId "
        "Eventid_Min=\"7\" Eventid_Max=\"9\"><time type=\"duration\" period=\"30\" threshold=\"3\"/></alarmId></alarmRule>"
        "</rule></Tag></RuleList></R>");
    mDir.Write("b/FaultTreeRules.xml", "<R><RuleList><Tag><rule><nodeRule name=\"r\"/></rule><rule><alarmRule "
        "detectScene=\"1\" name=\"r\"><!-- c --><alarmId BeginFlag=\"1\" Eventid_Max=\"9\" Eventid_Min=\"007\"><time "
        "threshold=\"99\" type=\"duration\"/><time threshold=\"3\" period=\"30\" type=\"duration\"/></alarmId></alarmRule>"
        "</rule></Tag></RuleList></R>");
    EXPECT_THAT(Lines(DifferencesOf(*ReadFolder("a"), *ReadFolder("b"))), IsEmpty());
}

TEST_F(Difference, NamesEventsThatAreAddedAndGone)
{
    EXPECT_THAT(Of(Trees(Or({Basic("A"), Basic("C")})), Rules()), ElementsAre("gone event T/T/B", "added event T/T/C"));
}

TEST_F(Difference, OfAnAddedBranchNamesItsTopAlone)
{
    EXPECT_THAT(Of(Trees(Or({Basic("A"), Basic("B"), Intermediate("G", And({Basic("C"), Basic("D")}))})), Rules()),
        ElementsAre("added event T/T/G"));
}

TEST_F(Difference, ToldOfGatesKindsAndOrder)
{
    EXPECT_THAT(Of(Trees(And({Basic("B"), Xml("House").TextChild("ID", "A")})), Rules()),
        ElementsAre("changed event T/T, gate: OR -> AND", "changed event T/T, order of events: A, B -> B, A",
            "changed event T/T/A, kind: basic -> undeveloped"));
}

TEST_F(Difference, TellsSiblingsOfOneIdApart)
{
    EXPECT_THAT(Of(Trees(Or({Basic("A"), Basic("B"), Basic("B")})), Rules()), ElementsAre("added event T/T/B#2"));
}

TEST_F(Difference, OfATreeNamesItAlone)
{
    EXPECT_THAT(Of(Trees().Tree("U", Or({Basic("X")})), Rules()), ElementsAre("added tree U"));
}

TEST_F(Difference, OfTheOrderOfTreesIsOne)
{
    WriteRuleSet(mDir, "a", TreeXml("Tag").Tree("T", Or({})).Tree("U", Or({})), RuleXml("Tag"));
    WriteRuleSet(mDir, "b", TreeXml("Tag").Tree("U", Or({})).Tree("T", Or({})), RuleXml("Tag"));
    EXPECT_THAT(Lines(DifferencesOf(*ReadFolder("a"), *ReadFolder("b"))),
        ElementsAre("changed tag Tag, order of trees: T, U -> U, T"));
}

TEST_F(Difference, OfFiltersAndThresholdsHasBothValues)
{
    EXPECT_THAT(Of(Trees(), Rules("1,2", "5")), ElementsAre("changed rule r, detectScene: 1 -> 1,2",
        "changed rule r, alarm item 1, duration, threshold: 3 -> 5"));
}

TEST_F(Difference, OfRulesAndDescriptionsNamesThem)
{
    const RuleXml rules = RuleXml("Tag").EventRule("A", {Single("r"), Multiple({"s", "u"})}).Rule(CodeRuleXml("s", "C"))
        .Solution("A", {"S"});
    EXPECT_THAT(Of(Trees(), rules), ElementsAre("changed event rules A, rules: r -> r or (s and u)", "gone rule r",
        "gone fault descriptions A", "added rule s", "added solutions A"));
}

// The first code rule that holds a code answers for it, also one that a later rule of the same name replaced.
TEST_F(Difference, OfTheOrderOfCodeRulesIsOne)
{
    const Xml one = CodeRuleXml("r", "C");
    const Xml other = CodeRuleXml("s", "CC");
    WriteRuleSet(mDir, "a", Trees(), RuleXml("Tag").Rule(one).Rule(other));
    WriteRuleSet(mDir, "b", Trees(), RuleXml("Tag").Rule(other).Rule(one));
    EXPECT_THAT(Lines(DifferencesOf(*ReadFolder("a"), *ReadFolder("b"))),
        ElementsAre("changed tag Tag, order of detection codes: r (C), s (CC) -> s (CC), r (C)"));
}

TEST_F(Difference, OfATagNamesItAlone)
{
    EXPECT_THAT(Of(Trees().Raw("<More><t id=\"X\" version=\"1\" type=\"1\"/></More>"), Rules()),
        ElementsAre("added tag More"));
}

TEST_F(Difference, HasThePlacesOfBothSides)
{
    WriteRuleSet(mDir, "a", Trees(), Rules("1"));
    WriteRuleSet(mDir, "b", Trees(), Rules("2"));
    const auto changes = DifferencesOf(*ReadFolder("a"), *ReadFolder("b"));
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].beforePlace.file, "a/FaultTreeRules.xml");
    EXPECT_EQ(changes[0].afterPlace.file, "b/FaultTreeRules.xml");
    EXPECT_GT(changes[0].afterPlace.line, 0);
}

// ---- Every part of a rule is compared. ----

struct RuleChange {
    const char* name;
    const char* before;
    const char* after;
    const char* expected;
};
void PrintTo(const RuleChange& change, std::ostream* out) { *out << change.name; }
class RuleDifference : public testing::TestWithParam<RuleChange> {};

TEST_P(RuleDifference, IsOneFact)
{
    TempDir dir;
    for (const auto& [folder, text] : {std::pair("a", GetParam().before), std::pair("b", GetParam().after)}) {
        dir.Write(folder + std::string("/FaultTrees.xml"), Trees().Text());
        dir.Write(folder + std::string("/FaultTreeRules.xml"),
            "<R><RuleList><Tag><rule>" + std::string(text) + "</rule></Tag></RuleList><RuleCommonPart><Tag><commonPart>"
                + text + "</commonPart></Tag></RuleCommonPart></R>");
    }
    EXPECT_THAT(Lines(DifferencesOf(*ReadFolder("a"), *ReadFolder("b"))), ElementsAre(GetParam().expected));
}

#define NODE(content) "<nodeRule name=\"r\">" content "</nodeRule>"
#define COMMAND(content) "<commandRule name=\"r\">" content "</commandRule>"
#define SQL_ITEM(content) \
    COMMAND("<AnalysisMethod type=\"SQL\"><SQL_Condition type=\"s\"><SQLItem>" content "</SQLItem></SQL_Condition></AnalysisMethod>")
#define BEAN(content) "<thresholdsOrLumbraData name=\"b\">" content "</thresholdsOrLumbraData>"
#define TABLE(content) "<defDBTable name=\"d\">" content "</defDBTable>"
#define TEST_OF(word, value) "<" word "><id>1</id><value>" value "</value></" word ">"

INSTANTIATE_TEST_SUITE_P(Table, RuleDifference, testing::Values(
    RuleChange{"Family", NODE(""), "<alarmRule name=\"r\"/>", "changed rule r, family: node -> alarm"},
    RuleChange{"NodePath", NODE("<nodeInfo path=\"/a\" param=\"P\"/>"), NODE("<nodeInfo path=\"/b\" param=\"P\"/>"),
        "changed rule r, node 1, path: /a -> /b"},
    RuleChange{"ParameterType", NODE("<params><param id=\"1\" key=\"K\" type=\"int\"/></params>"),
        NODE("<params><param id=\"1\" key=\"K\" type=\"long\"/></params>"),
        "changed rule r, parameter 1: K (int) -> K (long)"},
    RuleChange{"Formula", NODE("<logicExpression express=\"A+B\"/>"), NODE("<logicExpression express=\"A-B\"/>"),
        "changed rule r, logicExpression, express: A+B -> A-B"},
    RuleChange{"Comparison", NODE("<condition><or type=\"single_logic\">" TEST_OF("gt", "5") "</or></condition>"),
        NODE("<condition><or type=\"single_logic\">" TEST_OF("ge", "5") "</or></condition>"),
        "changed rule r, condition 1: single: 1 gt 5 -> single: 1 ge 5"},
    RuleChange{"ConditionAdded", NODE(""),
        NODE("<condition><or type=\"multiple_logic\"><and>" TEST_OF("gt", "5") TEST_OF("lt", "9") "</and></or></condition>"),
        "added rule r, condition 1:  -> multiple: 1 gt 5 and 1 lt 9"},
    RuleChange{"Sql", SQL_ITEM("<sql>a</sql>"), SQL_ITEM("<sql>b</sql>"), "changed rule r, sql: a -> b"},
    RuleChange{"BeginFlag", SQL_ITEM("<BeginFlag value=\"2\"/>"), SQL_ITEM(""), "changed rule r, BeginFlag: 2 -> 1"},
    RuleChange{"SqlPeriod", SQL_ITEM("<time type=\"t\" period=\"1\"/>"), SQL_ITEM("<time type=\"t\" period=\"2\"/>"),
        "changed rule r, time, period: 1 -> 2"},
    RuleChange{"SharedData", COMMAND("<referenceCommonPart><commonPartName>b</commonPartName></referenceCommonPart>"),
        COMMAND("<referenceCommonPart><commonPartName>c</commonPartName></referenceCommonPart>"),
        "changed rule r, shared data: b -> c"},
    RuleChange{"Database", COMMAND("<referenceDefDB type=\"singleDB\"><defDBNum>1</defDBNum></referenceDefDB>"),
        COMMAND("<referenceDefDB type=\"singleDB\"><defDBNum>2</defDBNum></referenceDefDB>"),
        "changed rule r, database, defDBNum: 1 -> 2"},
    RuleChange{"Code", "<codeRule name=\"r\"><detectInfo id=\"C\"/><userDefinedInfo>{}</userDefinedInfo></codeRule>",
        "<codeRule name=\"r\"><detectInfo id=\"C\"/></codeRule>", "gone rule r, userDefinedInfo: {} -> "},
    RuleChange{"BeanThreshold",
        BEAN("<ThresholdMappingTable><ThresholdItem><thresholds><threshold id=\"1\" value=\"5\"/></thresholds>"
             "</ThresholdItem></ThresholdMappingTable>"),
        BEAN("<ThresholdMappingTable><ThresholdItem><thresholds><threshold id=\"1\" value=\" 5\"/></thresholds>"
             "</ThresholdItem></ThresholdMappingTable>"),
        "changed shared data b, threshold item 1, threshold 1: \"5\" -> \" 5\""},
    RuleChange{"BeanSet",
        BEAN("<ThresholdMappingTable><ThresholdItem><condition><or type=\"t\"><in><id>1</id><set><value>a</value></set>"
             "</in></or></condition></ThresholdItem></ThresholdMappingTable>"),
        BEAN("<ThresholdMappingTable><ThresholdItem><condition><or type=\"t\"><in><id>1</id><set><value>b</value></set>"
             "</in></or></condition></ThresholdItem></ThresholdMappingTable>"),
        "changed shared data b, threshold item 1, condition: 1 in \"a\" -> 1 in \"b\""},
    RuleChange{"BeanIds", BEAN("<retrieveLumbraData><alarmId Eventid_Min=\"1\" Eventid_Max=\"2\"/></retrieveLumbraData>"),
        BEAN("<retrieveLumbraData><alarmId Eventid_Min=\"1\" Eventid_Max=\"3\"/></retrieveLumbraData>"),
        "changed shared data b, data item 1, ids: 1 to 2 -> 1 to 3"},
    RuleChange{"DatabasePath",
        TABLE("<dbPaths><dbPath decompression=\"True\" type=\"f\" value=\"/a\"/></dbPaths>"),
        TABLE("<dbPaths><dbPath decompression=\"true\" type=\"f\" value=\"/a\"/></dbPaths>"),
        "changed database d, path 1, decompression: false -> true"},
    RuleChange{"TableSql", TABLE("<createTables><createNewTable tableName=\"t\"><sql>x</sql></createNewTable></createTables>"),
        TABLE("<createTables><createNewTable tableName=\"t\"/></createTables>"), "gone database d, table 1, sql: x -> "}),
    CaseName());

} // namespace
