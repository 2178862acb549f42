#ifndef ARBORIST_STORES_EVENT_LOG_ANSWER_READER_H
#define ARBORIST_STORES_EVENT_LOG_ANSWER_READER_H

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "arborist/stores/event_log/answer_table.h"
#include "arborist/stores/event_log/event_log_snapshot.h"
#include "arborist/stores/event_log/requests.h"
#include "arborist/stores/event_log/row_answers.h"
#include "arborist/stores/event_log/unchanged_log.h"
#include "arborist/stores/sql/sql_database.h"

/// Reads the texts of a snapshot's rows and stores their answers to questions. Logs nothing: a row whose answer would
/// log a line is marked to be asked again. Stateless; use it while `log` and `requests` exist.
class AnswerReader {
public:
    AnswerReader(const UnchangedLog& log, const Requests& requests);

    /// Reads all texts since `since` in one pass and answers as many requests of `wanted`, from the first on, as there
    /// is room for. Null if the log can't be read in this way.
    std::shared_ptr<const AnswerTable> ReadAll(
        const std::vector<Requests::Request>& wanted, std::int64_t since) const;

    /// Reads the texts of these rows one by one and returns a column of answers for each of `questions`.
    std::optional<std::vector<std::shared_ptr<const AnswerColumn>>> ReadOneByOne(
        const EventLogSnapshot::Entry& entry, const RowBits& rows, const std::vector<Requests::Number>& questions) const;
    /// The texts of these rows.
    std::optional<RowTexts> ReadTexts(const std::vector<std::uint32_t>& rows) const;

private:
    template <typename Take>
    bool ReadEach(const std::vector<std::uint32_t>& rows, Take take) const;

    const FT::sql::Sqlite3Db& mDb;
    const EventLogSnapshot& mSnapshot;
    const Requests& mRequests;
};

#endif
