#ifndef ARBORIST_TOOLS_RENDER_EXPLANATION_JSON_H
#define ARBORIST_TOOLS_RENDER_EXPLANATION_JSON_H

#include <string>

#include "tools/arborist/detection/detection.h"
#include "tools/arborist/explanation/explanation_view.h"
#include "tools/arborist/render/json_writer.h"

namespace command {

/// The explanation of a report as one line of JSON, schema "arborist.explain.1", without the line end. docs/explain.md
/// tells of every member. Members are only ever added.
std::string ExplanationJson(const DetectionReport& report, const ExplanationView& view);

/// The list of explained trees alone, for other reports that hold it.
void WriteExplainedTrees(JsonWriter& json, const DetectionReport& report, const ExplanationView& view);

} // namespace command

#endif
