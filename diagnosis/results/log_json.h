#ifndef ARBORIST_DIAGNOSIS_RESULTS_LOG_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_LOG_JSON_H

#include <string>

#include "diagnosis/log_db/inspect_log.h"

namespace diagnosis {

/// The content of an event log as one line of JSON, schema "arborist.log.1", without the line end; times are seconds.
std::string LogJson(const std::string& log, const LogInspection& inspection);

} // namespace diagnosis

#endif
