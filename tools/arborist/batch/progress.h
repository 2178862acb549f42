#ifndef ARBORIST_TOOLS_BATCH_PROGRESS_H
#define ARBORIST_TOOLS_BATCH_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <functional>
#include <iosfwd>
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

/// Where a batch shows its progress, and the time; tests have their own.
struct ProgressScreen {
    /// The screen of this process: standard error and the real time.
    static ProgressScreen OfProcess();

    std::ostream& messages;
    /// True if messages go to a terminal.
    bool isTerminal;
    /// True if results go to the same one.
    bool hasResults;
    std::function<std::chrono::steady_clock::time_point()> now;
};

/// Shows the progress of a batch on standard error: on a terminal one line, redrawn at most ten times a second; at the
/// end one closing line, on a terminal or not. Results that go to the same terminal appear above the line, together
/// with its next drawing, so that the line is there all the time.
class Progress {
public:
    using Clock = std::chrono::steady_clock;

    explicit Progress(std::size_t listed, ProgressScreen screen = ProgressScreen::OfProcess());

    /// Counts one bundle.
    void Count(BundleOutcome outcome, bool isFailed);
    const BatchCounts& GetCounts() const { return mCounts; }

    /// True if results are to be kept until the next drawing.
    bool KeepsResults() const { return mScreen.isTerminal && mScreen.hasResults; }
    /// If the line was last drawn long enough ago, calls `printResults` and draws it anew below them.
    void Show(const std::function<void()>& printResults);
    /// When Show should be called even if nothing happens. The far end of time if the line is never shown.
    Clock::time_point DueAgain() const;
    /// Clears the line, calls `printResults` and prints the closing line.
    void Finish(const std::function<void()>& printResults);

private:
    std::chrono::milliseconds Elapsed() const;
    void Clear();

    ProgressScreen mScreen;
    BatchCounts mCounts;
    bool mIsDrawn = false;
    std::size_t mDrawnCount = 0;
    Clock::time_point mStart;
    Clock::time_point mLastDrawn;
};

} // namespace diagnosis::command

#endif
