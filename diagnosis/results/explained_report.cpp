#include "diagnosis/results/explained_report.h"

namespace diagnosis {

DetectionReport RunExplanation(const BundlePath& bundle, DetectionOptions options, const ExplanationView& view)
{
    options.withExplanation = true;
    DetectionReport report = RunDetection(bundle, options);
    if (!report.failure && report.explanation != nullptr) {
        report.failure = UnknownWord(*report.explanation, view);
    }
    if (report.failure) {
        report.explanation.reset();
    }
    return report;
}

} // namespace diagnosis
