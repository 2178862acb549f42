#ifndef ARBORIST_STORES_EVENT_LOG_ANSWER_CACHE_H
#define ARBORIST_STORES_EVENT_LOG_ANSWER_CACHE_H

#include <cstdint>
#include <memory>
#include <vector>

#include "arborist/stores/event_log/answer_table.h"
#include "arborist/stores/event_log/event_log_snapshot.h"
#include "arborist/stores/event_log/requests.h"
#include "arborist/stores/event_log/row_answers.h"
#include "arborist/stores/event_log/row_question.h"
#include "arborist/stores/sql/sql_database.h"

/// The answers of a snapshot's rows to the questions of visits, read when they are first needed: those of many rows in one
/// pass, for all questions known by then, those of few rows one by one. Logs nothing.
class AnswerCache {
public:
    using Questions = std::vector<std::shared_ptr<const RowQuestion>>;

    /// What one visit asks.
    struct Asked {
        std::int32_t firstId;
        std::int32_t lastId;
        std::int64_t startTime;
        std::vector<Requests::Number> questions;
    };

    explicit AnswerCache(const FT::sql::Sqlite3Db& database) : mDb(database) {}

    /// Announces questions about the rows of these ids. Returns their numbers.
    std::vector<Requests::Number> Foresee(std::int32_t firstId, std::int32_t lastId, const Questions& questions);

    /// Forgets all answers; from now on those of this snapshot are meant.
    void Reset(std::shared_ptr<const EventLogSnapshot> snapshot);
    /// Reads in one pass the answers of all rows to the announced questions, as far as there is room.
    void ReadForeseen();
    /// Reads the answers in one pass if the visit needs many of them.
    void Prepare(const Asked& asked);
    /// The answers of the rows in `range` of an entry that pass the filter. Null if the log has changed since the
    /// snapshot, or if rows must be asked again in an order that only the id's own query knows.
    std::shared_ptr<const RowAnswers> Find(const Asked& asked, const EventLogSnapshot::Entry& entry,
        const EventLogSnapshot::RowRange& range, const EventLogSnapshot::Filter& filter) const;

private:
    using Entry = EventLogSnapshot::Entry;

    bool Has(const Asked& asked, std::uint32_t firstRow, std::uint32_t endRow) const;
    void ReadAll(const std::vector<Requests::Request>& wanted, std::int64_t since);
    void ReadAllFor(const Asked& asked);
    bool FillColumns(const Asked& asked, const Entry& entry, RowAnswers& answers) const;
    bool FillTexts(RowAnswers& answers) const;

    const FT::sql::Sqlite3Db& mDb;
    Requests mRequests;
    std::shared_ptr<const EventLogSnapshot> mSnapshot;
    std::shared_ptr<const AnswerTable> mAnswers; // those of the last pass
    bool mCanReadAll = true; // in one pass
};

#endif
