#ifndef ARBORIST_TOOLS_BATCH_PROGRESS_H
#define ARBORIST_TOOLS_BATCH_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <string>

namespace diagnosis::command {

/// Numbers of bundles of a batch: all, done, and by result.
struct BatchCounts {
    std::size_t listed = 0;
    std::size_t done = 0;
    std::size_t faults = 0;
    std::size_t failed = 0;
};

/// "120 of 2000 bundles, 64 a second, 29 s left, 3 with faults, 1 not diagnosed".
std::string ProgressText(const BatchCounts& counts, std::chrono::milliseconds elapsed);
/// "2000 bundles in 31 s, 64 a second: 1980 without a fault, 12 with faults, 8 not diagnosed".
std::string SummaryText(const BatchCounts& counts, std::chrono::milliseconds elapsed);

/// Shows the progress of a batch on standard error: on a terminal one line, redrawn at most ten times a second; at the
/// end one closing line, on a terminal or not.
class Progress {
public:
    explicit Progress(std::size_t listed);

    /// Counts one bundle.
    void Count(bool isFault, bool isFailed);
    const BatchCounts& GetCounts() const { return mCounts; }

    /// Redraws the line if it was last drawn long enough ago.
    void Show();
    /// Clears the line if results go to the same terminal; the next Show redraws it at once.
    void MakeRoomForResult();
    /// Clears the line and prints the closing line.
    void Finish();

private:
    using Clock = std::chrono::steady_clock;

    std::chrono::milliseconds Elapsed() const;
    void Clear();

    BatchCounts mCounts;
    bool mIsShown;
    bool mSharesTerminal;
    bool mIsDrawn = false;
    Clock::time_point mStart = Clock::now();
    Clock::time_point mLastDrawn;
};

} // namespace diagnosis::command

#endif
