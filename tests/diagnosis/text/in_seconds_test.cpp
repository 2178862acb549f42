#include "diagnosis/text/in_seconds.h"

#include <gtest/gtest.h>

namespace {

using std::chrono::milliseconds;

TEST(InSecondsTest, HasTheDigitsThatATimeNeeds)
{
    EXPECT_EQ(diagnosis::InSeconds(milliseconds(2000)), "2 s");
    EXPECT_EQ(diagnosis::InSeconds(milliseconds(500)), "0.5 s");
    EXPECT_EQ(diagnosis::InSeconds(milliseconds(0)), "0 s");
}

} // namespace
