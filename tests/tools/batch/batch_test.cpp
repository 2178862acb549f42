#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

#include <csignal>
#include <sched.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json/reader.h>
#include <json/value.h>

#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::AnyOfArray;
using testing::Contains;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAreArray;

std::vector<std::string> Lines(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

// "name" for each line, "name: code" for a bundle that was not diagnosed.
std::vector<std::string> Outcomes(const std::string& out)
{
    std::vector<std::string> outcomes;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    for (const std::string& line : Lines(out)) {
        Json::Value report;
        EXPECT_TRUE(reader->parse(line.data(), line.data() + line.size(), &report, nullptr)) << line;
        EXPECT_EQ(report["ok"].asBool(), !report.isMember("error")) << line;
        outcomes.push_back(report["bundle"].asString()
            + (report.isMember("error") ? ": " + report["error"]["code"].asString() : ""));
    }
    return outcomes;
}

class BatchTest : public testing::Test {
protected:
    // Bundles "b0", "b1" ... with the same rule set; each twentieth has an invalid bundle.json.
    std::vector<std::string> WriteBundles(int count)
    {
        WriteHotBundle(mDir, "b0");
        std::vector<std::string> names;
        for (int i = 0; i < count; ++i) {
            names.push_back("b" + std::to_string(i));
            const bool isBroken = i % 20 == 19;
            mDir.Write(names.back() + "/bundle.json", isBroken ? "{" : BundleJson(R"(, "ruleFileDir": "../b0/rules")"));
            mDir.Write(names.back() + "/temperature", "80\n");
        }
        return names;
    }

    // The list as the command reads it.
    static std::string Joined(const std::vector<std::string>& names, char end = '\n')
    {
        std::string list;
        for (const std::string& name : names) {
            list += name + end;
        }
        return list;
    }

    std::string Script(const std::string& body) const
    {
        const auto path = mDir.Write("runner", "#!/bin/sh\n" + body + "\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    TempDir mDir;
};

std::vector<std::string> ExpectedOutcomes(std::vector<std::string> names)
{
    for (std::size_t i = 19; i < names.size(); i += 20) {
        names[i] += ": bad_json";
    }
    return names;
}

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
    const auto result = RunArborist({"detect", "--batch", "list", "--jobs", "2", "--log-level", "none", "--code-runner",
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
    EXPECT_EQ(RunArborist({"detect", "--batch", "-", "--tree"}, {.input = "b\n"}).out,
        RunArborist({"detect", "--json", "--tree", "b"}).out);
}

TEST_F(BatchTest, OrderedKeepsTheOrderOfTheList)
{
    auto names = WriteBundles(60);
    std::reverse(names.begin(), names.end());
    const auto result = RunArborist({"detect", "--batch", "-", "--jobs", "3", "--ordered"}, {.input = Joined(names)});
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

TEST_F(BatchTest, AWorkerThatCrashesCostsItsBundleOnly)
{
    WriteCodeBundle(mDir, "crashing", {"info"});
    WriteHotBundle(mDir, "good");
    // A signal that sanitizers can't handle.
    const auto runner = Script("kill -KILL $PPID");
    const auto result = RunArborist({"detect", "--batch", "-", "--jobs", "1", "--code-runner", runner},
        {.input = "good\ncrashing\ngood\ncrashing\ngood\n"});
    EXPECT_THAT(Outcomes(result.out), ElementsAre("good", "crashing: crashed", "good", "crashing: crashed", "good"));
    EXPECT_THAT(result.out, HasSubstr("the worker process was killed by the signal Killed"));
    EXPECT_EQ(result.status, 5);
}

TEST_F(BatchTest, ABundleThatTakesTooLongIsGivenUp)
{
    WriteCodeBundle(mDir, "slow", {"info"});
    WriteHotBundle(mDir, "good");
    const auto runner = Script("sleep 1000 & wait");
    const auto result = RunArborist({"detect", "--batch", "-", "--jobs", "1", "--timeout", "0.2", "--code-timeout",
        "1000", "--code-runner", runner}, {.input = "slow\n"});
    EXPECT_THAT(Outcomes(result.out), ElementsAre("slow: timeout"));
    EXPECT_THAT(result.out, HasSubstr("took longer than 0.2 s and was given up"));
    EXPECT_EQ(result.status, 5);
}

// The processors that this test may use, each as the system writes a list of one.
std::vector<std::string> Processors()
{
    cpu_set_t allowed;
    std::vector<std::string> names;
    EXPECT_EQ(sched_getaffinity(0, sizeof allowed, &allowed), 0);
    for (unsigned number = 0; number < CPU_SETSIZE; ++number) {
        if (CPU_ISSET(number, &allowed)) {
            names.push_back(std::to_string(number));
        }
    }
    return names;
}

// With as many workers as processors each is bound to one; with fewer the system places them.
TEST_F(BatchTest, WorkersHaveAProcessorEachWhereThereIsOneForEveryProcessor)
{
    const std::vector<std::string> processors = Processors();
    std::string list;
    for (std::size_t i = 0; i <= processors.size(); ++i) {
        const std::string name = "code" + std::to_string(i);
        WriteCodeBundle(mDir, name, {"info"});
        list += name + "\n";
    }
    const auto runner = Script("awk '$1 == \"Cpus_allowed_list:\" {print $2}' /proc/self/status > processors");
    const auto processorsOf = [&](std::size_t workers) {
        RunArborist({"detect", "--batch", "-", "--jobs", std::to_string(workers), "--code-runner", runner},
            {.input = list});
        std::set<std::string> seen;
        for (std::size_t i = 0; i <= processors.size(); ++i) {
            seen.insert(mDir.Read("code" + std::to_string(i) + "/processors"));
        }
        return seen;
    };
    std::set<std::string> one;
    for (const std::string& processor : processors) {
        one.insert(processor + "\n");
    }
    EXPECT_EQ(processorsOf(processors.size()), one);
    if (processors.size() > 1) {
        EXPECT_THAT(processorsOf(1), Not(Contains(AnyOfArray(one))));
    }
}

struct SignalCase { const char* name; int number; };
void PrintTo(const SignalCase& signalCase, std::ostream* out) { *out << signalCase.name; }
class BatchSignal : public BatchTest, public testing::WithParamInterface<SignalCase> {};

TEST_P(BatchSignal, EndsTheBatchAndLeavesNothingBehind)
{
    WriteCodeBundle(mDir, "slow", {"info"});
    mDir.MakeDir("tmp");
    std::signal(GetParam().number, SIG_DFL); // a test that runs in the background may have it ignored
    // The parent of the program's parent is the batch.
    const auto runner = Script("ls ../tmp > ../seen\nkill -" + std::to_string(GetParam().number)
        + " $(awk '{print $4}' /proc/$PPID/stat)\nsleep 1000 & wait");
    const auto result = RunArborist({"detect", "--batch", "-", "--jobs", "1", "--code-timeout", "1000", "--code-runner",
        runner},
        {.input = "slow\nslow\n", .environment = {{"TMPDIR", mDir.Path("tmp")}}});
    EXPECT_EQ(result.status, 128 + GetParam().number);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_THAT(mDir.Read("seen"), StartsWith("arborist-"));
    EXPECT_TRUE(std::filesystem::is_empty("tmp"));
}

INSTANTIATE_TEST_SUITE_P(Table, BatchSignal,
    testing::Values(SignalCase{"Int", SIGINT}, SignalCase{"Term", SIGTERM}, SignalCase{"Hup", SIGHUP}), CaseName());

TEST_F(BatchTest, OnATerminalALineTellsHowFarItIs)
{
    if (RunProcess({"sh", "-c", "command -v script"}).status != 0) {
        GTEST_SKIP() << "no program that makes a terminal";
    }
    mDir.Write("list", Joined(WriteBundles(20)));
    const auto result = RunProcess({"script", "--quiet", "--return", "--command",
        "'" ARBORIST_COMMAND "' detect --batch list > results", "/dev/null"});
    EXPECT_THAT(result.out, ContainsRegex("\r[0-9]+ of 20 bundles, .* a second, .* left, [0-9]+ undecided, [0-9]+ with faults, [01] not "));
    EXPECT_THAT(result.out, HasSubstr("\r\x1b[Karborist: 20 bundles in ")); // the summary replaces it
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(Lines(mDir.Read("results")).size(), 20U);
}

TEST_F(BatchTest, AnUndecidedBundleIsNotCountedAsOneWithoutAFault)
{
    WriteHotBundle(mDir, "open");
    std::filesystem::remove("open/temperature");
    WriteHotBundle(mDir, "sound");
    mDir.Write("sound/temperature", "20\n");
    const auto result = RunArborist({"detect", "--batch", "-", "--log-level", "none"}, {.input = "open\nsound\n"});
    EXPECT_THAT(result.err, HasSubstr(": 1 without a fault, 1 undecided, 0 with faults, 0 not diagnosed\n"));
}

TEST_F(BatchTest, TheLineIsDrawnTenTimesASecondAlsoBetweenResults)
{
    if (RunProcess({"sh", "-c", "command -v script"}).status != 0) {
        GTEST_SKIP() << "no program that makes a terminal";
    }
    mDir.Write("list", Joined(WriteBundles(60)));
    const auto start = std::chrono::steady_clock::now();
    const auto result = RunProcess({"script", "--quiet", "--return", "--command",
        "'" ARBORIST_COMMAND "' detect --batch list", "/dev/null"});
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::size_t drawings = 0;
    for (auto at = result.out.find(" of 60 bundles"); at != std::string::npos;
         at = result.out.find(" of 60 bundles", at + 1)) {
        ++drawings;
    }
    EXPECT_GE(drawings, 1U);
    EXPECT_LE(static_cast<double>(drawings), 10 * seconds.count() + 2);
}

TEST_F(BatchTest, TemporaryFilesAreRemovedAtTheEnd)
{
    const auto names = WriteBundles(5);
    mDir.MakeDir("tmp");
    EXPECT_EQ(RunArborist({"detect", "--batch", "-"},
        {.input = Joined(names), .environment = {{"TMPDIR", mDir.Path("tmp")}}}).status, 0);
    EXPECT_TRUE(std::filesystem::is_empty("tmp"));
}

TEST_F(BatchTest, LinesThatCannotBeWrittenAreAnInternalError)
{
    WriteHotBundle(mDir, "b");
    const auto result = RunProcess({"sh", "-c", "echo b | '" ARBORIST_COMMAND "' detect --batch - > /dev/full"});
    EXPECT_EQ(result.err, // without a summary, as nobody received the lines
        "arborist: standard output could not be written\n");
    EXPECT_EQ(result.status, 5);
}

TEST_F(BatchTest, AReaderOfMessagesWhoLeavesCostsNoBundle)
{
    WriteHotBundle(mDir, "b");
    mDir.Write("list", "b\nb\n");
    const auto result = RunProcess({"sh", "-c", "mkfifo nobody; exec 3<>nobody; exec 2>nobody; exec 3>&-; exec '"
        ARBORIST_COMMAND "' detect --batch list --jobs 1 --log-level debug"});
    EXPECT_THAT(Outcomes(result.out), ElementsAre("b", "b"));
    EXPECT_EQ(result.status, 0);
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

// ---- docs/batch.md. ----

// The first block of a language.
std::string Recipe(const std::string& language)
{
    std::ifstream file(std::string(ARBORIST_SOURCE_DIR) + "/docs/batch.md", std::ios::binary);
    const std::string page{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const std::string fence = "```" + language + "\n";
    const auto start = page.find(fence) + fence.size();
    return page.substr(start, page.find("```\n", start) - start);
}

class BatchRecipeTest : public BatchTest {
protected:
    // Forty bundles in "devices", two of them broken, and the command in PATH.
    void SetUp() override
    {
        const auto names = WriteBundles(40);
        mDir.MakeDir("devices");
        for (const std::string& name : names) {
            std::filesystem::rename(name, "devices/" + name);
            mPaths.push_back(mDir.Path("devices/" + name));
        }
        const auto folder = std::filesystem::path(ARBORIST_COMMAND).parent_path().string();
        mSetup.environment = {{"PATH", folder + ":" + std::getenv("PATH")}, {"HOME", mDir.Path()}};
    }

    std::vector<std::string> mPaths;
    ProcessSetup mSetup;
};

TEST_F(BatchRecipeTest, GnuParallelRunsAllPieces)
{
    if (RunProcess({"sh", "-c", "parallel --version | grep -q GNU"}).status != 0) {
        GTEST_SKIP() << "GNU parallel is not installed";
    }
    mDir.Write("machines.txt", ":\n");
    std::string recipe = Recipe("sh");
    recipe.replace(recipe.find("--max-args 500"), 14, "--max-args 15");
    const auto result = RunProcess({"sh", "-c", recipe}, mSetup);
    EXPECT_THAT(Outcomes(mDir.Read("results.jsonl")), UnorderedElementsAreArray(ExpectedOutcomes(mPaths))) << result.err;
    EXPECT_EQ(Lines(mDir.Read("pieces.log")).size(), 1U + 3U);
}

TEST_F(BatchRecipeTest, ASlurmArrayRunsAllTasks)
{
    mDir.Write("bundles.txt", Joined(mPaths));
    mDir.MakeDir("results");
    std::string script = Recipe("bash");
    script.replace(script.find("/200"), 4, "/3");
    mDir.Write("diagnose.sh", script);
    for (const char* task : {"1", "2", "3"}) {
        mSetup.environment["SLURM_ARRAY_TASK_COUNT"] = "1"; // as for a task that is submitted again by itself
        mSetup.environment["SLURM_ARRAY_TASK_ID"] = task;
        mSetup.environment["SLURM_CPUS_PER_TASK"] = "2";
        EXPECT_EQ(RunProcess({"bash", "diagnose.sh"}, mSetup).status, 0);
    }
    EXPECT_THAT(Outcomes(mDir.Read("results/1.jsonl") + mDir.Read("results/2.jsonl") + mDir.Read("results/3.jsonl")),
        UnorderedElementsAreArray(ExpectedOutcomes(mPaths)));
}

} // namespace
