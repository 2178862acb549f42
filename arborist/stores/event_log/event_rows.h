#ifndef ARBORIST_STORES_EVENT_LOG_EVENT_ROWS_H
#define ARBORIST_STORES_EVENT_LOG_EVENT_ROWS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "arborist/stores/event_log/event_log_snapshot.h"
#include "arborist/stores/event_log/event_query.h"
#include "arborist/stores/event_log/local_days.h"
#include "arborist/stores/event_log/row_answers.h"
#include "arborist/stores/event_log/row_question.h"

/// The rows of one event id that a query of the event log finds, in its order, with their answers to the questions of
/// the visit. Shares ownership of all that it shows: a copy is valid for as long as it is kept, whatever becomes of the
/// visit, the search and the log. Copies of one visit share a cache, so use them from one thread.
class EventRows {
public:
    using EventList = EventQuery::EventList;
    using Questions = std::vector<std::shared_ptr<const RowQuestion>>;

    /// What the rows of all ids of a visit share.
    struct Visit {
        Questions questions;
        std::shared_ptr<const EventLogSnapshot> snapshot{};
        LocalDays days{};
    };

    /// Rows of the visit's snapshot.
    struct Known {
        EventLogSnapshot::RowRange range;
        EventLogSnapshot::Filter filter;
        /// Null if there are no questions.
        std::shared_ptr<const RowAnswers> answers;
    };

    /// One row that counts, shown to ForEach's function, which can't keep it.
    class Row {
    public:
        Row(const Row&) = delete;
        Row& operator=(const Row&) = delete;

        /// Day of the month in local time; 0 if the row has no time.
        std::int32_t GetDayOfMonth() const
        {
            return mRows.mKnown ? mRows.mVisit->days.DayOfMonth(mRows.mVisit->snapshot->GetTime(mNumber))
                                : mRows.WholeDayOf(mNumber);
        }
        /// The answer of the row to the question with this index; logs the lines that belong to it.
        std::int32_t Answer(std::size_t question) const
        {
            return mRows.mKnown ? mRows.KnownAnswer(*mRows.mKnown->answers, mNumber, question)
                                : mRows.Ask(question, mRows.mEvents[mNumber]->extra);
        }

        /// Seconds since the epoch. Requires HasTimes.
        std::int64_t GetTime() const { return mRows.mVisit->snapshot->GetTime(mNumber); }
        /// True if each Answer to the question reads the row's text again and logs its lines. Requires HasTimes.
        bool IsAskedAgain(std::size_t question) const
        {
            return mRows.mKnown->answers->columns[question]->IsAskedAgain(mNumber);
        }

        bool IsAfter(std::int64_t time) const
        {
            return mRows.mKnown ? mRows.mVisit->snapshot->GetTime(mNumber) > time : mRows.IsWholeAfter(mNumber, time);
        }

    private:
        friend class EventRows;
        Row(const EventRows& rows, std::uint32_t number) : mRows(rows), mNumber(number) {}

        const EventRows& mRows;
        std::uint32_t mNumber;
    };

    /// `found` is the number of rows since the start, of any version; `count` of those that count.
    EventRows(std::int32_t eventId, std::shared_ptr<Visit> visit, Known known, std::size_t found,
        std::size_t count);
    /// For rows that the id's own query has read with their texts.
    EventRows(std::int32_t eventId, std::shared_ptr<Visit> visit, EventList events, std::size_t found);

    std::int32_t GetEventId() const { return mEventId; }
    /// Number of rows since the start, of any version; at least one.
    std::size_t GetFoundCount() const { return mFound; }
    /// Number of rows that count; 0 if all are of another version.
    std::size_t GetCount() const { return mCount; }

    /// False for rows that the id's own query has read, of which only the local time is known.
    bool HasTimes() const { return mKnown.has_value(); }

    /// Calls `take` with each row that counts.
    template <typename Take>
    void ForEach(Take take) const
    {
        if (mKnown) {
            const auto show = [&](std::uint32_t row) { take(Row(*this, row)); };
            if (mKnown->answers != nullptr) {
                mKnown->answers->rows.ForEach(show);
            } else {
                mVisit->snapshot->Select(mKnown->range, mKnown->filter).ForEach(show);
            }
            return;
        }
        for (std::uint32_t row = 0; row < mCount; ++row) {
            take(Row(*this, row));
        }
    }

    /// Appends the times of all rows that count. Requires HasTimes.
    void AppendTimes(std::vector<std::uint32_t>& times) const
    {
        mVisit->snapshot->AppendTimes(mKnown->range, mKnown->filter, times);
    }

    using DayCounts = EventLogSnapshot::DayCounts;

    /// Counts the rows that count by their day of the month; skips rows without a day.
    void CountDays(DayCounts& days) const;
    /// The number of rows that count and are later than `time`.
    std::size_t CountAfter(std::int64_t time) const;
    /// The same by their day of the month.
    void CountDaysAfter(std::int64_t time, DayCounts& days) const;
    /// The sum of the answers of all rows, in order. A sum below 0 wraps.
    std::uint64_t Sum(std::size_t question) const;

private:
    std::int32_t WholeDayOf(std::uint32_t row) const;
    bool IsWholeAfter(std::uint32_t row, std::int64_t time) const;
    void AddDay(const Row& row, DayCounts& days) const;
    std::int32_t KnownAnswer(const RowAnswers& answers, std::uint32_t row, std::size_t question) const
    {
        const AnswerColumn& column = *answers.columns[question];
        return column.IsAskedAgain(row) ? Ask(question, answers.texts.at(row)) : column.Get(row);
    }
    std::int32_t Ask(std::size_t question, std::string_view extra) const;

    std::int32_t mEventId;
    std::size_t mFound;
    std::size_t mCount;
    std::shared_ptr<Visit> mVisit;
    std::optional<Known> mKnown; // not set if the rows were read with their texts
    EventList mEvents;
};

#endif
