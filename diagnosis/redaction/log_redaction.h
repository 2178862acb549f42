#ifndef ARBORIST_DIAGNOSIS_REDACTION_LOG_REDACTION_H
#define ARBORIST_DIAGNOSIS_REDACTION_LOG_REDACTION_H

#include <optional>
#include <string>

#include "diagnosis/problem.h"
#include "diagnosis/redaction/redaction_file.h"
#include "diagnosis/redaction/redaction_report.h"

namespace diagnosis {

/// Writes the event log at `source` anew to `target`, which must not exist, with the listed members of "extra" replaced; see
/// LogCopy and RedactExtra. A log that can't be read to its end is not redacted.
std::optional<Failure> RedactLog(const std::string& source, const std::string& target, const Redaction& redaction,
    RedactionReport& report);

/// Notes that the derived database at `path` is left out, with its tables: they hold members of the event log.
void LeaveDerivedDatabaseOut(const std::string& path, RedactionReport& report);

} // namespace diagnosis

#endif
