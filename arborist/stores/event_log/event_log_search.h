#ifndef ARBORIST_STORES_EVENT_LOG_EVENT_LOG_SEARCH_H
#define ARBORIST_STORES_EVENT_LOG_EVENT_LOG_SEARCH_H

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "arborist/stores/event_log/answer_cache.h"
#include "arborist/stores/event_log/event_log_snapshot.h"
#include "arborist/stores/event_log/event_query.h"
#include "arborist/stores/event_log/event_rows.h"
#include "arborist/stores/event_log/row_counts.h"
#include "arborist/stores/event_log/rows_of_ids.h"

/// Answers queries for ranges of ids from one reading of the log, as long as the log doesn't change. Results and log
/// lines equal those of EventQuery for each id. Runs EventQuery itself for everything that the reading does not cover,
/// so that neither damage nor any limit changes an answer.
class EventLogSearch {
public:
    /// Beyond this many ids, a rule's range logs no line for an id that is known to have no rows: this bounds the lines
    /// for a log that can't be read.
    static constexpr std::int64_t LONGEST_LOGGED_RANGE = 100000;

    /// The ids and times to search for.
    struct Query {
        std::int32_t firstId;
        std::int32_t lastId;
        /// Seconds since the epoch, inclusive.
        std::int64_t startTime;
        /// Selects only events of the current version and those whose version has no name.
        bool fromUpdate;
        /// The questions that the visitor may ask about the rows.
        EventRows::Questions questions = {};
        /// How many ids of the rule's range come before the first: bounded lines are counted from there.
        std::int64_t idsBefore = 0;

        /// One behind the last id whose line is logged where there is nothing to ask; see LONGEST_LOGGED_RANGE.
        std::int64_t GetLoggedEnd() const
        {
            return std::min(lastId + std::int64_t{1}, firstId - idsBefore + LONGEST_LOGGED_RANGE);
        }
    };

    /// How completely the log could be read for a query.
    enum class Reading {
        WHOLE,
        BROKEN_OFF, ///< on the way: rows may be missing
        UNREADABLE ///< nothing could be read
    };

    /// Receives the rows of one id; returns true to end the visit. A copy of the rows may be kept.
    using Visitor = std::function<bool(const EventRows& rows)>;

    explicit EventLogSearch(const FT::sql::Sqlite3Db& database);

    EventQuery& GetQuery() { return mEventQuery; }

    /// Announces questions about the rows of these ids, so that a single reading can answer all of them. Doesn't change
    /// any answer.
    void Foresee(std::int32_t firstId, std::int32_t lastId, const EventRows::Questions& questions);

    /// Visits the ids with rows since the start in ascending order; `versionName` is the current version.
    Reading Visit(const Query& query, const std::string& versionName, const Visitor& visitor);

    /// The number of rows of these ids, of any version, from `start` to before `end`, in the state of the log that the
    /// last visit used. Neither reads the log nor logs a line. Nothing if that visit could not read the whole log.
    std::optional<std::uint64_t> CountRows(
        std::int32_t firstId, std::int32_t lastId, std::int64_t start, std::int64_t end) const;

    /// The time of the first row of any id in that state; nothing if that visit could not read the whole log, or if the
    /// log is empty.
    std::optional<std::int64_t> GetFirstTime() const;
    /// True if one of these ids has a row at or after `start`, or at an unknown time, that no query finds for lack of a
    /// partner. False if that visit could not read the whole log.
    bool HasUnseen(std::int32_t firstId, std::int32_t lastId, std::int64_t start) const;
    /// See EventLogSnapshot::ListUnseen. Empty if that visit could not read the whole log.
    std::vector<std::int64_t> ListUnseen(std::int32_t firstId, std::int32_t lastId) const;

    /// Reads the log up to the last moment that counts, unless that is known, and the answers of all its rows to the
    /// questions announced so far, as far as there is room: for whoever asks about many moments.
    void ReadAhead();

    static void LogVersionName(const std::string& versionName);

private:
    using Entry = EventLogSnapshot::Entry;

    // The state of one visit.
    struct OpenVisit;

    void Refresh();
    bool VisitIds(OpenVisit& visit, std::int64_t firstId);
    bool VisitAbsent(OpenVisit& visit, std::int32_t eventId);
    bool VisitEntry(OpenVisit& visit, std::size_t entryNumber);
    std::shared_ptr<RowCounts> CountsFor(const EventLogSnapshot::Filter& filter);
    bool VisitByQuery(OpenVisit& visit, std::int32_t eventId);
    bool RunQuery(std::int32_t eventId, std::int64_t startTime);
    bool RunAmongRows(std::int32_t eventId, std::int64_t startTime);
    void LogBreak(const std::string& error) const;
    bool IsWhole() const;

    const FT::sql::Sqlite3Db& mDb;
    EventQuery mEventQuery;
    AnswerCache mAnswers;
    std::shared_ptr<const EventLogSnapshot> mSnapshot; // null if the log can't be read
    std::vector<std::shared_ptr<RowCounts>> mCounts; // of the filters used last, the latest at the end
    std::size_t mQueries = 0; // that were run for ids of the snapshot
    std::optional<RowsOfIds> mRowsOfIds;
};

#endif
