#include "tools/arborist/batch/progress.h"

#include <algorithm>
#include <cmath>
#include <iostream>

#include <unistd.h>

namespace diagnosis::command {

namespace {

constexpr std::chrono::milliseconds BETWEEN_DRAWINGS(100);

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

Progress::Progress(std::size_t listed)
    : mIsShown(isatty(STDERR_FILENO) == 1), mSharesTerminal(mIsShown && isatty(STDOUT_FILENO) == 1)
{
    mCounts.listed = listed;
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

void Progress::Show()
{
    const auto now = Clock::now();
    if (!mIsShown || now - mLastDrawn < BETWEEN_DRAWINGS) {
        return;
    }
    mLastDrawn = now;
    mIsDrawn = true;
    std::cerr << "\r" << ProgressText(mCounts, Elapsed()) << "\x1b[K";
}

Progress::Clock::time_point Progress::DueAgain() const
{
    return !mIsShown || mIsDrawn || mCounts.done == 0 ? Clock::time_point::max() : mLastDrawn + BETWEEN_DRAWINGS;
}

void Progress::MakeRoomForResult()
{
    if (mSharesTerminal) {
        Clear();
    }
}

void Progress::Finish()
{
    Clear();
    std::cerr << "arborist: " << SummaryText(mCounts, Elapsed()) << "\n";
}

std::chrono::milliseconds Progress::Elapsed() const
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - mStart);
}

void Progress::Clear()
{
    if (mIsDrawn) {
        std::cerr << "\r\x1b[K";
        mIsDrawn = false;
    }
}

} // namespace diagnosis::command
