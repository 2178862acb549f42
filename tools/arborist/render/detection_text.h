#ifndef ARBORIST_TOOLS_RENDER_DETECTION_TEXT_H
#define ARBORIST_TOOLS_RENDER_DETECTION_TEXT_H

#include <string>

#include "diagnosis/detection/detection.h"
#include "tools/arborist/terminal/colour.h"

namespace diagnosis::command {

/// A report as text: each tree with its verdict, its root causes with all their ids and, if the report has the trees,
/// the status of every event. Ends with a line end.
std::string DetectionText(const DetectionReport& report, Colour colour);

} // namespace diagnosis::command

#endif
