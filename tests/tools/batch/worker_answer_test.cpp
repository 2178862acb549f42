#include "tools/arborist/batch/worker_answer.h"

#include <gtest/gtest.h>

namespace {

using diagnosis::ExitStatus;
using diagnosis::command::BundleAnswer;
using diagnosis::command::BundleOutcome;
using diagnosis::command::IsWholeAnswer;
using diagnosis::command::PackedAnswer;
using diagnosis::command::UnpackedAnswer;

const BundleAnswer ANSWER{
    ExitStatus::INPUT, "{\"a\": 1}", BundleOutcome::UNDECIDED, "no_bundle", true, {1, 2, 3}};

TEST(WorkerAnswerTest, EveryMemberArrives)
{
    const BundleAnswer answer = UnpackedAnswer(PackedAnswer(ANSWER));
    EXPECT_EQ(answer.status, ANSWER.status);
    EXPECT_EQ(answer.line, ANSWER.line);
    EXPECT_EQ(answer.outcome, ANSWER.outcome);
    EXPECT_EQ(answer.code, ANSWER.code);
    EXPECT_TRUE(answer.isWorthARetry);
    EXPECT_EQ(answer.verdicts, ANSWER.verdicts);
}

TEST(WorkerAnswerTest, NoPartOfItIsWhole)
{
    const std::string bytes = PackedAnswer(ANSWER);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        EXPECT_FALSE(IsWholeAnswer(bytes.substr(0, length))) << length;
    }
    EXPECT_TRUE(IsWholeAnswer(bytes));
}

} // namespace
