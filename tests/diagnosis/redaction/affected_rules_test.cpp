#include "diagnosis/redaction/affected_rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using diagnosis::RedactionReport;

// A rule "r", beside which a rule "other" reads nothing that is ever replaced.
struct AffectedCase {
    const char* name;
    Xml rule;
    RedactionReport report;
    /// "" if the rule answers as before.
    std::string reads;
};
void PrintTo(const AffectedCase& affectedCase, std::ostream* out) { *out << affectedCase.name; }
class AffectedRule : public testing::TestWithParam<AffectedCase> {};

RedactionReport Key(const std::string& key)
{
    RedactionReport report;
    report.bundleKeys = {key};
    return report;
}

RedactionReport Node(const std::string& path)
{
    RedactionReport report;
    report.nodeFiles = {path};
    return report;
}

RedactionReport Member(const std::string& name, std::set<std::int64_t> events)
{
    RedactionReport report;
    report.hasLog = true;
    report.members = {{name, {events.size(), events, false}}};
    return report;
}

RedactionReport Whole(std::set<std::int64_t> events)
{
    RedactionReport report;
    report.hasLog = true;
    report.wholeTexts = {events.size(), std::move(events), false};
    return report;
}

RedactionReport OldTable(const std::string& table, bool hasLog = true)
{
    RedactionReport report;
    report.hasLog = hasLog;
    report.derivedTables = {table};
    return report;
}

RedactionReport Quote()
{
    RedactionReport report = Member("ELSEWHERE", {7});
    report.hadQuote = true;
    return report;
}

Xml Filtered(const std::string& attribute)
{
    return CodeRuleXml("r", "CODE").Attr(attribute, "x");
}

// Tests the member USER of the events 7 to 9.
Xml TestedId(const std::string& first = "7", const std::string& last = "9", const std::string& parameter = "1")
{
    return AlarmIdXml(first, last, {TimeXml("duration", "1", "1"), ParamsXml({ParamXml("1", "USER", "string"),
        ParamXml("2", "PATH", "string")}), ConditionXml({SingleLogicXml(TestXml("eq", parameter, "x"))})})
        .Attr("type", "param_eventid");
}

Xml Tested(const std::string& first = "7", const std::string& last = "9", const std::string& parameter = "1")
{
    return AlarmRuleXml("r", {TestedId(first, last, parameter)});
}

Xml TestedTwice()
{
    return AlarmRuleXml("r", {TestedId(), TestedId()});
}

RedactionReport OfOtherEvents(const std::string& name)
{
    RedactionReport report = Member(name, {});
    report.members[0].where.hasOtherEvents = true;
    return report;
}

// Counts events without a test.
Xml Counted(const std::string& event, const std::string& beginFlag = "4", const std::string& first = "")
{
    return AlarmRuleXml("r", {AlarmIdXml(first, event, {TimeXml("duration", "1", "1")}).Attr("BeginFlag", beginFlag)});
}

Xml Asked(const std::string& sql, const std::string& logicType = "static")
{
    return CommandRuleXml("r").Child(AnalysisMethodXml("", {Xml("sql").Text(sql),
        ConditionXml({SingleLogicXml(TestXml("eq", "1", "x").Attr("type", logicType))})}));
}

TEST_P(AffectedRule, IsNamedWithWhatItReads)
{
    const TempDir dir;
    dir.Write("FaultTrees.xml", TreeXml("Tag").Tree("T", Or({Basic("E")})).Text());
    const auto table = Xml("thresholdsOrLumbraData").Attr("name", "KILLS").Child(Xml("retrieveLumbraData").Child(
        AlarmIdXml("7", "9", {ParamsXml({ParamXml("1", "NAME", "text")})})));
    const auto bare = Xml("thresholdsOrLumbraData").Attr("name", "BARE");
    const auto other = NodeRuleXml("other", {NodeInfoXml("A", "/never")});
    dir.Write("FaultTreeRules.xml", RuleXml("Tag").Rule(GetParam().rule).Rule(other).CommonPart({table, bare}).Text());
    const auto files = diagnosis::rule_source::ReadRuleSetFiles(dir.Path(), "");
    std::string found;
    for (const auto& rule : diagnosis::AffectedRules(diagnosis::rule_source::RuleSet(files, "Tag"), GetParam().report)) {
        EXPECT_EQ(rule.rule, "r");
        for (const std::string& what : rule.reads) {
            found += (found.empty() ? "" : ", ") + what;
        }
    }
    EXPECT_EQ(found, GetParam().reads);
}

