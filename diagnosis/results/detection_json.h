#ifndef ARBORIST_DIAGNOSIS_RESULTS_DETECTION_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_DETECTION_JSON_H

#include <string>
#include <vector>

#include "diagnosis/detection/detection.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

/// A report as one line of JSON, schema "arborist.detect.1", without the line end. Every member is always there and of one
/// type, apart from the explanation and the trees, which are requested; later versions only add members. Equal inputs give
/// equal lines but for "seconds". The detection must have been run for a line (DetectionOptions::isForLine).
std::string DetectionJson(const DetectionReport& report);

/// Writes the members of a root cause: the ids and texts of the result.
void WriteRootCauseTexts(JsonWriter& json, const FaultTreeResult::RootCauseResult& cause);

/// Writes the members of a remark: "code" and those of Remark; those of which nothing is known are empty, and the line 0.
void WriteRemark(JsonWriter& json, const std::string& code, const Remark& remark);
/// Writes an array of warnings.
void WriteWarnings(JsonWriter& json, const std::vector<Warning>& warnings);

/// Writes the members that every report has: "bundle", "ok", "warnings".
void WriteHead(JsonWriter& json, const std::string& schema, const std::string& bundle, bool isOk,
    const std::vector<Warning>& warnings);
/// Writes the member "error".
void WriteError(JsonWriter& json, const Failure& failure);

} // namespace diagnosis

#endif
