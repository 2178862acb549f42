#include "diagnosis/problem.h"

#include <gtest/gtest.h>

namespace {

using diagnosis::ExitStatus;
using diagnosis::Failure;

TEST(FailureTest, IsWorthARetryIfTheReasonLiesInTheMachine)
{
    for (const char* code : {"no_scratch", "out_of_memory", "timeout", "crashed", "not_copied"}) {
        EXPECT_TRUE((Failure{code, "", ExitStatus::INPUT}.IsWorthARetry())) << code;
    }
    for (const char* code : {"", "internal", "too_large", "no_bundle", "bad_zip", "rule_file_missing", "no_tree", "time"}) {
        EXPECT_FALSE((Failure{code, "", ExitStatus::INTERNAL}.IsWorthARetry())) << code;
    }
}

} // namespace
