#include "arborist/stores/event_log/rows_of_ids.h"

#include "arborist/stores/event_log/event_id.h"
#include "arborist/stores/event_log/file_check.h"
#include "arborist/stores/sql/sql_cursor.h"

namespace {

// A longer condition is no text that SQLite should have to read: one scan costs as much.
constexpr std::size_t MOST_ROWS = 10000;

} // namespace

std::optional<RowsOfIds> RowsOfIds::Read(const UnchangedLog& log)
{
    const FT::sql::Sqlite3Db& database = log.GetDatabase();
    const EventLogSnapshot& snapshot = log.GetSnapshot();
    const EventLogSnapshot::Origin& origin = snapshot.GetOrigin();
    if (!origin.isInTableOrder || !origin.canSearchEvents ||
        FileCheck::OfTable(database, "event_info").state == FileCheck::Result::State::DISORDER) {
        return std::nullopt;
    }
    RowsOfIds rows;
    rows.mRowName = origin.rowName;
    for (std::size_t number = 0; number < snapshot.GetEntryCount(); ++number) {
        const EventLogSnapshot::Entry entry = snapshot.GetEntry(number);
        if (entry.needsQuery) {
            rows.mRows.emplace_hint(rows.mRows.end(), entry.eventId, std::vector<std::int64_t>());
        }
    }
    FT::sql::SqlCursor events(database, "select event_id, " + rows.mRowName + " from event_info not indexed");
    while (events.Step()) {
        const auto id = EventIdOf(events);
        if (!id) {
            continue;
        }
        if (const auto found = rows.mRows.find(*id); found != rows.mRows.end()) {
            found->second.push_back(events.GetInteger(1));
        }
    }
    rows.mScanError = events.GetError();
    return rows;
}

std::optional<std::string> RowsOfIds::GetCondition(std::int32_t eventId) const
{
    const auto found = mRows.find(eventId);
    const std::vector<std::int64_t>* const rowsOfId = found == mRows.end() ? nullptr : &found->second;
    if (rowsOfId == nullptr || rowsOfId->size() > MOST_ROWS) {
        return std::nullopt;
    }
    std::string condition;
    for (const std::int64_t row : *rowsOfId) {
        condition += (condition.empty() ? " and event_info." + mRowName + " in (" : ",") + std::to_string(row);
    }
    return condition.empty() ? " and 0" : condition + ")";
}
