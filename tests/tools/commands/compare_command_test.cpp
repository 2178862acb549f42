#include <filesystem>
#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"
#include "tests/tools/json_schema.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

namespace fs = std::filesystem;

std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
    const auto at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

// What a page shows behind a line "    arborist compare": the block that follows.
std::string ShownBehind(const std::string& page, const std::string& command)
{
    const auto at = page.find("    " + command + "\n");
    EXPECT_NE(at, std::string::npos) << command;
    const auto begin = page.find("```text\n", at) + 8;
    return page.substr(begin, page.find("```", begin) - begin);
}

class CompareCommandTest : public testing::Test {
protected:
    // Rules of the bundles "hot" and "cold" before, and after with another limit: the one is 80 degrees, the other 50.
    CompareCommandTest()
    {
        WriteHotBundle(mDir, "hot");
        WriteHotBundle(mDir, "cold");
        mDir.Write("cold/temperature", "50\n");
        fs::copy("hot/rules", "old", fs::copy_options::recursive);
        fs::copy("hot/rules", "new", fs::copy_options::recursive);
        SetLimit("45");
        mDir.Write("list", "hot\ncold\n");
    }

    void SetLimit(const std::string& limit) const
    {
        mDir.Write("new/FaultTreeRules.xml", Replaced(mDir.Read("old/FaultTreeRules.xml"), "<value>70</value>", "<value>" + limit + "</value>"));
    }

    static ProcessResult Compare(std::vector<std::string> more = {}, const std::string& list = "list")
    {
        more.insert(more.begin(), {"compare", "--rules", "old", "--rules", "new", "--batch", list, "--log-level", "none"});
        return RunArborist(more);
    }

    TempDir mDir;
};

TEST_F(CompareCommandTest, MeaningIsToldFirstAndThenWhatItChanges)
{
    const auto result = Compare();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, testing::StartsWith("rules:\n"));
    EXPECT_LT(result.out.find("1 difference\n"), result.out.find("before: old: 2 bundles\n"));
    EXPECT_THAT(result.out, HasSubstr("\nroot causes: 1 new, 0 gone, 1 unchanged, 0 not comparable\n"));
    EXPECT_THAT(result.out, HasSubstr("  + T: T/HOT: cold\n"));
    EXPECT_TRUE(std::regex_search(result.out, std::regex("\nrun time: [0-9.]+ s before, [0-9.]+ s after(, [0-9]+ % (less|more))?\n$")));
}

TEST_F(CompareCommandTest, FailsOnWhatItIsToFailOn)
{
    EXPECT_EQ(Compare({"--fail-on", "new"}).status, 1);
    EXPECT_EQ(Compare({"--fail-on", "gone"}).status, 0);
    EXPECT_EQ(Compare({"--fail-on", "any"}).status, 1);
    SetLimit("90");
    EXPECT_EQ(Compare({"--fail-on", "new"}).status, 0);
    EXPECT_EQ(Compare({"--fail-on", "gone"}).status, 1);
    SetLimit("60"); // means something else, and finds the same
    EXPECT_EQ(Compare({"--fail-on", "any"}).status, 0);
}

TEST_F(CompareCommandTest, AsJsonItHasBothComparisons)
{
    const auto json = ParsedJson(Compare({"--json"}).out);
    EXPECT_EQ(json["schema"], "arborist.compare.1");
    EXPECT_EQ(json["rules"]["schema"], "arborist.rules.diff.1");
    EXPECT_FALSE(json["rules"]["equal"].asBool());
    EXPECT_EQ(json["results"]["new"], 1);
    EXPECT_EQ(json["results"]["before"]["path"], "old");
    EXPECT_THAT(Violations(ParsedJson(PageOfDocs("results-diff.schema.json")), json["results"]), testing::IsEmpty());
}

TEST_F(CompareCommandTest, ChecksThatNoLongerCloseAreToldWithTheirReason)
{
    mDir.Write("new/FaultTreeRules.xml", Replaced(mDir.Read("new/FaultTreeRules.xml"), "path=\"temperature\"", "path=\"elsewhere\""));
    EXPECT_THAT(Compare().out, HasSubstr("newly open checks:\n  T: HOT by hot: "));
}

