#include "diagnosis/results_db/local_moment.h"

#include <gtest/gtest.h>

namespace {

using diagnosis::results_db::LocalMoment;

TEST(LocalMomentTest, CountsSecondsOfDaysOf24Hours)
{
    EXPECT_EQ(LocalMoment("1970-01-01 00:00:00"), 0);
    EXPECT_EQ(LocalMoment("1969-12-31 23:59:59"), -1);
    EXPECT_EQ(LocalMoment("2024-02-29 12:30:15"), 1709209815);
    // An hour that clocks skip in the zone of the tests is one like any other.
    EXPECT_EQ(*LocalMoment("2024-03-31 02:30:00") - *LocalMoment("2024-03-30 02:30:00"), 86400);
}

TEST(LocalMomentTest, IsNothingForAnyOtherText)
{
    for (const char* text : {"", "2024-05-20", "2023-02-29 00:00:00", "2024-05-20 25:00:00", "1716206400", "1234567890123456789",
             "-234567890123456789", "2024-05-20T12:00:00"}) {
        EXPECT_FALSE(LocalMoment(text)) << text;
    }
}

} // namespace
