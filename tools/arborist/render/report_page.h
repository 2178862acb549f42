#ifndef ARBORIST_TOOLS_RENDER_REPORT_PAGE_H
#define ARBORIST_TOOLS_RENDER_REPORT_PAGE_H

#include <string>

#include "tools/arborist/detection/detection.h"

namespace command {

/// A report as one HTML page that needs nothing beside itself: no network, no scripts. It shows the verdict of each
/// tree, its root causes with their ids, ways to the top, cut sets and evidence, its picture, the verdict of each rule,
/// and the warnings. No text of a bundle becomes markup. The report must have been made with trees and explanation.
std::string ReportPage(const DetectionReport& report);

} // namespace command

#endif
