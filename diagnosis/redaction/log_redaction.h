#ifndef ARBORIST_DIAGNOSIS_REDACTION_LOG_REDACTION_H
#define ARBORIST_DIAGNOSIS_REDACTION_LOG_REDACTION_H

#include <optional>
#include <string>

#include "diagnosis/problem.h"
#include "diagnosis/redaction/redaction_file.h"
#include "diagnosis/redaction/redaction_report.h"

namespace diagnosis {

/// Writes the event log at `source` anew to `target`, which must not exist, with the listed members of "extra"
/// replaced; see LogCopy and RedactExtra. A log that can't be read to its end is not redacted.
std::optional<Failure> RedactLog(const std::string& source, const std::string& target, const Redaction& redaction,
    RedactionReport& report);

/// Notes in the report that the derived database at `path` is left out, and which tables it has. They are made of the
/// event log's members.
void LeaveDerivedDatabaseOut(const std::string& path, RedactionReport& report);

} // namespace diagnosis

#endif
