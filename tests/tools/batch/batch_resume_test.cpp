#include <algorithm>
#include <cstdlib>

#include <gmock/gmock.h>

#include "diagnosis/text/bounded_lines.h"
#include "tests/tools/batch/batch_fixture.h"
#include "tests/tools/json_schema.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAreArray;

/// Batches that go on where another one ended.
class BatchResumeTest : public BatchTest {
protected:
    ProcessResult Run(std::vector<std::string> more, const std::string& list = "list")
    {
        more.insert(more.begin(), {"detect", "--batch", list, "--jobs", SOME_JOBS, "--now", "2024-05-20 12:00:00"});
        return RunArborist(more);
    }

    // The bundles b0 to b(count - 1), and the list of them.
    std::vector<std::string> List(int count)
    {
        const auto names = WriteBundles(count);
        mDir.Write("list", Joined(names));
        return names;
    }

    // A line that no run gives, so that it can be told from one.
    static std::string KeptLine(const std::string& bundle, const std::string& code = "", bool retry = false)
    {
        return R"({"schema": "arborist.detect.1", "bundle": ")" + bundle + R"(", "ok": )" + (code.empty() ? "true" : "false")
            + R"(, "warnings": [], "results": [], "error": {"code": ")" + code + R"(", "message": "kept", "retry": )"
            + (retry ? "true" : "false") + R"(}, "device": "", "engine": "0.0.1", "ruleSet": "", "now": "", )"
            + R"("seconds": 0.5})" + "\n";
    }

    // Makes `--code-runner` kill the whole batch, at every `period`th question over all runs.
    std::string Killer(int period) const
    {
        return Script("echo >> '" + mDir.Path("asked") + "'; [ $(($(wc -l < '" + mDir.Path("asked") + "') % "
            + std::to_string(period) + ")) -ne 0 ] || kill -KILL $(ps -o ppid= -p $PPID); exit 1");
    }
};

TEST_F(BatchResumeTest, BundlesWithALineArePassedOverAndTheirLinesKept)
{
    List(4);
    mDir.Write("earlier", KeptLine("b2") + KeptLine("b0", "bad_zip"));
    const auto result = Run({"--resume", "earlier"});
    EXPECT_THAT(result.out, StartsWith(KeptLine("b0", "bad_zip") + KeptLine("b2")));
    EXPECT_THAT(Outcomes(result.out), UnorderedElementsAreArray({"b0: bad_zip", "b1", "b2", "b3"}));
    EXPECT_EQ(result.status, 4); // as if all had been run
    EXPECT_THAT(Outcomes(Run({"--resume", "nowhere", "--ordered"}).out), ElementsAre("b0", "b1", "b2", "b3"));
}

TEST_F(BatchResumeTest, KeptLinesHaveTheirPlaceInTheOrderOfTheList)
{
    const auto names = List(9);
    mDir.Write("earlier", KeptLine("b8") + KeptLine("b0") + KeptLine("b4") + KeptLine("b3"));
    const auto lines = Lines(Run({"--resume", "earlier", "--ordered"}).out);
    ASSERT_EQ(lines.size(), 9U);
    for (std::size_t bundle = 0; bundle < names.size(); ++bundle) {
        const bool isKept = bundle == 0 || bundle == 3 || bundle == 4 || bundle == 8;
        EXPECT_THAT(lines[bundle], HasSubstr("\"bundle\": \"" + names[bundle] + "\""));
        EXPECT_EQ(lines[bundle].find("\"engine\": \"0.0.1\"") != std::string::npos, isKept) << names[bundle];
    }
}

TEST_F(BatchResumeTest, LinesThatAreWorthARetryAndATornLastLineAreRunAgain)
{
    List(3);
    for (const char* code : {"no_scratch", "out_of_memory", "timeout", "crashed", "not_copied"}) {
        mDir.Write("earlier", KeptLine("b0", code, true) + KeptLine("b1"));
        EXPECT_THAT(Outcomes(Run({"--resume", "earlier", "--ordered"}).out), ElementsAre("b0", "b1", "b2")) << code;
    }
    const std::string last = KeptLine("b0", "bad_zip");
    for (std::size_t length = 0; length < last.size(); length += 41) {
        mDir.Write("earlier", KeptLine("b1") + last.substr(0, length));
        EXPECT_THAT(Outcomes(Run({"--resume", "earlier", "--ordered"}).out), ElementsAre("b0", "b1", "b2")) << length;
    }
}

