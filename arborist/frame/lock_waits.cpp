#include "arborist/frame/lock_waits.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <thread>

namespace {

// How often the longest wait fits into all of them.
constexpr int LONGEST_WAITS = 3;
// The first sleeps are shorter: most locks last as long as one small change.
constexpr int LONGEST_SLEEP = 10;

std::atomic<int> longestWait = LockWaits::LONGEST; // in milliseconds

} // namespace

void LockWaits::SetLongest(int milliseconds)
{
    longestWait = milliseconds;
}

bool LockWaits::Sleep(const std::string& file, int attempt) noexcept
{
    if (attempt == 0) {
        mWaitedNow = {};
    }
    const Clock::duration longest = std::chrono::milliseconds(longestWait);
    const Clock::time_point start = Clock::now();
    const Clock::duration worked = start - mStart - mWaited;
    const std::size_t name = std::hash<std::string>()(file);
    if (std::find(mGivenUp.begin(), mGivenUp.end(), name) != mGivenUp.end()) {
        return false;
    }
    if (mWaitedNow >= longest) { // first: on a busy machine one sleep may take as long as all waits may
        mGivenUp[mCountGivenUp++ % mGivenUp.size()] = name;
        return false;
    }
    if (mWaited >= LONGEST_WAITS * longest + worked) {
        return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(std::min(attempt + 1, LONGEST_SLEEP)));
    const Clock::duration slept = Clock::now() - start;
    mWaited += slept;
    mWaitedNow += slept;
    return true;
}
