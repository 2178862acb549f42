#ifndef ARBORIST_STORES_EVENT_LOG_ROWS_OF_IDS_H
#define ARBORIST_STORES_EVENT_LOG_ROWS_OF_IDS_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "arborist/stores/event_log/unchanged_log.h"

/// Which rows of event_info have the ids that are left to their own queries. With them such a query goes straight to its
/// rows. It finds the same rows in the same order, searches the same partners in the same order and meets the same
/// damage as if it scanned the table, but for the error that may end the scan.
class RowsOfIds {
public:
    /// Scans event_info once. Nothing if a search in it may miss a row that a scan finds, or if the query for an id
    /// would not scan it.
    static std::optional<RowsOfIds> Read(const UnchangedLog& log);

    /// A condition that selects the rows of this id, to be added to its query. Nothing for an id with too many rows.
    std::optional<std::string> GetCondition(std::int32_t eventId) const;
    /// SQLite's message for the error that ends each scan; empty if there is none.
    const std::string& GetScanError() const { return mScanError; }

private:
    std::string mRowName;
    std::map<std::int32_t, std::vector<std::int64_t>> mRows;
    std::string mScanError;
};

#endif
