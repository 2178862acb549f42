#ifndef ARBORIST_DIAGNOSIS_REPORT_REPORT_PAGE_H
#define ARBORIST_DIAGNOSIS_REPORT_REPORT_PAGE_H

#include <string>

#include "diagnosis/detection/detection.h"
#include "diagnosis/sweep/sweep.h"

namespace diagnosis {

/// A report as one self-contained HTML page without network access or scripts. For each tree it shows the verdict, the
/// root causes with their ids, paths to the top event, cut sets and evidence, the picture and the verdict of each rule;
/// and the warnings. Escapes all texts of the bundle. The report must have been made with trees and explanation. Shows the
/// timelines of `sweep`, too, unless it is null.
std::string ReportPage(const DetectionReport& report, const SweepReport* sweep = nullptr);

} // namespace diagnosis

#endif
