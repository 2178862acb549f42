#ifndef ARBORIST_EVALUATION_ALARM_WINDOW_H
#define ARBORIST_EVALUATION_ALARM_WINDOW_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "arborist/evaluation/member_test.h"
#include "arborist/frame/evidence.h"
#include "arborist/model/id_range.h"
#include "arborist/model/rule.h"
#include "arborist/stores/event_log/event_rows.h"

/// One time window of one item of an alarm rule while it is counted, and the evidence of its counts. The checker counts
/// and decides; the window adds up, and fills in its record if there is one.
///
/// The conditions of an item count the rows of the window one after the other. Call BeginCondition for each, the
/// functions that note counts for each id, then EndCondition; after the last one Close.
class AlarmWindow {
public:
    using TestList = std::vector<std::shared_ptr<const MemberTest>>;

    /// `record` is null without an observer, and must outlive the window.
    AlarmWindow(const IdRange& idRange, TimeSet::TimeType type, Evidence::Window* record);

    /// Sets what is counted. Returns the record of the start time, which the caller fills in; null without an observer.
    Evidence::Start* Open(const TimeSet& timeSet, bool isFromUpdate);

    bool IsCounted() const { return mConditionsCounted > 0; }
    bool HasRecord() const { return mRecord != nullptr; }
    /// True if any condition was counted, and the start was moved by a reset, an update or a repair.
    bool IsCutOff() const;
    std::int64_t PeriodStart() const { return mRecord->start->period.seconds; }
    /// Nothing for a damaged log.
    void NoteRowsBeforeStart(std::optional<std::uint64_t> rows) { mCount.rowsBeforeStart = rows; }

    void BeginCondition(std::size_t tests);
    void EndCondition(const TestList& tests);
    /// Notes the rows that were found for an id.
    void NoteFound(const EventRows& rows);
    /// Notes that so many rows were tested by a test of the condition, and so many of them passed.
    void NoteTested(std::size_t test, std::uint64_t tested, std::uint64_t passed);
    std::uint64_t RowsPassed(std::size_t test) const { return mTallies[test].passed; }
    void NoteFailed(std::uint64_t rows) { mRowsFailed += rows; }
    /// The rows later than this don't make a hit sure; nothing without an observer.
    const std::optional<std::int64_t>& Now() const { return mNow; }
    /// Notes that an id reached the threshold, and whether it did so with rows up to now. Returns `isHit`.
    bool NoteHit(bool isHit, bool isHitUntilNow)
    {
        mRestsOnLaterRows = isHit ? !isHitUntilNow : mRestsOnLaterRows;
        return isHit;
    }
    bool RestsOnLaterRows() const { return mRestsOnLaterRows; }
    void SetRestsOnLaterRows(bool does) { mRestsOnLaterRows = does; }
    /// Notes that rows of the range can't be seen by any rule.
    void NoteUnseen() { mHasUnseen = true; }
    /// Notes that nobody knows which version is the current one.
    void NoteUnknownVersion() { mHasUnknownVersion = true; }
    /// Notes when the log begins.
    void NoteFirstTime(std::int64_t time);

    void NoteWeight(std::int64_t weight) { mHasNegativeWeight = mHasNegativeWeight || weight < 0; }
    /// Notes the count of an id if it is the largest so far.
    void NoteReached(const EventRows& rows, std::int64_t reached, Evidence::Measure measure);

    /// Notes for the last test of the record how many rows of the last id passed it.
    void NotePassedByLastId(std::uint64_t passed);
    const Evidence::WindowCount& Count() const { return mCount; }
    /// Notes that only the last id decides. `passed` is the smallest number of its rows that pass one of the tests.
    /// `earlier` are the counts before this condition; the greater of both remains.
    void NoteLastId(const Evidence::WindowCount& earlier, std::uint64_t passed);

    /// Completes the record.
    void Close(Evidence::Reason reason, bool isHit) const;

    const IdRange ids;
    const TimeSet::TimeType timeType;
    std::int32_t threshold = 0;
    std::int64_t start = 0;
    /// Only rows of the current version count.
    bool fromUpdate = false;
    /// The reason if the threshold is not reached, provided that the log could be read.
    Evidence::Reason miss = Evidence::Reason::WINDOW_SHORT;

private:
    bool IsSureOfRows(bool isHit) const;

    struct Tally {
        std::uint64_t tested = 0;
        std::uint64_t passed = 0;
    };

    Evidence::Window* mRecord;
    Evidence::WindowCount mCount;
    std::optional<std::int64_t> mNow;
    bool mRestsOnLaterRows = false;
    bool mHasUnseen = false;
    bool mHasUnknownVersion = false;
    bool mHasWeights = false;
    bool mHasNegativeWeight = false;
    std::size_t mConditionsCounted = 0;
    // Of the current condition.
    std::uint64_t mRowsFailed = 0;
    std::vector<Tally> mTallies;
};

#endif
