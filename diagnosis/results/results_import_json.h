#ifndef ARBORIST_DIAGNOSIS_RESULTS_RESULTS_IMPORT_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_RESULTS_IMPORT_JSON_H

#include <cstdint>
#include <map>
#include <string>

#include "diagnosis/results_db/import_results.h"

namespace diagnosis {

/// What an import into the database `target` came to as one JSON object on one line: docs/results-import.schema.json.
/// `redacted` says how many values of each part were replaced.
std::string ResultsImportJson(const std::string& target, const results_db::ImportReport& report,
    const std::map<std::string, std::uint64_t>& redacted);

} // namespace diagnosis

#endif
