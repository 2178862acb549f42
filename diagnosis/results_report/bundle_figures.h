#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPORT_BUNDLE_FIGURES_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPORT_BUNDLE_FIGURES_H

#include <cstdint>

#include "diagnosis/results_report/fleet.h"
#include "diagnosis/sqlite/questions.h"

namespace diagnosis {

/// The number of the week of a moment in seconds since 1970 of the local time. The week 0 begins on Monday, 5 January 1970.
std::int64_t WeekOf(std::int64_t moment);

/// The weeks of a trend, and the number of the first.
struct TrendWeeks {
    std::int64_t first = 0;
    FleetTrend& trend;

    /// The week of a moment; null outside of the trend.
    FleetWeek* Of(std::int64_t moment) const;
};

/// Fills in the runs, the verdicts of bundles and trees, the moments, the failures and the run times, and the bundles of
/// the trend. Memory grows with the number of weeks that have bundles.
TrendWeeks ReadBundleFigures(Questions& questions, Fleet& fleet);

} // namespace diagnosis

#endif
