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
#include "arborist/stores/sql/sql_database.h"

/// Reads the texts of the rows of a snapshot and writes down what they answer. In silence: what would leave a line in
/// the log is marked to be asked again. Keeps nothing itself. Call it while the log is still what the snapshot shows.
class AnswerReader {
public:
    using Texts = std::map<std::uint32_t, std::string>; // by row

    AnswerReader(const FT::sql::Sqlite3Db& database, const EventLogSnapshot& snapshot, const Requests& requests);

    /// Reads all texts since `since` in one go, for those of `wanted` that have room, the first ones first. Null when
    /// the log can't be read so.
    std::shared_ptr<const AnswerTable> ReadAll(
        const std::vector<Requests::Request>& wanted, std::int64_t since) const;

    /// Reads the texts of these rows one by one: the answers to `questions`, each in a column of the entry.
    std::optional<std::vector<std::shared_ptr<const AnswerColumn>>> ReadOneByOne(
        const EventLogSnapshot::Entry& entry, const RowBits& rows, const std::vector<Requests::Number>& questions) const;
    /// The texts of these rows.
    std::optional<Texts> ReadTexts(const std::vector<std::uint32_t>& rows) const;

private:
    template <typename Take>
    bool ReadEach(const std::vector<std::uint32_t>& rows, Take take) const;

    const FT::sql::Sqlite3Db& mDb;
    const EventLogSnapshot& mSnapshot;
    const Requests& mRequests;
};

#endif
