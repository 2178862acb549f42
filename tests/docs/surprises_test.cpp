#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/example_page.h"
#include "tests/support/example_run.h"
#include "tests/support/tree_notation.h"
#include "tests/support/case_name.h"

void PrintTo(const PageExample& example, std::ostream* out) { *out << "docs/surprises.md:" << example.line; }

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string Page()
{
    const std::ifstream file(ARBORIST_SOURCE_DIR "/docs/surprises.md");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

class SurprisesExample : public testing::TestWithParam<PageExample> {};

TEST_P(SurprisesExample, ComesOutAsThePageSays)
{
    const PageExample& example = GetParam();
    for (const auto& [key, text] : example.entries) {
        EXPECT_THAT(KnownKeys(), testing::Contains(key));
    }
    ASSERT_TRUE(example.Has("outcome"));
    ExampleRun run(example);
    for (const std::string& outcome : example.All("outcome")) {
        EXPECT_EQ(run.FaultOf(outcome), "") << outcome;
    }
}

INSTANTIATE_TEST_SUITE_P(Page, SurprisesExample, testing::ValuesIn(ReadExamples(Page())), CaseName());

TEST(SurprisesPage, HasAnExampleAndAnInsteadForEachSurprise)
{
    EXPECT_THAT(IncompleteSections(Page()), IsEmpty());
    EXPECT_GT(ReadExamples(Page()).size(), 80U);
}

TEST(ExamplePage, ReadsKeysContinuationsAndPieces)
{
    const auto examples = ReadExamples("```arborist-pieces\n%a: x\n%b: <%a>\n```\n### One `two`\n"
                                       "```arborist\nrule: %b\n  %c\noutcome: o\n```\n"
                                       "```arborist\nrule\n```\n```xml\n```\n");
    ASSERT_EQ(examples.size(), 2U);
    EXPECT_EQ(examples[0].name, "OneTwo");
    EXPECT_EQ(examples[0].First("rule"), "<x> %c");
    EXPECT_THAT(examples[0].All("outcome"), ElementsAre("o"));
    EXPECT_EQ(examples[1].name, "OneTwo2");
    EXPECT_EQ(examples[1].First("rule", "f"), "");
    EXPECT_EQ(examples[1].First("tree", "f"), "f");
}

TEST(ExamplePage, FindsIncompleteSections)
{
    const std::string page =
        "\n### A\n```arborist\n```\nInstead: x\n### B\nInstead: x\n### C\n```arborist\n```\n";
    EXPECT_THAT(IncompleteSections(page), ElementsAre("B", "C"));
}

TEST(ExampleRunner, RefusesAnOutcomeThatItDoesNotKnow)
{
    const PageExample example{"X", 1, {{"tree", "T = OR(A)"}, {"true", "A"}}};
    ExampleRun run(example);
    EXPECT_EQ(run.FaultOf("A is TRUE"), "");
    EXPECT_EQ(run.FaultOf("A is FALSE"), "it was: TRUE");
    EXPECT_EQ(run.FaultOf("B is FALSE"), "no such event");
    EXPECT_EQ(run.FaultOf("no root cause"), "it was: A");
    EXPECT_EQ(run.FaultOf("all is well"), "no known form of an outcome");
}

TEST(TreeNotation, TellsKindsAndGates)
{
    EXPECT_EQ(XmlOfTree("T = AND(A, U?, G = OR())"),
        "<Intermediate-Event><ID>T</ID><And-Gate><Basic-Event><ID>A</ID></Basic-Event>"
        "<Undeveloped-Event><ID>U</ID></Undeveloped-Event>"
        "<Intermediate-Event><ID>G</ID><Or-Gate></Or-Gate></Intermediate-Event></And-Gate></Intermediate-Event>");
}

} // namespace
