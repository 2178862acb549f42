#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/batch/batch_fixture.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class FailingCallsTest : public BatchTest {
protected:
    // Runs the command while `call` fails: "fork 2" for the second one of each process.
    ProcessResult Run(const std::string& call, const std::vector<std::string>& arguments, const std::string& input = "") const
    {
        return RunArborist(arguments, {.input = input, .environment = {{"LD_PRELOAD", FAILING_CALLS},
            {"FAILING_CALL", call}, {"ASAN_OPTIONS", "verify_asan_link_order=0"}}});
    }
};

TEST_F(FailingCallsTest, ABundleForWhichNoWorkerStartsIsNotDiagnosed)
{
    const auto names = WriteBundles(3);
    for (const auto& [call, reason] : {std::pair("fork 1", "Resource temporarily unavailable"),
             std::pair("socketpair 1", "Too many open files")}) {
        const auto result = Run(call, {"detect", "--batch", "-", "--jobs", "1"}, Joined(names));
        EXPECT_THAT(Outcomes(result.out), ElementsAre("b0: internal", "b1", "b2")) << call;
        EXPECT_THAT(result.out, HasSubstr(std::string("a worker process can't be started: ") + reason));
        EXPECT_EQ(result.status, 5);
    }
}

TEST_F(FailingCallsTest, WhereOtherWorkersRunTheBundleIsTriedAgain)
{
    const auto names = WriteBundles(3);
    const auto result = Run("fork 2", {"detect", "--batch", "-", "--jobs", "2"}, Joined(names));
    EXPECT_THAT(Outcomes(result.out), UnorderedElementsAre("b0", "b1", "b2"));
    EXPECT_EQ(result.status, 0);
}

// The first folder is that of the batch.
TEST_F(FailingCallsTest, ABundleForWhichAWorkerHasNoFolderIsTriedAgainIfAskedFor)
{
    const auto names = WriteBundles(2);
    const auto once = Run("mkdtemp 2", {"detect", "--batch", "-", "--jobs", "1"}, Joined(names));
    EXPECT_THAT(Outcomes(once.out), ElementsAre("b0: no_scratch", "b1"));
    EXPECT_EQ(once.status, 5);
    const auto again = Run("mkdtemp 2", {"detect", "--batch", "-", "--jobs", "1", "--retries", "1"}, Joined(names));
    EXPECT_THAT(Outcomes(again.out), UnorderedElementsAre("b0", "b1"));
    EXPECT_EQ(again.status, 0);
}

TEST_F(FailingCallsTest, ABatchWithoutAFolderIsNotStarted)
{
    WriteBundles(1);
    const auto result = Run("mkdtemp 1", {"detect", "--batch", "-"}, "b0\n");
    EXPECT_THAT(result.err, HasSubstr(": No space left on device\n"));
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.status, 5);
}

TEST_F(FailingCallsTest, WorkersRunWhereProcessorsAreNotKnown)
{
    const auto names = WriteBundles(2);
    EXPECT_THAT(Outcomes(Run("sched_getaffinity 1", {"detect", "--batch", "-", "--jobs", "2"}, Joined(names)).out),
        UnorderedElementsAre("b0", "b1"));
}

TEST_F(FailingCallsTest, MissingMemoryForABatchIsAnInternalError)
{
    WriteBundles(1);
    const auto result = Run("mmap 1", {"detect", "--batch", "-"}, "b0\n");
    EXPECT_THAT(result.err, HasSubstr("arborist: internal error: std::bad_alloc\n"));
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.status, 5);
}

TEST_F(FailingCallsTest, AProgramForCodeRulesThatCannotBeStartedIsAWarning)
{
    WriteCodeBundle(mDir, "b", {"info"});
    const auto runner = Script("exit 0");
    for (const auto& [call, reason] : {std::pair("fork 1", "Resource temporarily unavailable"),
             std::pair("pipe2 1", "Too many open files"), std::pair("tmpfile 1", "Too many open files")}) {
        const auto result = Run(call, {"detect", "--code-runner", runner, "b"});
        EXPECT_THAT(result.err, HasSubstr(std::string("asked about \"info\": can't be started: ") + reason
            + ": taken as not present\n")) << call;
        EXPECT_THAT(result.out, HasSubstr("no fault"));
        EXPECT_EQ(result.status, 0);
    }
}

} // namespace
