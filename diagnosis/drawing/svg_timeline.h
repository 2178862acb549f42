#ifndef ARBORIST_DIAGNOSIS_DRAWING_SVG_TIMELINE_H
#define ARBORIST_DIAGNOSIS_DRAWING_SVG_TIMELINE_H

#include <string>

#include "diagnosis/sweep/sweep.h"

namespace diagnosis {

/// The rules of a timeline's picture, in addition to those of the report's style sheet, whose colours they use.
inline constexpr char TIMELINE_STYLE[] = R"(
.timeline .heading { font-weight: 700; }
.timeline .tick { fill: var(--quiet); font-size: 11px; }
.timeline .axis { stroke: var(--rule); stroke-width: 1; }
.timeline .false { stroke: var(--line); stroke-width: 1; }
.timeline rect.density { fill: var(--line); stroke: none; }
.timeline rect.true { fill: var(--fault); stroke: none; }
.timeline rect.not_judged { fill: var(--unknown-ground); stroke: var(--unknown); stroke-width: 1; stroke-dasharray: 5 3; }
)";

/// The timelines of a sweep as an SVG element for an HTML page with the report's style sheet and TIMELINE_STYLE: the
/// number of rows of the log above, then a row for each tree and each of its root causes. A bar is true, a dashed frame
/// not judged, a thin line false. Beyond two hundred rows it says how many are left out.
std::string SvgTimeline(const SweepReport& report);

/// The same as a file of its own.
std::string SvgTimelineFile(const SweepReport& report);

} // namespace diagnosis

#endif
