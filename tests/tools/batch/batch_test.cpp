#include <algorithm>
#include <filesystem>
#include <map>

#include <csignal>

#include <gmock/gmock.h>

#include "tests/tools/batch/batch_fixture.h"

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAreArray;

// Breaks ten bundles in different ways; returns them by their position in the list.
std::map<std::size_t, std::string> BreakTen(const TempDir& dir, std::vector<std::string>& names)
{
    dir.Write("malformed/FaultTrees.xml", "<a>");
    dir.Write("malformed/FaultTreeRules.xml", "<a/>");
    dir.MakeDir("empty");
    WriteCodeBundle(dir, "crashing", {"info"});
    dir.Write(names[0] + "/bundle.json", "{");
    dir.Write(names[111] + "/bundle.json", R"({"treeTag": 5})");
    names[222] = "nowhere";
    names[333] = "empty";
    names[444] = "empty/../b0/bundle.json";
    names[555] = "crashing";
    dir.Write(names[666] + "/bundle.json", BundleJson(R"(, "ruleFileDir": "nowhere")"));
    dir.Write(names[777] + "/bundle.json", BundleJson(R"(, "ruleFileDir": "../malformed")"));
    dir.Write(names[888] + "/bundle.json", R"({"detectScene": 1, "treeTag": "Other", "ruleFileDir": "../b0/rules"})");
    names[999] = "b.zip";
    dir.Write("b.zip", "PK\3\4 and no more");
    return {{0, "bad_json"}, {111, "bad_bundle"}, {222, "no_bundle"}, {333, "no_bundle_json"}, {444, "no_bundle"},
        {555, "crashed"}, {666, "rule_file_missing"}, {777, "rule_file_malformed"}, {888, "no_tree"}, {999, "bad_zip"}};
}

TEST_F(BatchTest, AThousandBundlesWithTenBrokenOnesGiveAThousandLines)
{
    WriteHotBundle(mDir, "b0");
    std::vector<std::string> names;
    for (int i = 0; i < 1000; ++i) {
        names.push_back("b" + std::to_string(i));
        mDir.Write(names.back() + "/bundle.json", BundleJson(R"(, "ruleFileDir": "../b0/rules")"));
        mDir.Write(names.back() + "/temperature", "80\n");
    }
    const auto broken = BreakTen(mDir, names);
    mDir.Write("list", Joined(names));
    const auto result = RunArborist({"detect", "--batch", "list", "--jobs", SOME_JOBS, "--log-level", "none", "--code-runner",
        Script("kill -KILL $PPID")});
    auto expected = names;
    for (const auto& [number, code] : broken) {
        expected[number] += ": " + code;
    }
    EXPECT_THAT(Outcomes(result.out), UnorderedElementsAreArray(expected));
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1000);
    EXPECT_THAT(result.err, StartsWith("arborist: 1000 bundles in "));
    EXPECT_THAT(result.err, EndsWith(" a second: 0 without a fault, 0 undecided, 990 with faults, 10 not diagnosed\n"));
    EXPECT_EQ(result.status, 5);
}

TEST_F(BatchTest, ALineIsTheSameAsThatOfASingleDetection)
{
    WriteHotBundle(mDir, "b");
    const std::string now = "2024-05-20 12:00:00";
    EXPECT_EQ(WithoutSeconds(RunArborist({"detect", "--batch", "-", "--tree", "--now", now}, {.input = "b\n"}).out),
        WithoutSeconds(RunArborist({"detect", "--json", "--tree", "--now", now, "b"}).out));
}

TEST_F(BatchTest, BundlesWithOneRuleSetAnswerAsByThemselves)
{
    const auto names = WriteBundles(6);
    mDir.Write(names[2] + "/temperature", "5\n");
    fs::copy("b0/rules", "shared");
    for (std::vector<std::string> options : {std::vector<std::string>{}, {"--rules", "shared"}}) {
        options.insert(options.end(), {"--explain", "--now", "2024-05-20 12:00:00"});
        std::string list;
        std::string alone;
        const auto run = [&options](std::vector<std::string> arguments, const std::string& input) {
            arguments.insert(arguments.end(), options.begin(), options.end());
            return RunArborist(arguments, {.input = input}).out;
        };
        for (const std::string& name : names) {
            alone += run({"detect", "--json", name}, "");
            list += name + "\n";
        }
        EXPECT_EQ(WithoutSeconds(run({"detect", "--batch", "-", "--jobs", "1", "--ordered"}, list)), WithoutSeconds(alone));
    }
}

TEST_F(BatchTest, OrderedKeepsTheOrderOfTheList)
{
    auto names = WriteBundles(60);
    std::reverse(names.begin(), names.end());
    const auto result = RunArborist({"detect", "--batch", "-", "--jobs", SOME_JOBS, "--ordered"}, {.input = Joined(names)});
    auto expected = names;
    for (std::string& name : expected) {
        name += name == "b19" || name == "b39" || name == "b59" ? ": bad_json" : "";
    }
    EXPECT_THAT(Outcomes(result.out), ElementsAreArray(expected));
}

TEST_F(BatchTest, NulCharactersEndTheEntriesOfAListWithLineEndsInNames)
{
    WriteHotBundle(mDir, "a\nb");
    WriteHotBundle(mDir, "c");
    const std::string list = Joined({"a\nb", "", "c"}, '\0');
    for (const char* option : {"-0", "--null"}) {
        const auto result = RunArborist({"detect", "--batch", "-", option, "--jobs", "1"}, {.input = list});
        EXPECT_THAT(Outcomes(result.out), ElementsAre("a\nb", "c"));
        EXPECT_EQ(result.status, 0);
    }
}

