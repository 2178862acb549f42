#ifndef ARBORIST_STORES_EVENT_LOG_EVENT_ROWS_H
#define ARBORIST_STORES_EVENT_LOG_EVENT_ROWS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "arborist/stores/event_log/answer_reader.h"
#include "arborist/stores/event_log/answer_table.h"
#include "arborist/stores/event_log/event_log_snapshot.h"
#include "arborist/stores/event_log/event_query.h"
#include "arborist/stores/event_log/local_days.h"
#include "arborist/stores/event_log/row_question.h"

/// The rows of one event id that a query of the event log finds, in its order, and what they answer to the questions of
/// the visit. Lives for the length of one call of a visitor; the visit pins what it shows.
class EventRows {
public:
    using EventList = EventQuery::EventList;
    using Questions = std::vector<std::shared_ptr<const RowQuestion>>;
    using Columns = std::vector<std::shared_ptr<const AnswerColumn>>;

    /// What the rows of an entry answer.
    struct Answers {
        /// The rows that count.
        RowBits rows;
        /// For each question the column that has its answers.
        Columns columns;
        /// Of the rows that are asked again.
        AnswerReader::Texts texts;
    };

    /// Rows of a snapshot.
    struct Known {
        const EventLogSnapshot& snapshot;
        EventLogSnapshot::Run run;
        EventLogSnapshot::Filter filter;
        /// Null where there are no questions.
        std::unique_ptr<Answers> answers;
    };

    /// One row that counts. Lives for the length of one call of ForEach.
    class Row {
    public:
        /// Local time's day of the month; 0 when the row has none.
        std::int32_t GetDayOfMonth() const
        {
            return mRows.mKnown ? mRows.mDays->DayOfMonth(mRows.mKnown->snapshot.GetTime(mNumber))
                                : mRows.WholeDayOf(mNumber);
        }
        /// What the row answers to the question with this place in the visit, with the lines that belong to it.
        std::int32_t Answer(std::size_t question) const
        {
            return mRows.mKnown ? mRows.KnownAnswer(*mRows.mKnown->answers, mNumber, question)
                                : mRows.Ask(question, mRows.mEvents[mNumber]->extra);
        }

    private:
        friend class EventRows;
        Row(const EventRows& rows, std::uint32_t number) : mRows(rows), mNumber(number) {}

        const EventRows& mRows;
        std::uint32_t mNumber;
    };

    /// `found` are the rows since the start, of any version, and `count` those that count.
    EventRows(std::int32_t eventId, Known known, std::size_t found, std::size_t count, const Questions& questions,
        LocalDays& days);
    /// Rows that were read whole, by the id's own query.
    EventRows(std::int32_t eventId, EventList events, std::size_t found, const Questions& questions);
    EventRows(const EventRows&) = delete;
    EventRows& operator=(const EventRows&) = delete;

    std::int32_t GetEventId() const { return mEventId; }
    /// Rows since the start time, of any version; at least one.
    std::size_t GetFoundCount() const { return mFound; }
    /// Those that count. None when all belong to another version.
    std::size_t GetCount() const { return mCount; }

    /// Calls `take` with each row that counts. Only where there are questions.
    template <typename Take>
    void ForEach(Take take) const
    {
        if (mKnown) {
            mKnown->answers->rows.ForEach([&](std::uint32_t row) { take(Row(*this, row)); });
            return;
        }
        for (std::uint32_t row = 0; row < mCount; ++row) {
            take(Row(*this, row));
        }
    }

    using DayCounts = EventLogSnapshot::DayCounts;

    /// Adds each row that counts and has a day to the count of that day.
    void CountDays(DayCounts& days) const;
    /// The sum of what all rows answer, row after row. A sum below 0 wraps.
    std::uint64_t Sum(std::size_t question) const;

private:
    std::int32_t WholeDayOf(std::uint32_t row) const;
    std::int32_t KnownAnswer(const Answers& answers, std::uint32_t row, std::size_t question) const
    {
        const AnswerColumn& column = *answers.columns[question];
        return column.IsAskedAgain(row) ? Ask(question, answers.texts.at(row)) : column.Get(row);
    }
    std::int32_t Ask(std::size_t question, std::string_view extra) const;

    std::int32_t mEventId;
    std::size_t mFound;
    std::size_t mCount;
    const Questions& mQuestions;
    std::optional<Known> mKnown; // without, the rows were read whole
    LocalDays* mDays = nullptr;
    EventList mEvents;
};

#endif
