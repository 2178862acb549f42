#ifndef ARBORIST_DIAGNOSIS_LOG_DB_LOG_DENSITY_H
#define ARBORIST_DIAGNOSIS_LOG_DB_LOG_DENSITY_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "diagnosis/log_db/inspect_log.h"

namespace diagnosis {

/// The times of the first and the last row of the log at `path`, among the times that alarm rules count: whole seconds of
/// 32 bits. Nothing in it if the log has no such row, or can't be read: then `problem` says why.
LoggedSpan SpanOfLog(const std::string& path, std::string& problem);

/// The numbers of rows in `parts` parts, of equal length but for rounding, of the time from `from` to `until`, both
/// included. All 0 if the log can't be read.
std::vector<std::uint64_t> DensityOfLog(
    const std::string& path, std::int64_t from, std::int64_t until, std::size_t parts);

} // namespace diagnosis

#endif
