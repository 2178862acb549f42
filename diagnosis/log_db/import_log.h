#ifndef ARBORIST_DIAGNOSIS_LOG_DB_IMPORT_LOG_H
#define ARBORIST_DIAGNOSIS_LOG_DB_IMPORT_LOG_H

#include <string>
#include <vector>

#include "diagnosis/log_db/event_log.h"

namespace diagnosis {

/// Creates the event log `target` from the JSON Lines of `file` ("-" for standard input), skipping blank lines. Returns
/// a failure for each line that can't be used (the first twenty); `target` is unchanged then.
std::vector<Failure> ImportEventLog(const std::string& file, const std::string& target);

} // namespace diagnosis

#endif
