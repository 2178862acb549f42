#ifndef ARBORIST_DIAGNOSIS_RESULTS_DETECTION_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_DETECTION_JSON_H

#include <string>

#include "diagnosis/detection/detection.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

/// A report as one line of JSON, schema "arborist.detect.1", without the line end. Members are only ever added.
std::string DetectionJson(const DetectionReport& report);

/// The members of a root cause: its ids and texts as the result has them.
void WriteRootCauseTexts(JsonWriter& json, const FaultTreeResult::RootCauseResult& cause);

/// The members that every report has: "bundle", "ok", "warnings".
void WriteHead(JsonWriter& json, const std::string& schema, const std::string& bundle, bool isOk,
    const std::vector<Warning>& warnings);
/// The member "error".
void WriteError(JsonWriter& json, const Failure& failure);

} // namespace diagnosis

#endif
