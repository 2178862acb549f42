#include <regex>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/text/markup.h"
#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// Options that all commands that run a bundle share.
struct RunCase {
    const char* name;
    std::vector<std::string> command;
};
void PrintTo(const RunCase& run, std::ostream* out) { *out << run.name; }

class RunCommand : public testing::TestWithParam<RunCase> {
protected:
    static ProcessResult Run(const std::vector<std::string>& more, const ProcessSetup& setup = {})
    {
        std::vector<std::string> arguments = GetParam().command;
        arguments.insert(arguments.end(), more.begin(), more.end());
        return RunArborist(arguments, setup);
    }

    TempDir mDir;
};

TEST_P(RunCommand, UnderStrictAWarningDecidesTheStatusAndTheResultsStayTheSame)
{
    WriteCodeBundle(mDir, "b", {"info"});
    const auto plain = Run({"b", "--now", "1716206400"});
    const auto strict = Run({"b", "--now", "1716206400", "--strict"});
    EXPECT_EQ(plain.status, 0);
    EXPECT_EQ(strict.status, 4);
    EXPECT_EQ(WithoutSeconds(strict.out), WithoutSeconds(plain.out));
    EXPECT_EQ(strict.err, plain.err);
    EXPECT_THAT(plain.err + plain.out, HasSubstr("has no recorded answer"));
    mDir.Write("b/rules/FaultTreeRules.xml", RuleXml("Other").Text());
    EXPECT_EQ(Run({"b", "--strict"}).status, 3);
}

TEST_P(RunCommand, AnotherRuleSetReplacesTheBundles)
{
    WriteHotBundle(mDir, "b");
    WriteCodeBundle(mDir, "other", {"info"});
    const auto result = Run({"b", "--rules", "other/rules"});
    EXPECT_THAT(result.out, AllOf(HasSubstr("C1"), Not(HasSubstr("HOT"))));
    EXPECT_EQ(Run({"b", "--rules", "nowhere"}).status, 3);
}

TEST_P(RunCommand, AProgramAnswersCodeRules)
{
    WriteCodeBundle(mDir, "b", {"info"});
    EXPECT_THAT(Run({"b", "--code-runner", "/bin/true"}).err, IsEmpty());
    EXPECT_THAT(Run({"b", "--code-runner", "/bin/sh", "--code-timeout", "0"}).status, 2);
}

// A rule set of all families with derived tables and copies of databases, in a zip.
TEST_P(RunCommand, NoPathOfTheScratchFolderIsShown)
{
    PrepareLaptop("laptop");
    ASSERT_EQ(RunArborist({"bundle", "pack", "laptop", "-o", "laptop.zip"}).status, 0);
    mDir.MakeDir("tmp");
    for (const std::string bundle : {"laptop", "laptop.zip"}) {
        const auto result = Run({bundle, "--log-level", "trace"}, {{}, {{"TMPDIR", mDir.Path("tmp")}}, {}});
        EXPECT_THAT(result.out, Not(HasSubstr(mDir.Path("tmp")))) << bundle;
        EXPECT_THAT(result.err, Not(HasSubstr(mDir.Path("tmp")))) << bundle;
    }
}

INSTANTIATE_TEST_SUITE_P(Table, RunCommand, testing::Values(
    RunCase{"Detect", {"detect", "--tree"}},
    RunCase{"DetectExplain", {"detect", "--explain"}},
    RunCase{"DetectJson", {"detect", "--json", "--explain", "--tree"}},
    RunCase{"Explain", {"explain"}},
    RunCase{"ExplainJson", {"explain", "--json"}},
    RunCase{"Graph", {"graph"}},
    RunCase{"Report", {"report"}}), CaseName());

struct RulesCase {
    const char* name;
    std::vector<std::string> command;
    std::vector<std::string> more;
    const char* expected;
};
void PrintTo(const RulesCase& rules, std::ostream* out) { *out << rules.name; }
class OtherCommandWithRules : public testing::TestWithParam<RulesCase> {};

TEST_P(OtherCommandWithRules, TakesThoseForTheBundles)
{
    const TempDir dir;
    WriteHotBundle(dir, "b");
    WriteCodeBundle(dir, "other", {"info"}, BundleJson(R"(, "codeAnswers": {"info": true})"));
    std::vector<std::string> arguments = GetParam().command;
    arguments.insert(arguments.end(), {"b", "--rules", "other/rules"});
    arguments.insert(arguments.end(), GetParam().more.begin(), GetParam().more.end());
    const auto result = RunArborist(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(Table, OtherCommandWithRules, testing::Values(
    RulesCase{"Query", {"query"}, {"CODE_C1"}, "D_C1"},
    RulesCase{"BundleInfo", {"bundle", "info"}, {}, "1 tree, 1 rule"},
    RulesCase{"BundleVerify", {"bundle", "verify"}, {}, "rule set"},
    RulesCase{"BundlePack", {"bundle", "pack"}, {"-o", "packed"}, ""}),
    CaseName());

TEST(GraphOfBareRulesTest, TakesNoOtherRuleSet)
{
    const TempDir dir;
    WriteHotBundle(dir, "b");
    EXPECT_EQ(RunArborist({"graph", "b/rules", "--tree-tag", "Tag"}).status, 0);
    EXPECT_EQ(RunArborist({"graph", "b/rules", "--tree-tag", "Tag", "--rules", "b/rules"}).status, 2);
}

// "rule NAME: REASON, SUMMARY" of every root cause stands in the report, too.
TEST(ReportAndExplanationTest, SayTheSameOfARun)
{
    const TempDir dir;
    PrepareLaptop("laptop");
    const std::string runner = LaptopCodeRunner();
    const std::string page = RunArborist({"report", "laptop", "--code-runner", runner}).out;
    std::istringstream explained(RunArborist({"explain", "laptop", "--code-runner", runner}).out);
    const std::regex cause("^        rule ([^:]*): (.*)$");
    std::size_t count = 0;
    for (std::string line; std::getline(explained, line);) {
        std::smatch parts;
        if (std::regex_match(line, parts, cause)) {
            ++count;
            EXPECT_THAT(page, HasSubstr(" rule <span class=\"id\">" + parts[1].str() + "</span>: TRUE "
                + diagnosis::Markup(parts[2].str()) + "</p>"));
        }
    }
    EXPECT_EQ(count, 18U);
}

} // namespace
