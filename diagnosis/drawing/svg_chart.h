#ifndef ARBORIST_DIAGNOSIS_DRAWING_SVG_CHART_H
#define ARBORIST_DIAGNOSIS_DRAWING_SVG_CHART_H

#include <cstdint>
#include <string>
#include <vector>

namespace diagnosis {

/// The rules of charts, in addition to those of the report's style sheet, whose colours they use. The styles of parts,
/// lines and intervals are "fault", "undecided", "sound", "plain" and "none"; lines have "line1" to "line6", too.
inline constexpr char CHART_STYLE[] = R"(
.chart .tick { fill: var(--quiet); font-size: 11px; }
.chart .axis { stroke: var(--rule); stroke-width: 1; }
.chart rect { stroke: none; }
.chart rect.fault, .chart circle.fault { fill: var(--fault); stroke: none; }
.chart rect.undecided, .chart circle.undecided { fill: var(--unknown); stroke: none; }
.chart rect.sound, .chart circle.sound { fill: var(--sound); stroke: none; }
.chart rect.plain, .chart circle.plain { fill: var(--link); stroke: none; }
.chart rect.none { fill: var(--rule); stroke: none; }
.chart line.fault { stroke: var(--fault); stroke-width: 2; }
.chart line.plain { stroke: var(--link); stroke-width: 2; }
.chart .cell { fill: var(--fault); stroke: none; }
.chart .frame { fill: none; stroke: var(--rule); }
.chart polyline { fill: none; stroke-width: 2; }
.chart .line1 { stroke: var(--fault); } .chart .line2 { stroke: var(--link); stroke-dasharray: 7 3; }
.chart .line3 { stroke: var(--sound); stroke-dasharray: 2 2; } .chart .line4 { stroke: var(--unknown); }
.chart .line5 { stroke: var(--ink); stroke-dasharray: 7 3; } .chart .line6 { stroke: var(--line); stroke-dasharray: 2 2; }
)";

/// One part of a bar or column.
struct ChartPart {
    std::string style;
    std::string name;
    std::uint64_t count = 0;
};

/// A bar of parts one behind the other, or a column of parts one on the other.
struct ChartBar {
    std::string label;
    std::vector<ChartPart> parts;
    /// Printed behind a bar; columns don't show it.
    std::string words;
};

/// Bars below each other. The longest has the width of the chart.
std::string SvgBars(const std::string& description, const std::vector<ChartBar>& bars);

/// Columns beside each other, with some of their labels below. The highest has the height of the chart.
std::string SvgColumns(const std::string& description, const std::vector<ChartBar>& columns);

/// A line over the same places for each of `lines`; nothing is drawn where there is no number.
struct ChartLine {
    std::string style;
    std::string name;
    /// Numbers from 0 to 1, one for each place; below 0 where there is none.
    std::vector<double> shares;
};

/// Lines of shares in percent, with their names beside them. The chart reaches up to 10, 20, 50 or 100 percent.
std::string SvgLines(const std::string& description, const std::vector<std::string>& places,
    const std::vector<ChartLine>& lines);

/// How often things occur together.
struct ChartMatrix {
    std::vector<std::string> labels;
    /// For each label a row with a count for each label; how often the thing itself occurs stands on the diagonal.
    std::vector<std::vector<std::uint64_t>> counts;
};

/// A matrix. The darker a place, the larger its share of the diagonal's number in the same row.
std::string SvgMatrix(const std::string& description, const ChartMatrix& matrix);

/// A share and the interval in which it may lie; all from 0 to 1.
struct ChartInterval {
    std::string label;
    std::string style;
    double share = 0;
    double low = 0;
    double high = 1;
    /// Stands behind the chart.
    std::string words;
    /// False if there is no share: only label and words are drawn.
    bool isKnown = true;
};

/// Intervals below each other, from 0 to 100 percent.
std::string SvgIntervals(const std::string& description, const std::vector<ChartInterval>& intervals);

} // namespace diagnosis

#endif
