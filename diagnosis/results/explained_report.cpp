#include "diagnosis/results/explained_report.h"

namespace diagnosis {

DetectionReport RunExplanation(const BundlePath& bundle, DetectionOptions options, const ExplanationView& view)
{
    options.withExplanation = true;
    DetectionReport report = RunDetection(bundle, options);
    if (!report.failure) {
        report.failure = UnknownWord(report.trees, view);
    }
    if (report.failure) {
        report.trees.clear();
    }
    return report;
}

} // namespace diagnosis
