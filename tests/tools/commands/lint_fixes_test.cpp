#include <filesystem>

#include <gmock/gmock.h>

#include "tests/tools/commands/lint_fixture.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

using LintFixes = LintFixture;

TEST_F(LintFixes, ShowsAndMakesFixes)
{
    Write(RuleFile(" detectScene=\"1\" colour=\"red\""));
    const std::string before = mDir.Read("rules/FaultTreeRules.xml");
    const auto diff = Lint({"rules", "--diff"});
    EXPECT_THAT(diff.out, StartsWith("--- rules/FaultTreeRules.xml\n+++ rules/FaultTreeRules.xml\n@@ -9,7 +9,7 @@\n"));
    EXPECT_THAT(diff.out, HasSubstr("\n-        <codeRule name=\"r\" detectScene=\"1\" colour=\"red\"><detectInfo id=\"C\"/>"
                                    "</codeRule>\n+        <codeRule name=\"r\" detectScene=\"1\"><detectInfo"));
    EXPECT_EQ(mDir.Read("rules/FaultTreeRules.xml"), before);
    mDir.Write("lint.diff", diff.out);
    EXPECT_EQ(Lint({"rules", "--fix"}).out, "no findings, 1 fixed\n");
    const std::string after = mDir.Read("rules/FaultTreeRules.xml");
    EXPECT_THAT(after, Not(HasSubstr("colour")));
    EXPECT_EQ(RunProcess({"patch", "-R", "-p0", "-i", "lint.diff"}).status, 0);
    EXPECT_EQ(mDir.Read("rules/FaultTreeRules.xml"), before);
}

TEST_F(LintFixes, MakesUnsafeFixesWhenAskedTo)
{
    std::string rules = RuleFile(" detectScene=\"1\"");
    rules.replace(rules.find("<Rule-name>r"), 12, "<Rule-name>r\n");
    Write(rules);
    EXPECT_EQ(Lint({"rules", "--fix"}).status, 1);
    EXPECT_EQ(mDir.Read("rules/FaultTreeRules.xml"), rules);
    EXPECT_EQ(Lint({"rules", "--fix", "--unsafe-fixes"}).out, "no findings, 1 fixed\n");
    EXPECT_THAT(mDir.Read("rules/FaultTreeRules.xml"), HasSubstr("<Rule-name>r</Rule-name>"));
}

TEST_F(LintFixes, PutsTheNearKeyInEveryPlaceOfAnUnknownNameOfAFormula)
{
    const auto node = [](const std::string& formula) {
        return RuleFile(" detectScene=\"1\"", "<nodeRule name=\"n\" detectScene=\"1\"><nodeInfo param=\"full\" path=\"f\"/>"
            "<params><param id=\"1\" key=\"full\" type=\"int\"/><param id=\"2\" key=\"sum\" type=\"double\"/></params>"
            "<logicExpression type=\"double\" ret=\"sum\" express=\"" + formula + "\"/></nodeRule>");
    };
    Write(node("(fulll + 2 ) * fulll"));
    EXPECT_EQ(Lint({"rules", "--fix", "--unsafe-fixes", "--only", "A704"}).out, "no findings, 1 fixed\n");
    EXPECT_EQ(mDir.Read("rules/FaultTreeRules.xml"), node("(full + 2 ) * full"));
}

TEST_F(LintFixes, RenamesAnAttributeUnlessTheElementHasTheOther)
{
    const std::vector<std::string> fix = {"rules", "--fix", "--unsafe-fixes", "--only", "A104"};
    Write(RuleFile(" detectscene=\"1\""));
    EXPECT_EQ(Lint(fix).out, "no findings, 1 fixed\n");
    EXPECT_EQ(mDir.Read("rules/FaultTreeRules.xml"), RuleFile(" detectScene=\"1\""));
    Write(RuleFile(" detectScene=\"1\" detectscene=\"2\""));
    EXPECT_THAT(Lint(fix).out, HasSubstr("did you mean \"detectScene\"?"));
    EXPECT_EQ(mDir.Read("rules/FaultTreeRules.xml"), RuleFile(" detectScene=\"1\" detectscene=\"2\""));
}

TEST_F(LintFixes, RenamesAnElementWithItsEndTagAndLeavesEqualWordsInItAlone)
{
    const auto rules = [](const std::string& word) {
        return "<R>\n<" + word + "><!-- </" + word + "> --><Laptop>\n<rule/>\n</Laptop></" + word + ">\n<EventRules><Laptop/>"
            "</EventRules></R>";
    };
    Write(rules("Rulelist"));
    EXPECT_EQ(Lint({"rules", "--fix", "--unsafe-fixes", "--only", "A102"}).out, "no findings, 1 fixed\n");
    std::string mended = rules("RuleList");
    mended.replace(mended.find("<!-- </RuleList"), 15, "<!-- </Rulelist");
    EXPECT_EQ(mDir.Read("rules/FaultTreeRules.xml"), mended);
}

TEST_F(LintFixes, RenamesTheEntryThatWasMeantForAnEventWithoutOne)
{
    std::string rules = RuleFile(" detectScene=\"1\"");
    Write(rules);
    const std::string trees = mDir.Read("rules/FaultTrees.xml");
    rules.replace(rules.find("<ID>E"), 5, "<ID>EE");
    Write(rules);
    EXPECT_THAT(Lint({"rules", "--only", "A301"}).out, HasSubstr("help: did you mean \"EE\"?"));
    EXPECT_EQ(Lint({"rules", "--fix", "--unsafe-fixes"}).out, "no findings, 1 fixed\n");
    EXPECT_EQ(mDir.Read("rules/FaultTreeRules.xml"), RuleFile(" detectScene=\"1\""));
    EXPECT_EQ(mDir.Read("rules/FaultTrees.xml"), trees);
}

