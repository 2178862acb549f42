#ifndef ARBORIST_TOOLS_RENDER_LOG_REPORT_H
#define ARBORIST_TOOLS_RENDER_LOG_REPORT_H

#include <string>

#include "tools/arborist/log_db/inspect_log.h"

namespace command {

/// What an event log holds, for people: times are local time.
std::string LogText(const std::string& log, const LogInspection& inspection);
/// The same as one JSON object without a line end; times are seconds.
std::string LogJson(const std::string& log, const LogInspection& inspection);

/// "2024-05-01 10:00:00 to 2024-05-20 12:00:00", or that there is no time.
std::string SpanText(const LoggedSpan& span);

} // namespace command

#endif
