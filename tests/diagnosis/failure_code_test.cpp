#include "diagnosis/failure_code.h"

#include <gtest/gtest.h>

namespace {

using diagnosis::ExitStatus;
using diagnosis::FailureCode;

TEST(FailureCodeTest, IsWorthARetryIfTheReasonLiesInTheMachine)
{
    using enum FailureCode;
    for (const FailureCode code : {NO_SCRATCH, OUT_OF_MEMORY, TIMEOUT, CRASHED, NOT_COPIED}) {
        EXPECT_TRUE(IsWorthARetry(code)) << CodeWord(code);
    }
    for (const FailureCode code : {INTERNAL, TOO_LARGE, NO_BUNDLE, BAD_ZIP, RULE_FILE_MISSING, NO_TREE}) {
        EXPECT_FALSE(IsWorthARetry(code)) << CodeWord(code);
    }
}

TEST(FailureCodeTest, StatusTellsWhoCanMendIt)
{
    EXPECT_EQ(StatusOf(FailureCode::BAD_ZIP), ExitStatus::INPUT);
    EXPECT_EQ(StatusOf(FailureCode::NO_TREE), ExitStatus::RULE_SET);
    EXPECT_EQ(StatusOf(FailureCode::UNKNOWN_EVENT), ExitStatus::WRONG_USE);
    EXPECT_EQ(StatusOf(FailureCode::TIMEOUT), ExitStatus::INTERNAL);
}

TEST(FailureCodeTest, AWordLeadsBackToItsCode)
{
    EXPECT_STREQ(CodeWord(FailureCode::BAD_BASELINE), "bad_baseline");
    EXPECT_STREQ(CodeWord(FailureCode::UNKNOWN_RULE), "unknown_rule");
    EXPECT_EQ(diagnosis::FailureCodeOf("bad_baseline"), FailureCode::BAD_BASELINE);
    EXPECT_EQ(diagnosis::FailureCodeOf("unknown_rule"), FailureCode::UNKNOWN_RULE);
    EXPECT_EQ(diagnosis::FailureCodeOf("no_such_word"), std::nullopt);
    EXPECT_EQ(diagnosis::FailureCodeOf(""), std::nullopt);
}

} // namespace
