#include <filesystem>
#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/evidence_words.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"
#include "tests/tools/json_schema.h"

namespace {

// The nth block of the page that begins with this word, from 0.
std::string BlockOf(const std::string& page, const std::string& word, int number = 0)
{
    const std::string fence = "```" + word + "\n";
    std::size_t start = page.find(fence);
    for (; number > 0; --number) {
        start = page.find(fence, start + 1);
    }
    start += fence.size();
    return page.substr(start, page.find("```\n", start) - start);
}

TEST(ExplainPageTest, ListsEveryReasonInTheirOrder)
{
    using Reason = Evidence::Reason;
    std::vector<std::string> words;
    // Up to the first number that has no word: reasons that are added later count, too.
    for (int reason = 1; *Evidence::ReasonText(static_cast<Reason>(reason)) != '\0'; ++reason) {
        words.emplace_back(Evidence::ReasonText(static_cast<Reason>(reason)));
    }
    std::string page = PageOfDocs("explain.md");
    page = page.substr(page.find("## Reasons"), page.find("## JSON") - page.find("## Reasons"));
    const std::regex row("\\| `([a-z_]+)` \\|");
    std::vector<std::string> listed;
    for (std::sregex_iterator match(page.begin(), page.end(), row), end; match != end; ++match) {
        listed.push_back((*match)[1]);
    }
    EXPECT_EQ(listed, words);
}

TEST(ExplainPageTest, ItsExampleIsWhatTheCommandPrints)
{
    const TempDir dir;
    PrepareLaptop("laptop");
    const auto result = RunArborist(
        {"explain", "--near-misses", "1", "--minimal", "laptop", "--code-runner", LaptopCodeRunner()});
    const std::string block = BlockOf(PageOfDocs("explain.md"), "text");
    const std::string gap = "  ...\n";
    const auto middle = block.find(gap);
    ASSERT_NE(middle, std::string::npos);
    EXPECT_THAT(result.out, testing::HasSubstr(block.substr(0, middle)));
    EXPECT_THAT(result.out, testing::HasSubstr(block.substr(middle + gap.size())));
}

TEST(ExplainPageTest, ItsStatusThatIsNoAnswerIsWhatTheCommandPrints)
{
    const TempDir dir;
    WriteHotBundle(dir, "b");
    dir.Write("b/temperature", "20\n");
    dir.Write("b/rules/FaultTrees.xml",
        TreeXml("Tag").Tree("T", And({Xml("House-Event").TextChild("ID", "U"), Basic("HOT")})).Text());
    const std::string block = BlockOf(PageOfDocs("explain.md"), "text", 1);
    const auto verdict = block.find(": no fault");
    ASSERT_NE(verdict, std::string::npos);
    const std::string told = std::regex_replace(RunArborist({"explain", "b"}).out, std::regex("HOT"), "A");
    EXPECT_THAT(told, testing::HasSubstr(block.substr(verdict)));
}

TEST(ExplainPageTest, ItsNextChecksAreWhatTheCommandPrints)
{
    const TempDir dir;
    std::filesystem::copy(ARBORIST_SOURCE_DIR "/examples/laptop", "laptop", std::filesystem::copy_options::recursive);
    const auto result = RunArborist({"explain", "--brief", "--next", "2", "laptop"});
    for (const int number : {0, 1}) {
        EXPECT_THAT(result.out, testing::HasSubstr("\n" + BlockOf(PageOfDocs("explain.md"), "text next", number)));
    }
}

TEST(ExplainPageTest, ItsCheckWhereNothingWasDecidedIsWhatTheCommandPrints)
{
    const TempDir dir;
    WriteHotBundle(dir, "b");
    std::filesystem::remove("b/temperature");
    dir.Write("b/rules/FaultTrees.xml", TreeXml("Tag").Tree("T", And({Basic("HOT"), Basic("HOST", {"", "", "", "2"})})).Text());
    EXPECT_THAT(RunArborist({"explain", "--brief", "--next", "2", "b"}).out,
        testing::HasSubstr("\n" + BlockOf(PageOfDocs("explain.md"), "text next", 2)));
}

TEST(RuleSetsPageTest, ItsFirstRuleSetIsExplainedAsThePageSays)
{
    const TempDir dir;
    const std::string page = PageOfDocs("rule-sets.md");
    dir.Write("rules/FaultTrees.xml", BlockOf(page, "xml"));
    dir.Write("rules/FaultTreeRules.xml", BlockOf(page, "xml", 1));
    dir.Write("nodes/capacity", "58\n");
    dir.Write("bundle.json", BlockOf(page, "json"));
    EXPECT_EQ(RunArborist({"explain", "."}).out, BlockOf(page, "text"));
}

} // namespace
