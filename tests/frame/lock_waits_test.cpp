#include "arborist/frame/lock_waits.h"

#include <gtest/gtest.h>

#include "tests/support/longest_lock_wait.h"

namespace {

constexpr int FOR_EVER = 1'000'000'000;

// Waits for one lock until that ends in vain. True if it was waited for at all.
bool WaitInVain(LockWaits& waits, const std::string& file)
{
    int attempt = 0;
    while (waits.Sleep(file, attempt)) {
        ++attempt;
    }
    return attempt > 0;
}

TEST(LockWaitsTest, AFileThatStayedLockedIsNotWaitedForAgain)
{
    LockWaits waits;
    {
        const LongestLockWait brief(5);
        EXPECT_TRUE(WaitInVain(waits, "a.db"));
    }
    const LongestLockWait longest(FOR_EVER); // would a second wait begin, it would not end
    EXPECT_FALSE(waits.Sleep("a.db", 0));
    EXPECT_FALSE(waits.Sleep("a.db", 0));
    EXPECT_TRUE(waits.Sleep("b.db", 0));
}

TEST(LockWaitsTest, AllWaitsTogetherEnd)
{
    const LongestLockWait brief(5);
    LockWaits waits;
    int file = 0;
    while (WaitInVain(waits, std::to_string(file))) {
        ++file;
    }
    EXPECT_GT(file, 0);
}

TEST(LockWaitsTest, WhoWorksMayWaitForTheNextLock)
{
    const LongestLockWait brief(2);
    LockWaits waits;
    int file = 0;
    while (WaitInVain(waits, std::to_string(file))) {
        ++file;
    }
    while (!waits.Sleep("other.db", 0)) { // it ends: asking is work, too
    }
}

TEST(LockWaitsTest, AWaitOfNothingDoesNotSleep)
{
    const LongestLockWait none(0);
    LockWaits waits;
    EXPECT_FALSE(waits.Sleep("a.db", 0));
}

} // namespace
