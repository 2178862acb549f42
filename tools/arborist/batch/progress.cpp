#include "tools/arborist/batch/progress.h"

#include <algorithm>
#include <cmath>
#include <iostream>

#include <unistd.h>

namespace diagnosis::command {

namespace {

constexpr std::chrono::milliseconds BETWEEN_DRAWINGS(100);
// The time that is left counts down also while no bundle ends.
constexpr std::chrono::milliseconds LONGEST_STANDSTILL(1000);

double PerSecond(std::size_t done, std::chrono::milliseconds elapsed)
{
    const auto milliseconds = std::max<std::chrono::milliseconds::rep>(elapsed.count(), 1);
    return static_cast<double>(done) * 1000 / static_cast<double>(milliseconds);
}

// A whole number; for a rate below ten one decimal.
std::string Rate(double perSecond)
{
    const double shown = perSecond < 10 ? std::round(perSecond * 10) / 10 : std::round(perSecond);
    std::string text = std::to_string(shown);
    return text.substr(0, text.find('.') + (shown < 10 && shown != std::floor(shown) ? 2 : 0)) + " a second";
}

std::string Duration(double seconds)
{
    const auto whole = static_cast<std::uint64_t>(std::ceil(seconds));
    const auto twoDigits = [](std::uint64_t number) { return (number < 10 ? "0" : "") + std::to_string(number); };
    if (whole < 60) {
        return std::to_string(whole) + " s";
    }
    return std::to_string(whole / 3600) + ":" + twoDigits(whole / 60 % 60) + ":" + twoDigits(whole % 60);
}

std::string Bundles(std::size_t count)
{
    return std::to_string(count) + (count == 1 ? " bundle" : " bundles");
}

std::string OthersText(const BatchCounts& counts)
{
    return std::to_string(counts.undecided) + " undecided, " + std::to_string(counts.faults) + " with faults, "
        + std::to_string(counts.failed) + " not diagnosed";
}

} // namespace

std::string ProgressText(const BatchCounts& counts, std::chrono::milliseconds elapsed)
{
    const double rate = PerSecond(counts.done, elapsed);
    std::string text = std::to_string(counts.done) + " of " + Bundles(counts.listed);
    if (counts.done > 0) {
        text += ", " + Rate(rate) + ", " + Duration(static_cast<double>(counts.listed - counts.done) / rate) + " left";
    }
    return text + ", " + OthersText(counts);
}

std::string SummaryText(const BatchCounts& counts, std::chrono::milliseconds elapsed)
{
    const std::size_t sound = counts.done - counts.undecided - counts.faults - counts.failed;
    std::string text = Bundles(counts.done) + " in " + Duration(static_cast<double>(elapsed.count()) / 1000) + ", "
        + Rate(PerSecond(counts.done, elapsed)) + ": " + std::to_string(sound) + " without a fault, "
        + OthersText(counts);
    const std::size_t left = counts.listed - counts.done;
    return left == 0 ? text : text + "; " + std::to_string(left) + " of the list not reached";
}

ProgressScreen ProgressScreen::OfProcess()
{
    return {std::cerr, isatty(STDERR_FILENO) == 1, isatty(STDOUT_FILENO) == 1, std::chrono::steady_clock::now};
}

Progress::Progress(std::size_t listed, ProgressScreen screen) : mScreen(std::move(screen)), mStart(mScreen.now())
{
    mCounts.listed = listed;
    mLastDrawn = mStart - BETWEEN_DRAWINGS;
}

void Progress::Count(BundleOutcome outcome, bool isFailed)
{
    ++mCounts.done;
    if (isFailed) {
        ++mCounts.failed;
    } else {
        mCounts.undecided += outcome == BundleOutcome::UNDECIDED ? 1 : 0;
        mCounts.faults += outcome == BundleOutcome::FAULT ? 1 : 0;
    }
}

void Progress::Show(const std::function<void()>& printResults)
{
    const auto now = mScreen.now();
    if (!mScreen.isTerminal || now - mLastDrawn < BETWEEN_DRAWINGS) {
        return;
    }
    if (KeepsResults()) {
        Clear();
        printResults();
    }
    mLastDrawn = now;
    mIsDrawn = true;
    mDrawnCount = mCounts.done;
    mScreen.messages << "\r" + ProgressText(mCounts, Elapsed()) + "\x1b[K" << std::flush;
}

Progress::Clock::time_point Progress::DueAgain() const
{
    if (!mScreen.isTerminal) {
        return Clock::time_point::max();
    }
    return mLastDrawn + (mIsDrawn && mDrawnCount == mCounts.done ? LONGEST_STANDSTILL : BETWEEN_DRAWINGS);
}

void Progress::Finish(const std::function<void()>& printResults)
{
    Clear();
    printResults();
    mScreen.messages << "arborist: " + SummaryText(mCounts, Elapsed()) + "\n" << std::flush;
}

std::chrono::milliseconds Progress::Elapsed() const
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(mScreen.now() - mStart);
}

void Progress::Clear()
{
    if (mIsDrawn) {
        mScreen.messages << "\r\x1b[K" << std::flush;
        mIsDrawn = false;
    }
}

} // namespace diagnosis::command
