#ifndef ARBORIST_DIAGNOSIS_LOG_DB_IMPORT_LOG_H
#define ARBORIST_DIAGNOSIS_LOG_DB_IMPORT_LOG_H

#include <string>
#include <vector>

#include "diagnosis/log_db/event_log.h"

namespace diagnosis {

/// Makes the event log `target` out of the JSON Lines of `file` ("-" for standard input); lines of nothing but
/// blanks are passed over. Answers every line that can't be used (the first twenty); `target` is as before then.
std::vector<Failure> ImportEventLog(const std::string& file, const std::string& target);

} // namespace diagnosis

#endif