TEST_F(LintFixes, LeavesOutTheSemicolonAtTheEndOfAQueryAlone)
{
    const auto query = [](const std::string& sql) {
        return RuleFile(" detectScene=\"1\"", "<commandRule name=\"c\" detectScene=\"1\"><referenceCommonPart>"
            "<commonPartName>t</commonPartName></referenceCommonPart><AnalysisMethod type=\"SQL\"><SQL_Condition><SQLItem>"
            "<sql>" + sql + "</sql></SQLItem></SQL_Condition></AnalysisMethod></commandRule>");
    };
    const std::vector<std::string> fix = {"rules", "--fix", "--unsafe-fixes", "--only", "A603"};
    Write(query("select 1 where 2 &lt; 3 ; ;\n"));
    EXPECT_EQ(Lint(fix).out, "no findings, 1 fixed\n");
    EXPECT_THAT(mDir.Read("rules/FaultTreeRules.xml"), HasSubstr("<sql>select 1 where 2 &lt; 3 </sql>"));
    Write(query("select 1; select 2"));
    EXPECT_EQ(Lint(fix).status, 1);
    EXPECT_THAT(mDir.Read("rules/FaultTreeRules.xml"), HasSubstr("<sql>select 1; select 2</sql>"));
}

TEST_F(LintFixes, RefusesFixesWithWhichTheTestsOfTheRuleSetAnswerOtherwise)
{
    std::string rules = RuleFile(" detectScene=\"1\"");
    rules.replace(rules.find("<Rule-name>r"), 12, "<Rule-name>r\n");
    Write(rules);
    mDir.Write("rules/quiet.test.json", R"({"scene": 1, "answers": {"r": true}, "expect": {"causes": {"T": []}}})");
    ASSERT_EQ(RunArborist({"test", "rules"}).status, 0);
    const auto refused = Lint({"rules", "--fix", "--unsafe-fixes"});
    EXPECT_THAT(refused.err, StartsWith("arborist: rules: not mended: a test would answer otherwise: "));
    EXPECT_THAT(refused.err, HasSubstr("quiet.test.json: quiet\n"));
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(mDir.Read("rules/FaultTreeRules.xml"), rules);
    EXPECT_EQ(Lint({"rules", "--diff", "--unsafe-fixes"}).out, "");
    mDir.Write("rules/quiet.test.json", R"({"scene": 2, "answers": {"r": true}, "expect": {"causes": {"T": []}}})");
    EXPECT_EQ(Lint({"rules", "--fix", "--unsafe-fixes"}).out, "no findings, 1 fixed\n");
    EXPECT_NE(mDir.Read("rules/FaultTreeRules.xml"), rules);
}

TEST_F(LintFixes, RefusesFixesWithWhichTestsInAnotherFolderAnswerOtherwise)
{
    std::string rules = RuleFile(" detectScene=\"1\"");
    rules.replace(rules.find("<Rule-name>r"), 12, "<Rule-name>r\n");
    Write(rules);
    const std::string quiet = R"("scene": 1, "answers": {"r": true}, "expect": {"causes": {"T": []}}})";
    fs::create_directory("project");
    fs::rename("rules", "project/rules");
    mDir.Write("tests/quiet.test.json", R"({"rules": "../project/rules", )" + quiet);
    const std::vector<std::string> fix = {"project/rules", "--fix", "--unsafe-fixes", "--tests", "tests"};
    EXPECT_THAT(Lint(fix).err, HasSubstr("tests/quiet.test.json: quiet\n"));
    mDir.Write("config/lint.json", R"({"tests": ["../tests"]})");
    EXPECT_THAT(
        Lint({"project/rules", "--fix", "--unsafe-fixes", "--config", "config/lint.json"}).err, HasSubstr("quiet\n"));
    EXPECT_EQ(mDir.Read("project/rules/FaultTreeRules.xml"), rules);
    // A case of another rule set says nothing about this one.
    fs::copy("project/rules", "others");
    mDir.Write("tests/quiet.test.json", R"({"rules": "../others", )" + quiet);
    EXPECT_EQ(Lint(fix).out, "no findings, 1 fixed\n");
}

TEST_F(LintFixes, FindsTheTestsBesideARuleSet)
{
    std::string rules = RuleFile(" detectScene=\"1\"");
    rules.replace(rules.find("<Rule-name>r"), 12, "<Rule-name>r\n");
    Write(rules);
    const std::string quiet = R"("scene": 1, "answers": {"r": true}, "expect": {"causes": {"T": []}}})";
    mDir.Write("tests/deep/quiet.test.json", R"({"rules": "../../rules", )" + quiet);
    const std::vector<std::string> fix = {"rules", "--fix", "--unsafe-fixes"};
    EXPECT_THAT(Lint(fix).err, HasSubstr("tests/deep/quiet.test.json: quiet\n"));
    EXPECT_EQ(mDir.Read("rules/FaultTreeRules.xml"), rules);
    fs::copy("rules", "others");
    mDir.Write("tests/deep/quiet.test.json", R"({"rules": "../../others", )" + quiet);
    EXPECT_EQ(Lint(fix).out, "no findings, 1 fixed\n");
}

TEST_F(LintFixes, DoesNotMendWhatIsOnStandardInput)
{
    EXPECT_EQ(Lint({"-", "--fix"}).status, 2);
    EXPECT_EQ(Lint({"rules", "--fix", "--diff"}).status, 2);
}

} // namespace
