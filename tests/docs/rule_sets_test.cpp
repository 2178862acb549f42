#include <fstream>
#include <regex>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/arborist.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/common_part.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/rule.h"
#include "tests/support/example_page.h"
#include "tests/support/example_run.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr char TAG[] = "Laptop";
constexpr char TREES[] = "FaultTrees.xml";
constexpr char RULES[] = "FaultTreeRules.xml";

std::string Page()
{
    const std::ifstream file(ARBORIST_SOURCE_DIR "/docs/rule-sets.md");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// One row of the page's table of formulas.
struct FormulaCase {
    std::string name;
    std::string formula;
    std::string result;
};
void PrintTo(const FormulaCase& formulaCase, std::ostream* out) { *out << formulaCase.formula; }

std::vector<FormulaCase> FormulasOf(const std::string& page)
{
    static const std::regex row(R"(\n\| `([^`]+)` \| (\d+) \|)");
    const std::size_t start = page.find("| Formula | Result |");
    const std::string table = page.substr(start, page.find("\n\n", start) - start);
    std::vector<FormulaCase> cases;
    for (std::sregex_iterator match(table.begin(), table.end(), row), end; match != end; ++match) {
        cases.push_back({"Row" + std::to_string(cases.size() + 1), (*match)[1], (*match)[2]});
    }
    return cases;
}

class RuleSetsFormula : public testing::TestWithParam<FormulaCase> {};

TEST_P(RuleSetsFormula, GivesWhatThePageSays)
{
    const PageExample example{"Formula", 0, {{"formula", GetParam().formula}}};
    ExampleRun run(example);
    EXPECT_EQ(run.FaultOf("the formula gives " + GetParam().result + ".000000"), "");
}

INSTANTIATE_TEST_SUITE_P(Page, RuleSetsFormula, testing::ValuesIn(FormulasOf(Page())), CaseName());

/// An XML example of the page.
struct XmlCase {
    std::string name;
    std::string root;
    std::string xml;
};
void PrintTo(const XmlCase& xmlCase, std::ostream* out) { *out << xmlCase.xml.substr(0, 40); }

std::vector<XmlCase> XmlOf(const std::string& page)
{
    static const std::regex block("```xml\n(<([\\w-]+)[^`]*)```");
    std::vector<XmlCase> cases;
    for (std::sregex_iterator match(page.begin(), page.end(), block), end; match != end; ++match) {
        cases.push_back({"Block" + std::to_string(cases.size() + 1), (*match)[2], (*match)[1]});
    }
    return cases;
}

class RuleSetsExample : public testing::TestWithParam<XmlCase> {
protected:
    std::string In(const std::string& section, const std::string& content) const
    {
        return "<Root><" + section + "><" + TAG + ">" + content + "</" + TAG + "></" + section + "></Root>";
    }

    FaultTreeParser& Load(const std::string& trees, const std::string& rules)
    {
        mDir.Write(TREES, trees);
        mDir.Write(RULES, rules);
        mParser = std::make_unique<FaultTreeParser>(DetectInfoFor(mDir, TAG));
        mParser->StartParse();
        return *mParser;
    }

    // Completes a part of a rule to a rule named "r".
    static std::string RuleOf(const std::string& root, const std::string& xml)
    {
        if (root == "params" || root == "condition") {
            return "<nodeRule name=\"r\">" + xml + "</nodeRule>";
        }
        if (root == "or") {
            return "<nodeRule name=\"r\"><condition>" + xml + "</condition></nodeRule>";
        }
        return "<commandRule name=\"r\"><AnalysisMethod type=\"SQL\"><SQL_Condition type=\"normalization\">" + xml +
            "</SQL_Condition></AnalysisMethod></commandRule>";
    }

    TempDir mDir;
    LogCapture mLog;
    std::unique_ptr<FaultTreeParser> mParser;
};

// The loader accepts the whole example, and the objects that it describes exist.
TEST_P(RuleSetsExample, IsRead)
{
    const auto& [name, root, xml] = GetParam();
    constexpr char NO_TREES[] = "<Root/>";
    if (root == "FaultTrees") {
        EXPECT_THAT(Load(xml, "<Root/>").GetFaultTrees(), SizeIs(1));
    } else if (root == "FaultTreeRules") {
        FaultTreeParser& parser = Load(NO_TREES, xml);
        EXPECT_TRUE(parser.GetEventRuleByEventId("WORN") != nullptr || !parser.GetFaultDescListById("WORN").empty());
    } else if (root == "Intermediate-Event") {
        const std::string tree = "<Tree id=\"\" version=\"\" type=\"\">" + xml + "</Tree>";
        EXPECT_THAT(Load("<Root><Laptop>" + tree + "</Laptop></Root>", "<Root/>").GetFaultTrees(), SizeIs(1));
    } else if (root == "Event") {
        const auto rule = Load(NO_TREES, In("EventRules", xml)).GetEventRuleByEventId("WORN");
        ASSERT_NE(rule, nullptr);
        EXPECT_THAT(rule->GetRuleList(), SizeIs(2));
    } else if (root == "commonPart") {
        EXPECT_NE(Load(NO_TREES, In("RuleCommonPart", xml)).GetCommonPart(), nullptr);
    } else if (root == "rule") {
        EXPECT_THAT(Load(NO_TREES, In("RuleList", xml)).GetRuleMap(), SizeIs(1));
    } else {
        const bool isWhole = root.size() > 4 && root.substr(root.size() - 4) == "Rule";
        const std::string rule = isWhole ? xml : RuleOf(root, xml);
        EXPECT_THAT(Load(NO_TREES, In("RuleList", "<rule>" + rule + "</rule>")).GetRuleMap(), SizeIs(1));
    }
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Page, RuleSetsExample, testing::ValuesIn(XmlOf(Page())), CaseName());

TEST(RuleSetsPage, ShowsFormulasAndExamples)
{
    EXPECT_GE(FormulasOf(Page()).size(), 6U);
    EXPECT_GE(XmlOf(Page()).size(), 18U);
}

// A tree with `depth` levels of events, including the top event.
std::string TreeOfDepth(int depth)
{
    std::string xml = "<Basic-Event><ID>E</ID></Basic-Event>";
    for (int level = 1; level < depth; ++level) {
        xml = "<Intermediate-Event><ID>T</ID><Or-Gate>" + xml + "</Or-Gate></Intermediate-Event>";
    }
    return "<Root><Laptop><Tree id=\"T\" version=\"1\" type=\"t\">" + xml + "</Tree></Laptop></Root>";
}

TEST(RuleSetsLimits, EventsNestAsDeepAsThePageSays)
{
    ASSERT_NE(Page().find("| nesting of events in a tree | 47 levels"), std::string::npos);
    TempDir dir;
    LogCapture log;
    dir.Write(RULES, "<Root/>");
    for (const auto& [depth, trees] : {std::make_pair(47, 1U), std::make_pair(48, 0U)}) {
        dir.Write(TREES, TreeOfDepth(depth));
        FaultTreeParser parser(DetectInfoFor(dir, TAG));
        parser.StartParse();
        EXPECT_EQ(parser.GetFaultTrees().size(), trees) << depth;
    }
}

} // namespace