TEST_F(BatchResumeTest, ALineStandsForOneEntryOfTheListOnly)
{
    List(2);
    mDir.Write("list", "b0\nb0\nb1\n");
    mDir.Write("earlier", KeptLine("b0") + KeptLine("elsewhere") + KeptLine("b1") + KeptLine("b1"));
    const auto result = Run({"--resume", "earlier", "--ordered"});
    EXPECT_THAT(Outcomes(result.out), ElementsAre("b0", "b0", "b1"));
    EXPECT_EQ(Lines(result.out)[0] + "\n", KeptLine("b0"));
    EXPECT_THAT(Lines(result.out)[1], Not(HasSubstr("\"kept\"")));
    EXPECT_EQ(Lines(result.out)[2] + "\n", KeptLine("b1"));
}

TEST_F(BatchResumeTest, AShardKeepsItsOwnLinesOnly)
{
    List(4);
    mDir.Write("earlier", KeptLine("b0") + KeptLine("b1"));
    const auto result = Run({"--resume", "earlier", "--ordered", "--shard", "2/2"});
    EXPECT_THAT(Outcomes(result.out), ElementsAre("b1", "b3"));
    EXPECT_THAT(result.out, StartsWith(KeptLine("b1")));
}

TEST_F(BatchResumeTest, AFileThatIsNoResultIsRefused)
{
    List(2);
    mDir.Write("earlier", KeptLine("b0") + "{}\n" + KeptLine("b1"));
    const auto refused = Run({"--resume", "earlier"});
    EXPECT_THAT(refused.err, StartsWith("arborist: earlier:2: "));
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(Run({"--resume", "b0"}).status, 2);
    mDir.Write("whole", KeptLine("b0"));
    const auto twice = RunProcess({"sh", "-c", ARBORIST_COMMAND " detect --batch list --resume whole >> whole"});
    EXPECT_THAT(twice.err, HasSubstr("whole: is standard output, too; --output may name the same file"));
    EXPECT_EQ(mDir.Read("whole"), KeptLine("b0"));
}

