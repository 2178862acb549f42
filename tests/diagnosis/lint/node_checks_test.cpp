#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/lint/rule_findings.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The findings in a rule "r" that reads the nodes "a" at `path` and "b".
std::vector<std::string> InNodeRule(const std::string& path, const std::string& rest, const std::set<std::string>& checks,
    const std::string& type = "int")
{
    return FindingsInRules("<nodeRule name='r' detectScene='1'><nodeInfo param='a' path='" + path + "'/><nodeInfo param='b' path='b'/>"
        "<params><param id='1' key='a' type='" + type + "'/><param id='2' key='b' type='" + type + "'/><param id='3' key='sum' type='double'/>"
        "<param id='4' key='c-d' type='int'/></params>" + rest + "</nodeRule>", checks);
}

const std::string SUM = "<logicExpression type='double' ret='sum' express='a + b'/>";

std::string Tests(const std::string& tests)
{
    return "<condition><or type='multiple_logic'><and>" + tests + "</and></or></condition>";
}

TEST(NodeChecks, AValueOfAKindThatHasASignIsToldInAFormula)
{
    const std::string found = "A703: the formula of the rule \"r\" works with \"a\", which may be below zero";
    for (const char* path : {"/sys/temp", "/sys/temp1_input", "/sys/my_temp", "temp/current_now"}) {
        EXPECT_THAT(InNodeRule(path, SUM, {"A703"}), ElementsAre(found)) << path;
    }
    for (const char* path : {"/sys/attempts", "/sys/temperature", "/sys/Ztemp", "/sys/tempZ", "/temp/load", "/sys/my_current_now"}) {
        EXPECT_THAT(InNodeRule(path, SUM, {"A703"}), IsEmpty()) << path;
    }
    EXPECT_THAT(InNodeRule("/sys/temp", "", {"A703"}), IsEmpty()) << "without a formula";
}

TEST(NodeChecks, AValueThatATestExpectsBelowZeroIsToldInAFormula)
{
    const auto negative = [](const std::string& id, const std::string& value) {
        return InNodeRule("a", SUM + Tests("<lt><id>" + id + "</id><value>" + value + "</value></lt>"), {"A703"});
    };
    EXPECT_THAT(negative("2", " -5"), ElementsAre("A703: the formula of the rule \"r\" works with \"b\", which may be below zero"));
    EXPECT_THAT(negative("2", "5"), IsEmpty());
    EXPECT_THAT(negative("2", " "), IsEmpty());
    EXPECT_THAT(negative("9", "-5"), IsEmpty()) << "the id of no parameter";
}

TEST(NodeChecks, AKeyWithASignCannotBeNamedInAFormula)
{
    EXPECT_THAT(InNodeRule("a", SUM, {"A705"}),
        ElementsAre("A705: no formula can name the key \"c-d\" of the rule \"r\""));
    EXPECT_THAT(InNodeRule("a", "", {"A705"}), IsEmpty()) << "without a formula";
}

TEST(NodeChecks, AFileThatIsComparedAsATextIsTold)
{
    const auto compared = [](const std::string& test, const std::string& type = "string") {
        return InNodeRule("a", Tests(test), {"A711"}, type);
    };
    const std::string found = "A711: the rule \"r\" compares the whole file of \"b\" with \"x\"";
    EXPECT_THAT(compared("<eq><id>2</id><value>x</value></eq>"), ElementsAre(found));
    EXPECT_THAT(compared("<ne><id>2</id><value>x</value></ne>"), ElementsAre(found));
    EXPECT_THAT(compared("<gt><id>2</id><value>x</value></gt>"), IsEmpty());
    EXPECT_THAT(compared("<eq><id>9</id><value>x</value></eq>"), IsEmpty()) << "the id of no parameter";
    EXPECT_THAT(compared("<eq><id>2</id><value>x</value></eq>", "int"), IsEmpty());
    EXPECT_THAT(compared("<eq><id>2</id><value>x&#10;</value></eq>"), IsEmpty());
}

TEST(NodeChecks, ARuleWithoutNodesOrWithoutParametersIsTold)
{
    EXPECT_THAT(FindingsInRules("<nodeRule name='r' detectScene='1'><nodeInfo param='a' path='a'/></nodeRule>", {"A712"}),
        ElementsAre("A712: the rule \"r\" has no \"params\""));
    EXPECT_THAT(FindingsInRules("<nodeRule name='r' detectScene='1'><params><param id='1' key='a' type='int'/></params></nodeRule>",
        {"A712"}), ElementsAre("A712: the rule \"r\" has no \"nodeInfo\""));
}

} // namespace
