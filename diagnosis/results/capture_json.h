#ifndef ARBORIST_DIAGNOSIS_RESULTS_CAPTURE_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_CAPTURE_JSON_H

#include <string>

#include "diagnosis/capture/bundle_capture.h"

namespace diagnosis {

/// A capture as one line of JSON, schema "arborist.pack.1", without the line end. `bundle` and `target` are the names that
/// were given.
std::string CaptureJson(const std::string& bundle, const std::string& target, const CaptureReport& report);

} // namespace diagnosis

#endif
