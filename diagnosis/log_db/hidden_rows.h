#ifndef ARBORIST_DIAGNOSIS_LOG_DB_HIDDEN_ROWS_H
#define ARBORIST_DIAGNOSIS_LOG_DB_HIDDEN_ROWS_H

#include <string>

namespace diagnosis::hidden_rows {

/// SQL conditions for an event log as of a moment, the parameter ?1 in seconds; if that is null, nothing is later.
/// A time that is no number is never later.

/// True if the row `flow` of event_info_flow is later than the moment.
std::string IsLater(const std::string& flow);
/// True if the row `info` of event_info has times, under its own key or as their parent, and all are later. Reads
/// event_info_flow once for the statement, whatever indexes it has.
std::string IsHidden(const std::string& info);

} // namespace diagnosis::hidden_rows

#endif
