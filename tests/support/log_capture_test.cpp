#include "tests/support/log_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/log.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(LogCaptureTest, HoldsFormattedLinesByLevelUntilCleared)
{
    LogCapture log;
    FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: %d rows", "Name", 3);
    FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: fine", "Name");
    EXPECT_THAT(log.Lines(), ElementsAre("FUNc:Name: 3 rows", "FUNc:Name: fine"));
    EXPECT_THAT(log.Lines(FT::LEVEL_WARN), ElementsAre("FUNc:Name: 3 rows"));
    EXPECT_THAT(log.Formats(), ElementsAre("FUNc:%s: %d rows", "FUNc:%s: fine"));
    log.Clear();
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(LogCaptureTest, GivesTheDefaultLoggerBack)
{
    {
        const LogCapture log;
    }
    testing::internal::CaptureStdout();
    FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: x", "Name");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[[WARN] ]:FUNc:Name: x\n");
}

} // namespace
