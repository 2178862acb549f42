#include "arborist/evaluation/alarm_window.h"

#include <algorithm>

#include "arborist/utilities/time_util.h"

namespace {

constexpr std::int64_t SECONDS_A_DAY = 86400;

} // namespace

using Evidence::Reason;

AlarmWindow::AlarmWindow(const IdRange& idRange, TimeSet::TimeType type, Evidence::Window* record)
    : ids(idRange), timeType(type), mRecord(record)
{
}

Evidence::Start* AlarmWindow::Open(const TimeSet& timeSet, bool isFromUpdate)
{
    threshold = timeSet.threshold;
    fromUpdate = isFromUpdate;
    if (mRecord == nullptr) {
        return nullptr;
    }
    mRecord->periodDays = timeSet.period;
    mRecord->threshold = threshold;
    mRecord->versionFilter = fromUpdate;
    mNow = TimeUtil::GetTimeOfDay();
    return &mRecord->start.emplace();
}

bool AlarmWindow::IsCutOff() const
{
    return mRecord != nullptr && mConditionsCounted > 0 && mRecord->start->floor != Evidence::Floor::PERIOD;
}

void AlarmWindow::NoteFirstTime(std::int64_t time)
{
    if (mNow && time > start) {
        mCount.coveredDays = std::max<std::int64_t>(*mNow - time, 0) / SECONDS_A_DAY;
    }
}

void AlarmWindow::BeginCondition(std::size_t tests)
{
    mRowsFailed = 0;
    mTallies.assign(tests, {});
}

void AlarmWindow::EndCondition(const TestList& tests)
{
    std::uint64_t& failed = mCount.rowsFailedTest;
    failed = mConditionsCounted == 0 ? mRowsFailed : std::min(failed, mRowsFailed);
    ++mConditionsCounted;
    for (std::size_t test = 0; mRecord != nullptr && test < tests.size(); ++test) {
        const TestPara& para = tests[test]->GetPara();
        const Tally& tally = mTallies[test];
        mRecord->tests.push_back({para.key, para.type, para.logic, para.value, tally.tested, tally.passed});
    }
}

void AlarmWindow::NoteFound(const EventRows& rows)
{
    if (mConditionsCounted == 0) { // the next conditions count the same rows again
        mCount.rowsFound += rows.GetFoundCount();
        mCount.rowsOfOtherVersion += rows.GetFoundCount() - std::min(rows.GetFoundCount(), rows.GetCount());
    }
}

void AlarmWindow::NoteTested(std::size_t test, std::uint64_t tested, std::uint64_t passed)
{
    mTallies[test].tested += tested;
    mTallies[test].passed += passed;
}

void AlarmWindow::NoteReached(const EventRows& rows, std::int64_t reached, Evidence::Measure measure)
{
    mHasWeights = mHasWeights || measure == Evidence::Measure::WEIGHTS || measure == Evidence::Measure::DAILY_WEIGHTS;
    if (mCount.reachedById == 0 || reached > mCount.reached) {
        mCount.reached = reached;
        mCount.reachedById = rows.GetEventId();
        mCount.measure = measure;
        mCount.lastIdDecides = false;
    }
}

void AlarmWindow::NotePassedByLastId(std::uint64_t passed)
{
    if (mRecord != nullptr) {
        mRecord->tests.back().rowsPassedByLastId = passed;
    }
}

void AlarmWindow::NoteLastId(const Evidence::WindowCount& earlier, std::uint64_t passed)
{
    const auto reached = static_cast<std::int64_t>(passed);
    const bool isBest = earlier.reachedById == 0 || reached > earlier.reached;
    mCount.reached = isBest ? reached : earlier.reached;
    mCount.reachedById = isBest ? ids.last : earlier.reachedById;
    mCount.measure = isBest ? Evidence::Measure::ROWS : earlier.measure;
    mCount.lastIdDecides = isBest || earlier.lastIdDecides;
}

void AlarmWindow::Close(Reason reason, bool isHit) const
{
    if (mRecord == nullptr) {
        return;
    }
    mRecord->count = mCount;
    mRecord->hit = isHit;
    mRecord->reason = reason;
    // Further rows add to a count of rows, and may take away from a sum of weights; with fewer rows it is the reverse.
    const bool isWeighed = mHasWeights && !IsSureOfRows(isHit);
    const bool wouldMoreRowsMatter = !isHit || isWeighed;
    const bool wouldFewerRowsMatter = isHit || isWeighed;
    const auto noteIf = [this](bool applies, Reason note) {
        if (applies) {
            mRecord->notes.push_back(note);
        }
    };
    noteIf(mHasNegativeWeight, Reason::NEGATIVE_WEIGHT);
    noteIf(isHit && mRestsOnLaterRows, Reason::ROWS_AFTER_NOW);
    noteIf(mHasUnseen && wouldMoreRowsMatter, Reason::ROWS_UNSEEN);
    noteIf(mHasUnknownVersion && mCount.rowsOfOtherVersion != 0 && wouldMoreRowsMatter, Reason::VERSION_UNKNOWN);
    noteIf(mRecord->start && !mRecord->start->unreadableRepair.empty() && wouldFewerRowsMatter, Reason::REPAIR_UNREADABLE);
}

// True if the threshold was reached by a number of rows, which further rows only raise.
bool AlarmWindow::IsSureOfRows(bool isHit) const
{
    return isHit && (mCount.measure == Evidence::Measure::ROWS || mCount.measure == Evidence::Measure::DAILY_ROWS);
}
