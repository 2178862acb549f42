#include "tools/arborist/batch/progress.h"

#include <gtest/gtest.h>

namespace {

using namespace diagnosis::command;
using std::chrono::milliseconds;

TEST(ProgressTextTest, TellsCountRateTimeLeftAndHowBundlesEnded)
{
    EXPECT_EQ(ProgressText({2000, 120, 2, 3, 1}, milliseconds(2000)),
        "120 of 2000 bundles, 60 a second, 32 s left, 2 undecided, 3 with faults, 1 not diagnosed");
    EXPECT_EQ(ProgressText({20000, 10, 0, 0, 0}, milliseconds(4000)),
        "10 of 20000 bundles, 2.5 a second, 2:13:16 left, 0 undecided, 0 with faults, 0 not diagnosed");
}

TEST(ProgressTextTest, KnowsNoRateBeforeTheFirstBundle)
{
    EXPECT_EQ(ProgressText({5, 0, 0, 0, 0}, milliseconds(0)), "0 of 5 bundles, 0 undecided, 0 with faults, 0 not diagnosed");
}

TEST(SummaryTextTest, PartsAddUpToTheBundlesThatWereDone)
{
    EXPECT_EQ(SummaryText({2000, 2000, 7, 12, 8}, milliseconds(31000)),
        "2000 bundles in 31 s, 65 a second: 1973 without a fault, 7 undecided, 12 with faults, 8 not diagnosed");
    EXPECT_EQ(SummaryText({1, 1, 0, 0, 0}, milliseconds(500)),
        "1 bundle in 1 s, 2 a second: 1 without a fault, 0 undecided, 0 with faults, 0 not diagnosed");
}

TEST(SummaryTextTest, NamesWhatARunThatWasEndedDidNotReach)
{
    EXPECT_EQ(SummaryText({10, 4, 0, 1, 0}, milliseconds(4000)),
        "4 bundles in 4 s, 1 a second: 3 without a fault, 0 undecided, 1 with faults, 0 not diagnosed; 6 of the list not reached");
}

} // namespace
