#ifndef ARBORIST_STORES_EVENT_LOG_EVENT_LOG_SEARCH_H
#define ARBORIST_STORES_EVENT_LOG_EVENT_LOG_SEARCH_H

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "arborist/stores/event_log/answer_table.h"
#include "arborist/stores/event_log/event_log_snapshot.h"
#include "arborist/stores/event_log/event_query.h"
#include "arborist/stores/event_log/event_rows.h"
#include "arborist/stores/event_log/local_days.h"
#include "arborist/stores/event_log/requests.h"
#include "arborist/stores/event_log/row_counts.h"

/// Answers for ranges of ids what EventQuery answers for each id, with the same lines in the log, from one reading of
/// the log for as long as it doesn't change. What that reading can't know is asked of EventQuery, so that neither
/// damage nor any bound changes an answer.
class EventLogSearch {
public:
    /// The ids and times that are asked for.
    struct Query {
        std::int32_t firstId;
        std::int32_t lastId;
        /// Seconds since the epoch, inclusive.
        std::int64_t startTime;
        /// Only events of the current version, and those whose version has no name.
        bool fromUpdate;
        /// What the visitor may ask of the rows.
        EventRows::Questions questions = {};
    };

    /// How the log could be read for a query.
    enum class Reading {
        WHOLE,
        BROKEN_OFF, ///< on the way: rows may be missing
        UNREADABLE ///< nothing could be read
    };

    /// Is shown the rows of one id for the length of the call; true ends the visit.
    using Visitor = std::function<bool(const EventRows& rows)>;

    /// Of ids so far behind the first one of a range only those are asked that some reading found in the log: the lines
    /// of a log that can't be read are told for no more.
    static constexpr std::int64_t LONGEST_RANGE_TOLD = 100000;

    explicit EventLogSearch(const FT::sql::Sqlite3Db& database);

    EventQuery& GetQuery() { return mEventQuery; }

    /// Says that these questions will be put to the rows of these ids, so that one reading answers all. Without effect
    /// on any answer.
    void Foresee(std::int32_t firstId, std::int32_t lastId, const EventRows::Questions& questions);

    /// Visits the ids that have rows since the start, ascending; `versionName` is the current version.
    Reading Visit(const Query& query, const std::string& versionName, const Visitor& visitor);

    static void TellVersionName(const std::string& versionName);

private:
    using Entry = EventLogSnapshot::Entry;

    // The visit under way.
    struct OpenVisit;

    void Refresh();
    bool VisitIds(OpenVisit& visit, std::int64_t firstId);
    bool VisitAbsent(OpenVisit& visit, std::int32_t eventId);
    bool VisitEntry(OpenVisit& visit, std::size_t entryNumber);
    std::shared_ptr<RowCounts> CountsFor(const EventLogSnapshot::Filter& filter);
    bool VisitByQuery(OpenVisit& visit, std::int32_t eventId);
    void TellBreak() const;
    void Prepare(const OpenVisit& visit);
    void ReadAnswers(const OpenVisit& visit);
    bool HasAnswers(const OpenVisit& visit, std::uint32_t firstRow, std::uint32_t endRow) const;
    bool FillAnswers(const OpenVisit& visit, const Entry& entry, EventRows::Known& known) const;
    bool FillColumns(const OpenVisit& visit, const Entry& entry, EventRows::Known& known) const;
    bool FillTexts(EventRows::Known& known) const;
    bool IsCurrent() const;

    const FT::sql::Sqlite3Db& mDb;
    EventQuery mEventQuery;
    Requests mRequests;
    std::shared_ptr<const EventLogSnapshot> mSnapshot; // null while the log can't be asked
    std::vector<std::shared_ptr<RowCounts>> mCounts; // of the filters asked for last, the latest at the end
    std::shared_ptr<const AnswerTable> mAnswers; // to the requests, as far as they were read
    bool mCanReadAnswers = true; // in one go
};

#endif
