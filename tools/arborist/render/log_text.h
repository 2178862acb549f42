#ifndef ARBORIST_TOOLS_RENDER_LOG_TEXT_H
#define ARBORIST_TOOLS_RENDER_LOG_TEXT_H

#include <string>

#include "diagnosis/log_db/inspect_log.h"

namespace diagnosis::command {

/// The content of an event log as text, in local time.
std::string LogText(const std::string& log, const LogInspection& inspection);

/// "2024-05-01 10:00:00 to 2024-05-20 12:00:00", or a note that there is no time.
std::string SpanText(const LoggedSpan& span);

} // namespace diagnosis::command

#endif
