#include "tests/support/time_zone.h"

#include <cstdlib>
#include <ctime>
#include <string>

#include <gtest/gtest.h>

namespace {

int LocalHourOf(std::time_t seconds)
{
    return std::localtime(&seconds)->tm_hour;
}

TEST(TimeZoneTest, HoldsWhileItLives)
{
    const TimeZone outer("UTC0");
    {
        const TimeZone inner(CENTRAL_EUROPE);
        EXPECT_EQ(LocalHourOf(1705309200), 10); // in January
        EXPECT_EQ(LocalHourOf(1721034000), 11); // in July
    }
    EXPECT_EQ(LocalHourOf(1705309200), 9);
    EXPECT_STREQ(std::getenv("TZ"), "UTC0");
}

} // namespace
