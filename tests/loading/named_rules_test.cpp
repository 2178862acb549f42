#include "arborist/loading/named_rules.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "arborist/loading/fault_tree_parser.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NamedRulesTest : public testing::Test {
protected:
    void Write(const RuleXml& rules)
    {
        mDir.Write("FaultTrees.xml", TreeXml("jank")
            .Tree("T", Or({Basic("B"), Intermediate("G", And({Basic("A"), Basic("C")})), Basic("D")}))
            .Tree("U", Or({Basic("E"), Basic("A")})).Text());
        mDir.Write("FaultTreeRules.xml", rules.Text());
    }

    static RuleXml WithRules(const std::vector<std::string>& names)
    {
        RuleXml rules("jank");
        for (const std::string& name : names) {
            rules.Rule(CodeRuleXml(name, "CODE"));
        }
        return rules;
    }

    static std::vector<std::string> NamesIn(FaultTreeParser& parser)
    {
        std::vector<std::string> names;
        for (const auto& rule : parser.GetNamedRules()) {
            names.push_back(rule->name);
        }
        return names;
    }

    std::vector<std::string> NamesOf(const RuleXml& rules)
    {
        Write(rules);
        FaultTreeParser parser(DetectInfoFor(mDir, "jank"));
        parser.StartParse();
        return NamesIn(parser);
    }

    TempDir mDir;
    LogCapture mLog;
};

TEST_F(NamedRulesTest, AreInTheOrderInWhichADetectionComesToThemEachOnce)
{
    EXPECT_THAT(NamesOf(WithRules({"a", "b", "c", "d", "e"})
        .EventRule("A", {Single("a"), Single("b")}).EventRule("B", {Single("b")}).EventRule("C", {Single("c")})
        .EventRule("D", {Single("d"), Single("a")}).EventRule("E", {Single("e")})), ElementsAre("b", "a", "c", "d", "e"));
}

TEST_F(NamedRulesTest, RulesOfAGroupAndOfNamesWithCommasAreAmongThem)
{
    EXPECT_THAT(NamesOf(WithRules({"a", "b", "c", "d", "b,c"})
        .EventRule("A", {Multiple({"a", "b"})}).EventRule("C", {Single("c,d")})), ElementsAre("a", "b", "c", "d"));
}

TEST_F(NamedRulesTest, EntriesOfOtherEventsAndRulesThatNobodyNamesAreNotAmongThem)
{
    EXPECT_THAT(NamesOf(WithRules({"a", "b"}).EventRule("A", {Single("none")}).EventRule("Z", {Single("a")})), IsEmpty());
}

TEST_F(NamedRulesTest, AreThoseOfTheLastReading)
{
    Write(WithRules({"a", "b"}).EventRule("A", {Single("a")}));
    FaultTreeParser parser(DetectInfoFor(mDir, "jank"));
    EXPECT_THAT(NamesIn(parser), IsEmpty());
    parser.StartParse();
    EXPECT_THAT(NamesIn(parser), ElementsAre("a"));
    Write(WithRules({"a", "b"}).EventRule("A", {Single("b")}));
    parser.StartParse();
    EXPECT_THAT(NamesIn(parser), ElementsAre("b"));
}

} // namespace
