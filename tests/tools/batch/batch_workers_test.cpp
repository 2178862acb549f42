#include <chrono>
#include <climits>
#include <filesystem>
#include <set>

#include <csignal>
#include <sched.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "tests/support/case_name.h"
#include "tests/tools/batch/batch_fixture.h"

namespace {

using testing::AnyOfArray;
using testing::Contains;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// Notices whether a file is opened while it lives.
class OpenWatch {
public:
    explicit OpenWatch(const std::string& path) : mQueue(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        EXPECT_NE(inotify_add_watch(mQueue, path.c_str(), IN_OPEN), -1);
    }
    ~OpenWatch() { close(mQueue); }
    OpenWatch(const OpenWatch&) = delete;
    OpenWatch& operator=(const OpenWatch&) = delete;

    bool WasOpened() const
    {
        alignas(inotify_event) char event[sizeof(inotify_event) + NAME_MAX + 1];
        return read(mQueue, event, sizeof event) > 0;
    }

private:
    int mQueue;
};

// No bundle names the second rule set of the folder, so that no worker reads it. The runs have no guard of their inputs,
// which would open it.
TEST_F(BatchTest, TheRuleSetsOfTheOptionAreCheckedBeforeTheWorkersAre)
{
    WriteHotBundle(mDir, "b");
    std::filesystem::rename("b/rules", "rules");
    for (const char* file : {"FaultTrees.xml", "FaultTreeRules.xml"}) {
        mDir.Write(std::string("rules/P_") + file, mDir.Read(std::string("rules/") + file));
    }
    const OpenWatch watch("rules/P_FaultTrees.xml");
    const std::vector<std::string> options{"--rules", "rules", "--now", "2024-05-20 12:00:00"};
    const auto run = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), options.begin(), options.end());
        return WithoutSeconds(RunProcess(arguments, {.input = "b\n"}).out);
    };
    const std::string alone = run({ARBORIST_COMMAND, "detect", "--json", "b"});
    EXPECT_FALSE(watch.WasOpened());
    EXPECT_EQ(run({ARBORIST_COMMAND, "detect", "--batch", "-"}), alone);
    EXPECT_TRUE(watch.WasOpened());
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

TEST_F(BatchTest, FilesOfAWorkerThatWasKilledAreRemovedBeforeTheNextBundle)
{
    WriteCodeBundle(mDir, "crashing", {"crash"});
    WriteCodeBundle(mDir, "good", {"info"});
    const auto runner = Script("grep -q crash && { kill -KILL $PPID; exit 1; }; ls \"$TMPDIR\" | wc -l >> '" + mDir.Path("seen") + "'");
    const auto result = RunArborist({"detect", "--batch", "-", "--jobs", "1", "--code-runner", runner},
        {.input = "crashing\ngood\n", .environment = {{"TMPDIR", mDir.MakeDir("tmp")}}});
    EXPECT_THAT(Outcomes(result.out), ElementsAre("crashing: crashed", "good"));
    EXPECT_EQ(mDir.Read("seen"), "1\n"); // the folder of the worker that runs
    EXPECT_TRUE(std::filesystem::is_empty("tmp"));
}

// What one bundle leaves in the folder that its worker uses again would change the answers of the next.
TEST_F(BatchTest, BundlesOfOneWorkerShareNoFiles)
{
    PrepareLaptop("laptop");
    PrepareLaptop("bare"); // without a log, repairs, panels and answers of its own
    std::filesystem::remove_all("bare/programdata");
    std::filesystem::remove_all("bare/device/data/panel");
    const std::string bare = WithoutSeconds(RunArborist({"detect", "--json", "bare"}).out);
    const std::string laptop = WithoutSeconds(RunArborist({"detect", "--json", "laptop"}).out);
    ASSERT_NE(bare, laptop);
    const auto result = RunArborist({"detect", "--batch", "-", "--jobs", "1", "--ordered"},
        {.input = "laptop\nbare\nlaptop\nlaptop\nbare\n"});
    EXPECT_EQ(WithoutSeconds(result.out), laptop + bare + laptop + laptop + bare);
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
    EXPECT_THAT(result.out, ContainsRegex("\r[0-9]+ of 20 bundles, (.* a second, .* left, )?[0-9]+ undecided, [0-9]+ with faults, [01] not "));
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
    const auto result = RunScript("echo b | '" ARBORIST_COMMAND "' detect --batch - > /dev/full");
    EXPECT_EQ(result.err, // without a summary, as nobody received the lines
        "arborist: standard output could not be written\n");
    EXPECT_EQ(result.status, 5);
}

TEST_F(BatchTest, AReaderOfMessagesWhoLeavesCostsNoBundle)
{
    WriteHotBundle(mDir, "b");
    mDir.Write("list", "b\nb\n");
    const auto result = RunScript("mkfifo nobody; exec 3<>nobody; exec 2>nobody; exec 3>&-; exec '"
        ARBORIST_COMMAND "' detect --batch list --jobs 1 --log-level debug");
    EXPECT_THAT(Outcomes(result.out), ElementsAre("b", "b"));
    EXPECT_EQ(result.status, 0);
}

} // namespace
