#ifndef ARBORIST_DIAGNOSIS_RESULTS_QUERY_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_QUERY_JSON_H

#include <string>

#include "diagnosis/detection/query.h"

namespace diagnosis {

/// One line of JSON, schema "arborist.query.1", without the line end.
std::string QueryJson(const QueryReport& report);

} // namespace diagnosis

#endif
