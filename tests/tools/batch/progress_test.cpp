#include "tools/arborist/batch/progress.h"

#include <sstream>
#include <utility>

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

// A batch on a terminal that gets messages and, if `hasResults`, results. Its time is set by the test.
class ProgressTest : public testing::Test {
protected:
    Progress On(bool isTerminal, bool hasResults, std::size_t listed)
    {
        return Progress(listed, {mScreen, isTerminal, hasResults, [this] { return mNow; }});
    }

    void Result(Progress& progress, const std::string& line)
    {
        progress.Count(BundleOutcome::NO_FAULT, false);
        mKept += line + "\n";
        Show(progress);
    }

    void Show(Progress& progress)
    {
        progress.Show([this] { PrintKept(); });
    }

    void PrintKept() { mScreen << std::exchange(mKept, ""); }

    // What a terminal shows in the end: a carriage return and an erased rest make a line new.
    std::string Seen() const
    {
        std::string seen;
        for (std::string text = mScreen.str(); !text.empty(); text.erase(0, 1)) {
            if (text[0] == '\r') {
                seen.erase(seen.rfind('\n') + 1);
            } else if (text.compare(0, 3, "\x1b[K") == 0) {
                text.erase(0, 2);
            } else {
                seen += text[0];
            }
        }
        return seen;
    }

    std::size_t Drawings() const
    {
        const std::string text = mScreen.str();
        std::size_t count = 0;
        for (auto at = text.find(" bundles, "); at != std::string::npos; at = text.find(" bundles, ", at + 1)) {
            ++count;
        }
        return count;
    }

    std::ostringstream mScreen;
    std::string mKept;
    Progress::Clock::time_point mNow{std::chrono::hours(1)};
};

TEST_F(ProgressTest, LineIsThereBeforeTheFirstBundleEnds)
{
    Progress progress = On(true, false, 5);
    Show(progress);
    EXPECT_EQ(Seen(), "0 of 5 bundles, 0 undecided, 0 with faults, 0 not diagnosed");
}

TEST_F(ProgressTest, SixtyResultsASecondRedrawTheLineTenTimes)
{
    for (const bool hasResults : {false, true}) {
        mScreen.str("");
        Progress progress = On(true, hasResults, 600);
        for (int result = 0; result < 600; ++result) {
            mNow += milliseconds(1000) / 60;
            Result(progress, "{}");
        }
        EXPECT_GE(Drawings(), 80U);
        EXPECT_LE(Drawings(), 101U);
    }
}

TEST_F(ProgressTest, LineStaysBelowTheResultsOnTheirTerminal)
{
    Progress progress = On(true, true, 3);
    Show(progress);
    for (const char* const line : {"{1}", "{2}"}) {
        mNow += milliseconds(10);
        Result(progress, line); // appears with the next drawing
        EXPECT_EQ(Seen(), "0 of 3 bundles, 0 undecided, 0 with faults, 0 not diagnosed");
    }
    EXPECT_EQ(progress.DueAgain(), mNow + milliseconds(80));
    mNow = progress.DueAgain();
    Show(progress);
    EXPECT_EQ(Seen(), "{1}\n{2}\n2 of 3 bundles, 20 a second, 1 s left, 0 undecided, 0 with faults, 0 not diagnosed");
}

TEST_F(ProgressTest, TimeThatIsLeftCountsWhileNothingEnds)
{
    Progress progress = On(true, false, 3);
    Show(progress);
    EXPECT_EQ(progress.DueAgain(), mNow + milliseconds(1000));
}

TEST_F(ProgressTest, ClosingLineReplacesTheLineBehindTheLastResults)
{
    Progress progress = On(true, true, 1);
    Show(progress);
    Result(progress, "{1}");
    mNow += milliseconds(500);
    progress.Finish([this] { PrintKept(); });
    EXPECT_EQ(Seen(),
        "{1}\narborist: 1 bundle in 1 s, 2 a second: 1 without a fault, 0 undecided, 0 with faults, 0 not diagnosed\n");
}

TEST_F(ProgressTest, WithoutATerminalThereIsTheClosingLineAlone)
{
    Progress progress = On(false, true, 1);
    EXPECT_FALSE(progress.KeepsResults());
    Show(progress);
    EXPECT_EQ(progress.DueAgain(), Progress::Clock::time_point::max());
    EXPECT_EQ(mScreen.str(), "");
}

} // namespace