TEST(AffectedRulesTest, ATableWithoutNumbersHasItsUsualEventsAndIsNotBuilt)
{
    const TempDir dir;
    dir.Write("FaultTrees.xml", TreeXml("Tag").Tree("T", Or({Basic("E")})).Text());
    const auto table = Xml("thresholdsOrLumbraData").Attr("name", "USUAL").Child(Xml("retrieveLumbraData").Child(
        AlarmIdXml("", "", {ParamsXml({ParamXml("1", "NAME", "text")})})));
    dir.Write("FaultTreeRules.xml", RuleXml("Tag").Rule(Asked("select n from usual where 1")).CommonPart({table}).Text());
    const auto files = diagnosis::rule_source::ReadRuleSetFiles(dir.Path(), "");
    const diagnosis::rule_source::RuleSet rules(files, "Tag");
    EXPECT_EQ(diagnosis::AffectedRules(rules, Member("NAME", {902500007})).size(), 1U);
    EXPECT_EQ(diagnosis::AffectedRules(rules, Member("NAME", {8})).size(), 0U);
    EXPECT_EQ(diagnosis::AffectedRules(rules, OldTable("usual")).size(), 1U) << "the one of an earlier run stays";
}

TEST(AffectedRulesTest, OfRulesWithOneNameOnlyTheLastIsAsked)
{
    const TempDir dir;
    dir.Write("FaultTrees.xml", TreeXml("Tag").Tree("T", Or({Basic("E")})).Text());
    const auto first = NodeRuleXml("r", {NodeInfoXml("A", "/first")});
    dir.Write("FaultTreeRules.xml", RuleXml("Tag").Rule(first).Rule(NodeRuleXml("r", {NodeInfoXml("A", "/last")})).Text());
    const auto files = diagnosis::rule_source::ReadRuleSetFiles(dir.Path(), "");
    const diagnosis::rule_source::RuleSet rules(files, "Tag");
    EXPECT_TRUE(diagnosis::AffectedRules(rules, Node("/first")).empty());
    EXPECT_EQ(diagnosis::AffectedRules(rules, Node("/last")).size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Filters, AffectedRule, testing::Values(
    AffectedCase{"Production", Filtered("production"), Key("device.Product"), "device.Product"},
    AffectedCase{"BlackProducts", Filtered("blackProducts"), Key("device.Product"), "device.Product"},
    AffectedCase{"Platform", Filtered("platform"), Key("device.Platform"), "device.Platform"},
    AffectedCase{"DeviceType", Filtered("deviceType"), Key("device.DeviceType"), "device.DeviceType"},
    AffectedCase{"AnotherFilter", Filtered("deviceType"), Key("device.Product"), ""},
    AffectedCase{"NobodyReadsTheId", Filtered("production"), Key("deviceId"), ""}), CaseName());

INSTANTIATE_TEST_SUITE_P(NodeFiles, AffectedRule, testing::Values(
    AffectedCase{"Read", NodeRuleXml("r", {NodeInfoXml("A", "/a")}), Node("/a"), "node file /a"},
    AffectedCase{"Another", NodeRuleXml("r", {NodeInfoXml("A", "/a")}), Node("/b"), ""}), CaseName());

INSTANTIATE_TEST_SUITE_P(EventLog, AffectedRule, testing::Values(
    AffectedCase{"TestedMember", Tested(), Member("user", {9}), "member user of the event log"},
    AffectedCase{"MemberOfOtherEvents", Tested(), Member("USER", {6, 10}), ""},
    AffectedCase{"MemberThatIsNotTested", Tested(), Member("PATH", {7}), ""},
    AffectedCase{"BrokenTextOfTestedEvents", Tested(), Whole({8}), "events whose extra is no JSON object"},
    AffectedCase{"CountedWithoutATest", Counted("7"), Member("USER", {7}), ""},
    AffectedCase{"BrokenTextOfCountedEvents", Counted("7"), Whole({7}), ""},
    AffectedCase{"WeightOfARow", Counted("920000001"), Member("COUNT", {920000001}), "member COUNT of the event log"},
    AffectedCase{"NoWeightOfARow", Counted("7"), Member("COUNT", {7}), ""},
    AffectedCase{"BrokenTextOfAWeight", Counted("920000001"), Whole({920000001}), "events whose extra is no JSON object"},
    AffectedCase{"MemberOfAnEventThatIsNoNumber", Tested(), OfOtherEvents("USER"), "member USER of the event log"},
    AffectedCase{"TestedTwice", TestedTwice(), Member("USER", {7}), "member USER of the event log"},
    AffectedCase{"TestedInAnEmptyRange", Tested("9", "7"), Member("USER", {8}), ""},
    AffectedCase{"WeightInAnEmptyRange", Counted("920000001", "4", "920000002"), Member("COUNT", {920000001}), ""},
    AffectedCase{"TestOfNoParameter", Tested("7", "9", "3"), Member("USER", {8}), ""},
    AffectedCase{"VersionOfTheDevice", Counted("7", "2"), Key("settings.VersionName"), "settings.VersionName"},
    AffectedCase{"AllVersions", Counted("7", "4"), Key("settings.VersionName"), ""}), CaseName());

INSTANTIATE_TEST_SUITE_P(DerivedTables, AffectedRule, testing::Values(
    AffectedCase{"ColumnOfItsTable", Asked("select n from kills where 1"), Member("name", {8}), "member name of the event log"},
    AffectedCase{"MemberWithoutAColumn", Asked("select n from kills where 1"), Member("USER", {8}), ""},
    AffectedCase{"MemberThatMarksTotals", Asked("select n from kills where 1"), Member("CASENAME", {8}), "member CASENAME of the event log"},
    AffectedCase{"EventsOfAnotherTable", Asked("select n from kills where 1"), Member("NAME", {10}), ""},
    AffectedCase{"AnotherTable", Asked("select n from skills where 1"), Member("NAME", {8}), ""},
    AffectedCase{"BrokenText", Asked("select n from \"Kills\" where 1"), Whole({8}), "events whose extra is no JSON object"},
    AffectedCase{"Version", Asked("select n from kills where 1"), Key("settings.VersionName"), "settings.VersionName"},
    AffectedCase{"OldTable", Asked("select n from old where 1"), OldTable("old"), "the derived database of an earlier run"},
    AffectedCase{"OldTableWithOtherLetters", Asked("select n from käfer where 1"), OldTable("käfer"),
        "the derived database of an earlier run"},
    AffectedCase{"PartOfAnotherWord", Asked("select n from käfer where 1"), OldTable("fer"), ""},
    AffectedCase{"TableWithoutItems", Asked("select n from bare where 1"), Member("NAME", {8}), ""},
    AffectedCase{"TableThatIsBuiltAnew", Asked("select n from kills where 1"), OldTable("kills"), ""},
    AffectedCase{"TableThatIsNotBuiltWithoutALog", Asked("select n from kills where 1"), OldTable("kills", false),
        "the derived database of an earlier run"},
    AffectedCase{"QuoteElsewhere", Asked("select 1 where 1"), Quote(), "values with quotes, behind which a derived table may run SQL"},
    AffectedCase{"ThresholdByDevice", Asked("select 1", "dynamic"), Key("device.RamSize"), "device.RamSize"},
    AffectedCase{"ParameterOfTheDevice", Asked("select 1", "systemParam"), Key("device.CpuName"), "device.CpuName"},
    AffectedCase{"FixedValue", Asked("select 1"), Key("device.RamSize"), ""}), CaseName());

} // namespace