TEST_F(BatchTest, AnEmptyListIsWrongUse)
{
    const auto result = RunArborist({"detect", "--batch", "-"}, {.input = "\n\n"});
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.err, "arborist: standard input: names no bundle\n");
    EXPECT_EQ(result.status, 2);
    mDir.Write("list", "");
    EXPECT_EQ(RunArborist({"detect", "--batch", "list"}).err, "arborist: list: names no bundle\n");
}

TEST_F(BatchTest, ShardsTogetherHaveEachBundleOnce)
{
    const auto names = WriteBundles(5);
    mDir.Write("list", Joined(names));
    const auto shard = [](const char* number) {
        return Outcomes(RunArborist({"detect", "--batch", "list", "--ordered", "--shard", number}).out);
    };
    EXPECT_THAT(shard("1/2"), ElementsAre("b0", "b2", "b4"));
    EXPECT_THAT(shard("2/2"), ElementsAre("b1", "b3"));
    EXPECT_THAT(shard("5/18446744073709551615"), ElementsAre("b4"));
    const auto beyond = RunArborist({"detect", "--batch", "list", "--shard", "7/8"});
    EXPECT_THAT(beyond.out, IsEmpty());
    EXPECT_EQ(beyond.status, 0);
}

TEST_F(BatchTest, AShardThatIsNoneIsWrongUse)
{
    for (const char* shard : {"0/2", "3/2", "1", "1/", "/2", "1/0", "1/2/3", "-1/2", " 1/2", "a/b"}) {
        EXPECT_EQ(RunArborist({"detect", "--batch", "-", "--shard", shard}, {.input = "b\n"}).status, 2) << shard;
    }
}

TEST_F(BatchTest, OutputHasAllLinesOrIsNotMade)
{
    mDir.Write("list", Joined(WriteBundles(3)));
    const auto result = RunArborist({"detect", "--batch", "list", "--ordered", "--output", "results.jsonl"});
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_THAT(Outcomes(mDir.Read("results.jsonl")), ElementsAre("b0", "b1", "b2"));
    mDir.MakeDir("folder");
    const auto refused = RunArborist({"detect", "--batch", "list", "--output", "folder"});
    EXPECT_EQ(refused.err, "arborist: folder: is a folder\n");
    EXPECT_EQ(refused.status, 2);
}

TEST_F(BatchTest, ARunThatIsEndedLeavesAnOldOutputAsItWas)
{
    WriteCodeBundle(mDir, "b", {"info"});
    mDir.Write("results.jsonl", "old\n");
    // The program of the code rule kills the batch, which is the parent of its worker.
    const auto runner = Script("kill -TERM $(ps -o ppid= -p $PPID)");
    const auto result = RunArborist({"detect", "--batch", "-", "--output", "results.jsonl", "--code-runner", runner},
        {.input = "b\n"});
    EXPECT_EQ(result.status, 128 + SIGTERM);
    EXPECT_EQ(mDir.Read("results.jsonl"), "old\n");
}

TEST_F(BatchTest, LinesMayEndInCarriageReturns)
{
    WriteHotBundle(mDir, "b");
    EXPECT_THAT(Outcomes(RunArborist({"detect", "--batch", "-"}, {.input = "b\r\n\r\nb"}).out), ElementsAre("b", "b"));
    WriteHotBundle(mDir, "c\r");
    const auto ended = RunArborist({"detect", "--batch", "-", "-0"}, {.input = std::string("c\r\0", 3)});
    EXPECT_THAT(Outcomes(ended.out), ElementsAre("c\r"));
}

TEST_F(BatchTest, ANulCharacterInALineEndsNoName)
{
    WriteHotBundle(mDir, "b");
    const auto result = RunArborist({"detect", "--batch", "-"}, {.input = std::string("b\0b\n", 4)});
    EXPECT_THAT(Outcomes(result.out), ElementsAre(std::string("b\0b: no_bundle", 14)));
}

TEST_F(BatchTest, ABundleThatIsNoneHasItsLine)
{
    const auto result = RunArborist({"detect", "--batch", "-"}, {.input = "nowhere\n"});
    EXPECT_THAT(Outcomes(result.out), ElementsAre("nowhere: no_bundle"));
    EXPECT_EQ(result.status, 4);
}

TEST_F(BatchTest, StrictAndFaultsCountTowardsTheStatus)
{
    WriteHotBundle(mDir, "b");
    EXPECT_EQ(RunArborist({"detect", "--batch", "-", "--fail-on-fault"}, {.input = "b\n"}).status, 1);
    std::filesystem::remove("b/temperature");
    EXPECT_EQ(RunArborist({"detect", "--batch", "-", "--strict"}, {.input = "b\n"}).status, 4);
}

TEST_F(BatchTest, AListThatCannotBeReadIsWrongUse)
{
    const auto missing = RunArborist({"detect", "--batch", "nowhere"});
    EXPECT_EQ(missing.err, "arborist: nowhere: can't be read: No such file or directory\n");
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(RunArborist({"detect", "--batch", "."}).err, "arborist: .: can't be read: is a folder\n");
}

} // namespace