TEST_F(CompareCommandTest, BundlesThatCannotBeRunAreNotComparable)
{
    mDir.Write("list", "hot\nnowhere\ncold\n");
    const auto result = Compare({"--fail-on", "gone"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("  1 bundle failed on both sides: nowhere\n"));
}

TEST_F(CompareCommandTest, ACorpusOfWhichNothingCanBeDiagnosedIsAFailure)
{
    mDir.Write("list", "nowhere\nelsewhere\n");
    for (const std::vector<std::string>& more : {std::vector<std::string>(), {"--fail-on", "any"}, {"--fail-on", "gone", "--json"}}) {
        const auto result = Compare(more);
        EXPECT_EQ(result.status, 4);
        EXPECT_NE(result.out, "");
        EXPECT_THAT(result.err, EndsWith("arborist: no bundle could be diagnosed, with either rule set\n"));
    }
}

TEST_F(CompareCommandTest, ABundleThatIsListedTwiceIsRunOnce)
{
    EXPECT_THAT(Compare().err, Not(HasSubstr("repeats")));
    mDir.Write("list", "hot\ncold\nhot\n./hot\ncold/\n" + fs::absolute("cold").string() + "\n");
    const auto result = Compare();
    EXPECT_THAT(result.err, HasSubstr("arborist: the list repeats bundles: of 6 entries, 2 are run\n"));
    EXPECT_THAT(result.err, HasSubstr("arborist: 2 bundles in "));
    EXPECT_THAT(result.out, HasSubstr("before: old: 2 bundles\n"));
    mDir.Write("list", "hot\nhot\n");
    EXPECT_THAT(Compare().err, HasSubstr("of 2 entries, 1 is run\n"));
}

TEST_F(CompareCommandTest, WithoutATemporaryFolderNothingIsRun)
{
    const auto result = RunArborist({"compare", "--rules", "old", "--rules", "new", "--batch", "list", "--json"},
        {.environment = {{"TMPDIR", "/nowhere"}}});
    EXPECT_EQ(result.status, 5);
    EXPECT_THAT(result.out, HasSubstr("\"no_scratch\""));
    EXPECT_EQ(result.err, "arborist: no folder for temporary files can be made in TMPDIR: No such file or directory\n");
}

TEST_F(CompareCommandTest, RuleSetsAreGivenTwice)
{
    const std::string words = "--rules must be given twice: the rule set before and the one after";
    const auto once = RunArborist({"compare", "--rules", "old", "--batch", "list"});
    EXPECT_EQ(once.status, 2);
    EXPECT_THAT(once.err, HasSubstr(words));
    const auto thrice = Compare({"--rules", "old"});
    EXPECT_EQ(thrice.status, 2);
    EXPECT_THAT(thrice.err, HasSubstr(words));
}

TEST_F(CompareCommandTest, AsJsonARuleSetThatCannotBeReadIsAnObject)
{
    fs::remove("new/FaultTrees.xml");
    const auto result = Compare({"--json"});
    EXPECT_EQ(result.status, 3);
    const auto json = ParsedJson(result.out);
    EXPECT_EQ(json["schema"], "arborist.compare.1");
    EXPECT_EQ(json["error"]["code"], "rule_file_missing");
    EXPECT_THAT(json["error"]["message"].asString(), HasSubstr("FaultTrees.xml"));
}

TEST_F(CompareCommandTest, WhatItNeedsIsAskedFor)
{
    EXPECT_EQ(RunArborist({"compare", "--rules", "old", "--rules", "new"}).status, 2);
    EXPECT_EQ(Compare({}, "no-list").status, 2);
    EXPECT_EQ(Compare({"--fail-on", "old"}).status, 2);
    mDir.Write("empty", "\n");
    EXPECT_EQ(Compare({}, "empty").status, 2);
    fs::remove("new/FaultTrees.xml");
    EXPECT_EQ(Compare().status, 3);
}

TEST_F(CompareCommandTest, ItsPageShowsWhatItPrints)
{
    const std::string page = PageOfDocs("compare.md");
    PrepareLaptop("laptop");
    for (const char* side : {"before", "after"}) {
        fs::copy("laptop/rules", side, fs::copy_options::recursive);
    }
    mDir.Write("after/FaultTreeRules.xml", Replaced(mDir.Read("before/FaultTreeRules.xml"),
        "<time type=\"duration\" period=\"30\" threshold=\"100\"/>", "<time type=\"duration\" period=\"30\" threshold=\"1000\"/>"));
    mDir.Write("corpus.txt", "laptop\n");
    const std::string command = "compare --rules before --rules after --batch corpus.txt";
    auto printed = RunScript("'" + std::string(ARBORIST_COMMAND) + "' " + command).out;
    const auto plain = [](const std::string& text) { // but for times
        return std::regex_replace(text, std::regex("run time: [^\n]*"), "run time");
    };
    EXPECT_EQ(plain(printed), plain(ShownBehind(page, "arborist " + command)));
}

} // namespace
