#ifndef ARBORIST_FRAME_LOCK_WAITS_H
#define ARBORIST_FRAME_LOCK_WAITS_H

#include <array>
#include <chrono>
#include <cstddef>
#include <string>

/// How long a detection, or the recording of a repair, waits for files that others have locked.
///
/// One wait takes five seconds at most. A file that stayed locked that long is not waited for again. All waits together
/// take at most three times as long, and beyond that as long as the detection works: otherwise a process that locks again
/// and again, or a rule set that names many locked files, could make hours of them. Not thread-safe.
class LockWaits {
public:
    /// What one wait takes at most, in milliseconds.
    static constexpr int LONGEST = 5000;

    /// Sleeps for some milliseconds and returns true. Returns false at once if `file` is not waited for any longer.
    /// `attempt` counts the calls for one lock, from 0. Throws nothing.
    bool Sleep(const std::string& file, int attempt) noexcept;

    /// For tests: replaces LONGEST, for all threads.
    static void SetLongest(int milliseconds);

private:
    using Clock = std::chrono::steady_clock;

    static constexpr std::size_t FILES_GIVEN_UP = 8;

    Clock::time_point mStart = Clock::now();
    Clock::duration mWaited{};
    /// The part of mWaited that was spent on the current lock.
    Clock::duration mWaitedNow{};
    /// Hashes of the names of the last files that stayed locked: a handler of SQLite must not allocate.
    std::array<std::size_t, FILES_GIVEN_UP> mGivenUp{};
    std::size_t mCountGivenUp = 0;
};

#endif
