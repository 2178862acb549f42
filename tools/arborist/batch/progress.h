#ifndef ARBORIST_TOOLS_BATCH_PROGRESS_H
#define ARBORIST_TOOLS_BATCH_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <string>

#include "tools/arborist/batch/batch.h"

namespace diagnosis::command {

/// Numbers of bundles of a batch: all, done, and by result.
struct BatchCounts {
    std::size_t listed = 0;
    std::size_t done = 0;
    std::size_t undecided = 0;
    std::size_t faults = 0;
    std::size_t failed = 0;
};

/// "120 of 2000 bundles, 64 a second, 29 s left, 2 undecided, 3 with faults, 1 not diagnosed".
std::string ProgressText(const BatchCounts& counts, std::chrono::milliseconds elapsed);
/// "2000 bundles in 31 s, 64 a second: 1973 without a fault, 7 undecided, 12 with faults, 8 not diagnosed". An undecided
/// bundle, in which open checks could make a fault, is not counted as one without.
std::string SummaryText(const BatchCounts& counts, std::chrono::milliseconds elapsed);

/// Shows the progress of a batch on standard error: on a terminal one line, redrawn at most ten times a second; at the
/// end one closing line, on a terminal or not.
class Progress {
public:
    using Clock = std::chrono::steady_clock;

    explicit Progress(std::size_t listed);

    /// Counts one bundle.
    void Count(BundleOutcome outcome, bool isFailed);
    const BatchCounts& GetCounts() const { return mCounts; }

    /// Redraws the line if it was last drawn long enough ago.
    void Show();
    /// When Show should be called even if nothing happens: after a result had to clear the line. The far end of time if
    /// the line is there, is never shown, or has nothing to tell yet.
    Clock::time_point DueAgain() const;
    /// Clears the line if results go to the same terminal; Show redraws it when it is due.
    void MakeRoomForResult();
    /// Clears the line and prints the closing line.
    void Finish();

private:
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