TEST_F(BatchResumeTest, BlankLinesAndAByteOrderMarkArePassedOver)
{
    List(3);
    mDir.Write("earlier", "\xEF\xBB\xBF" + KeptLine("b0") + "\n \t\r\n" + KeptLine("b1"));
    const auto result = Run({"--resume", "earlier"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, StartsWith(KeptLine("b0") + KeptLine("b1")));
    mDir.Write("earlier", "\xEF\xBB\xBF\n" + KeptLine("b1") + "\n{}\n");
    EXPECT_THAT(Run({"--resume", "earlier"}).err, StartsWith("arborist: earlier:4: "));
}

TEST_F(BatchResumeTest, ALineWithoutAnEndIsRefused)
{
    List(2);
    mDir.Write("earlier", KeptLine("b0") + std::string(diagnosis::LONGEST_LINE + 1, ' ') + "\n" + KeptLine("b1"));
    const auto result = Run({"--resume", "earlier"});
    EXPECT_EQ(result.err, "arborist: earlier:2: the line is longer than 64 MiB\n");
    EXPECT_EQ(result.status, 2);
}

TEST_F(BatchResumeTest, APipeOfEarlierLinesIsRefused)
{
    List(2);
    mDir.Write("earlier", KeptLine("b0"));
    const auto piped = RunScript("cat earlier | '" ARBORIST_COMMAND "' detect --batch list --resume /dev/stdin");
    EXPECT_EQ(piped.err, "arborist: /dev/stdin: can't be read: is no plain file\n");
    EXPECT_EQ(piped.status, 2);
    EXPECT_EQ(Run({"--resume", "/dev/null"}).status, 2);
    const auto plain = RunScript("'" ARBORIST_COMMAND "' detect --batch list --resume /dev/stdin < earlier");
    EXPECT_THAT(plain.out, StartsWith(KeptLine("b0")));
}

// The bundle that comes first empties the file.
TEST_F(BatchResumeTest, ALineThatCannotBeReadAgainEndsTheBatch)
{
    WriteCodeBundle(mDir, "emptying", {"info"});
    WriteHotBundle(mDir, "b");
    mDir.Write("list", "emptying\nb\n");
    const std::string empty = Script(": > '" + mDir.Path("earlier") + "'; exit 1");
    mDir.Write("earlier", KeptLine("b"));
    // One worker, so that the line is not read before.
    std::vector<std::string> command = {"detect", "--batch", "list", "--jobs", "1", "--ordered", "--resume", "earlier",
        "--code-runner", empty};
    const auto result = RunArborist(command);
    EXPECT_THAT(Outcomes(result.out), ElementsAre("emptying"));
    EXPECT_THAT(result.err, HasSubstr("arborist: earlier: can't be read again"));
    EXPECT_EQ(result.status, 5);
    mDir.Write("earlier", KeptLine("b"));
    mDir.Write("results", "before\n");
    command.insert(command.end(), {"--output", "results"});
    EXPECT_EQ(RunArborist(command).status, 5);
    EXPECT_EQ(mDir.Read("results"), "before\n");
}

TEST_F(BatchResumeTest, ABatchThatCannotStartLeavesTheOutputAsItIs)
{
    List(2);
    mDir.Write("whole", KeptLine("b0"));
    const auto result = RunScript("TMPDIR=/nowhere '" ARBORIST_COMMAND "' detect --batch list --resume whole --output whole");
    EXPECT_EQ(result.status, 5) << result.err;
    EXPECT_EQ(mDir.Read("whole"), KeptLine("b0"));
}

TEST_F(BatchResumeTest, TheOutputMayBeTheFileThatIsResumed)
{
    List(3);
    mDir.Write("whole", KeptLine("b1") + "{\"torn");
    EXPECT_EQ(Run({"--resume", "whole", "--output", "whole", "--ordered"}).status, 0);
    EXPECT_THAT(Outcomes(mDir.Read("whole")), ElementsAre("b0", "b1", "b2"));
}

// A run is killed again and again: nothing is lost, nothing is there twice. As often as ARBORIST_KILLS says.
TEST_F(BatchResumeTest, ARunThatIsKilledAgainAndAgainHasEachBundleOnceAtTheEnd)
{
    const char* const said = std::getenv("ARBORIST_KILLS");
    const int kills = said == nullptr ? 10 : std::atoi(said);
    std::vector<std::string> names;
    WriteCodeBundle(mDir, "b0", {"info"});
    // Two questions for each that would do: two at once may both pass the third one by.
    for (int i = 0; i < 6 * kills; ++i) {
        names.push_back("b" + std::to_string(i));
        mDir.Write(names.back() + "/bundle.json", BundleJson(R"(, "ruleFileDir": "../b0/rules")"));
    }
    mDir.Write("list", Joined(names));
    const std::string killer = Killer(3);
    int killed = 0;
    std::vector<std::string> before;
    for (int status = -1; status != 0; ++killed) {
        mDir.Write("earlier", Joined(before));
        const auto result = RunProcess({ARBORIST_COMMAND, "detect", "--batch", "list", "--jobs", SOME_JOBS, "--resume", "earlier",
            "--code-runner", killer});
        auto lines = Lines(result.out);
        if (!result.out.empty() && result.out.back() != '\n') {
            lines.pop_back(); // torn
        }
        for (const std::string& line : before) {
            ASSERT_EQ(std::count(lines.begin(), lines.end(), line), 1) << line;
        }
        before = lines;
        status = result.status;
        ASSERT_LT(killed, 10 * kills);
    }
    EXPECT_GE(killed - 1, kills);
    EXPECT_THAT(Outcomes(Joined(before)), UnorderedElementsAreArray(names));
}

TEST_F(BatchResumeTest, ABundleWhoseWorkerDiesIsTriedAgainAtMostAsOftenAsAsked)
{
    WriteCodeBundle(mDir, "crashing", {"crash"});
    WriteHotBundle(mDir, "b");
    mDir.Write("list", "crashing\nb\n");
    const auto runner = Script("echo >> '" + mDir.Path("asked") + "'; [ $(wc -l < '" + mDir.Path("asked")
        + "') -gt 2 ] || kill -KILL $PPID; exit 1");
    const auto once = Run({"--code-runner", runner, "--retries", "1"});
    EXPECT_THAT(Outcomes(once.out), UnorderedElementsAreArray({"b", "crashing: crashed"}));
    EXPECT_EQ(Lines(mDir.Read("asked")).size(), 2U);
    mDir.Write("asked", "");
    const auto twice = Run({"--code-runner", runner, "--retries", "2", "--ordered"});
    EXPECT_THAT(Outcomes(twice.out), ElementsAre("crashing", "b"));
    EXPECT_EQ(twice.status, 0);
    EXPECT_EQ(Lines(mDir.Read("asked")).size(), 3U);
}

TEST_F(BatchResumeTest, ASummaryHasTheNumbersOfTheBatch)
{
    List(20);
    mDir.Write("list", mDir.Read("list") + "nowhere\nhealthy\n");
    WriteHotBundle(mDir, "healthy");
    mDir.Write("healthy/temperature", "20\n");
    mDir.Write("earlier", KeptLine("b0", "bad_zip"));
    EXPECT_EQ(Run({"--summary", "summary", "--resume", "earlier"}).status, 4);
    EXPECT_EQ(WithoutSeconds(mDir.Read("summary")),
        R"({"schema": "arborist.batch.1", "listed": 22, "done": 22, "kept": 1, "failed": {"bad_json": 1, "bad_zip": 1, )"
        R"("no_bundle": 1}, "trees": {"fault": 18, "undecided": 0, "no_fault": 1, "not_applicable": 0}, "seconds": 0, )"
        R"("complete": true})" "\n");
}

TEST_F(BatchResumeTest, ASummaryThatCannotBeWrittenIsToldBeforeTheBatch)
{
    List(1);
    const auto result = Run({"--summary", "no/folder"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, StartsWith("arborist: no/folder: can't be written: "));
}

TEST_F(BatchResumeTest, AnOutputThatWouldReplaceAnotherFileOfTheBatchIsRefused)
{
    List(2);
    mDir.Write("earlier", KeptLine("b0"));
    std::filesystem::create_hard_link("list", "same");
    const std::vector<std::vector<std::string>> uses = {{"--output", "./list"}, {"--output", "same"}, {"--summary", "list"},
        {"--summary", "same"}, {"--summary", "new", "--output", "./new"}, {"--summary", "earlier", "--resume", "earlier"},
        {"--summary", "./later", "--resume", "later"}};
    const std::string list = mDir.Read("list");
    for (const auto& use : uses) {
        const auto result = Run(use);
        EXPECT_EQ(result.status, 2) << use.back();
        EXPECT_EQ(result.out, "") << use.back();
        EXPECT_THAT(result.err, HasSubstr(": is the file of --")) << use.back();
    }
    const std::string detect = "'" ARBORIST_COMMAND "' detect --batch ";
    EXPECT_EQ(RunScript(detect + "- --output list < list").status, 2);
    EXPECT_EQ(RunScript(detect + "list --summary out > out").status, 2);
    EXPECT_EQ(mDir.Read("list"), list);
    EXPECT_EQ(mDir.Read("earlier"), KeptLine("b0"));
    EXPECT_FALSE(std::filesystem::exists("new"));
}

TEST_F(BatchResumeTest, AnInterruptedBatchSaysInItsSummaryThatItIsNotComplete)
{
    WriteCodeBundle(mDir, "b", {"info"});
    mDir.Write("list", "b\nb\n");
    const auto runner = Script("kill -TERM $(ps -o ppid= -p $PPID); sleep 600");
    EXPECT_EQ(Run({"--summary", "summary", "--code-runner", runner, "--code-timeout", "600"}).status, 128 + SIGTERM);
    const Json::Value summary = ParsedJson(mDir.Read("summary"));
    EXPECT_EQ(summary["listed"].asInt(), 2);
    EXPECT_EQ(summary["done"].asInt(), 0);
    EXPECT_FALSE(summary["complete"].asBool());
}

TEST_F(BatchResumeTest, BundleErrorsCanBeLeftOutOfTheStatus)
{
    List(2);
    mDir.Write("list", "b0\nnowhere\n");
    EXPECT_EQ(Run({}).status, 4);
    EXPECT_EQ(Run({"--exit-zero-on-bundle-errors"}).status, 0);
    EXPECT_EQ(Run({"--exit-zero-on-bundle-errors", "--fail-on-fault"}).status, 1);
    EXPECT_EQ(Run({"--exit-zero-on-bundle-errors"}, "nowhere").status, 2);
    EXPECT_EQ(Run({"--exit-zero-on-bundle-errors", "--output", "no/folder"}).status, 2);
}

} // namespace
