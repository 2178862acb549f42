#ifndef ARBORIST_DIAGNOSIS_REPORT_REPORT_PAGE_H
#define ARBORIST_DIAGNOSIS_REPORT_REPORT_PAGE_H

#include <string>

#include "diagnosis/detection/detection.h"

namespace diagnosis {

/// A report as one HTML page that needs nothing beside itself: no network, no scripts. It shows the verdict of each
/// tree, its root causes with their ids, ways to the top, cut sets and evidence, its picture, the verdict of each rule,
/// and the warnings. No text of a bundle becomes markup. The report must have been made with trees and explanation.
std::string ReportPage(const DetectionReport& report);

} // namespace diagnosis

#endif
