#include "diagnosis/drawing/svg_timeline.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "diagnosis/bundle/moment.h"
#include "diagnosis/drawing/svg_parts.h"
#include "diagnosis/process/process_state.h"
#include "diagnosis/text/markup.h"

namespace diagnosis {

namespace {

constexpr std::size_t MOST_ROWS = 200;
constexpr std::size_t LABEL_WIDTH = 34; // in characters

// In pixels.
constexpr int MARGIN = 8;
constexpr int LABELS = 260;
constexpr int CHART = 760;
constexpr int RIGHT = 200; // for what a row rests on
constexpr int GROUNDS = MARGIN + LABELS + CHART + 14;
constexpr int WIDTH = MARGIN + LABELS + CHART + RIGHT;
constexpr int DENSITY = 44;
constexpr int AXIS = 26;
constexpr int ROW = 22;
constexpr int BAR = 12;
constexpr int TOP = MARGIN + DENSITY + AXIS;
constexpr int TICKS = 5;

// The colours of the report's style sheet, and the texts of a picture that stands alone.
constexpr char COLOURS[] = R"(
:root { color-scheme: light dark; --line: #6a7180; --ink: #1b1d22; --quiet: #545b68; --rule: #d9dce2; --paper: #ffffff;
  --fault: #a5170c; --unknown: #745600; --unknown-ground: #fff5d6; }
@media screen and (prefers-color-scheme: dark) {
  :root { --ink: #e6e8ec; --quiet: #a9b0bd; --rule: #3a404b; --paper: #1d2026; --fault: #ff9d92; --unknown: #f1cf6b;
    --unknown-ground: #3a3010; --line: #98a0ae; }
}
svg { background: var(--paper); font: 12px system-ui, -apple-system, "Segoe UI", "DejaVu Sans", Arial, sans-serif; }
text { fill: var(--ink); }
)";

std::string Number(int number)
{
    return std::to_string(number);
}

class TimelinePicture {
public:
    explicit TimelinePicture(const SweepReport& report) : mReport(report)
    {
        const std::vector<std::string> names = NamesOf(report.trees);
        for (std::size_t place = 0; place < names.size(); ++place) {
            const SweptTree& tree = report.trees[place];
            mRows.push_back({names[place], &tree.timeline, &tree.grounds, true});
            for (const SweptCause& cause : tree.causes) {
                mRows.push_back({cause.id, &cause.timeline, &cause.grounds, false});
            }
        }
        mLeftOut = mRows.size() > MOST_ROWS ? mRows.size() - MOST_ROWS : 0;
        mRows.resize(mRows.size() - mLeftOut);
        Grounds all;
        for (const Row& row : mRows) {
            all.Add(*row.grounds);
        }
        if (mLeftOut != 0) {
            mBelow.push_back(std::to_string(mLeftOut) + " more rows are left out");
        }
        for (const std::string& line : LegendOf(all)) {
            mBelow.push_back(line);
        }
    }

    std::string Text(const std::string& attributes, const std::string& style) const
    {
        const int endOfRows = TopOf(mRows.size());
        std::string text = SvgStart("timeline", Description(), WIDTH, TopOf(mRows.size() + mBelow.size()) + 2 * MARGIN,
            attributes) + style + Density() + Axis(endOfRows + MARGIN);
        text += mRows.empty() ? "" : Words("rests on", GROUNDS, MARGIN + DENSITY, "tick");
        for (std::size_t row = 0; row < mRows.size(); ++row) {
            text += RowText(mRows[row], TopOf(row)) + Words(mRows[row].grounds->Text(), GROUNDS, TopOf(row), "tick");
        }
        for (std::size_t line = 0; line < mBelow.size(); ++line) {
            text += Words(mBelow[line], MARGIN, TopOf(mRows.size() + line) + MARGIN, "tick");
        }
        return text + "</svg>\n";
    }

private:
    struct Row {
        std::string name;
        const Timeline* timeline;
        const Grounds* grounds;
        bool isTree;
    };

    static int TopOf(std::size_t row) { return TOP + static_cast<int>(row) * ROW; }

    double Place(std::int64_t moment) const
    {
        const double length = static_cast<double>(mReport.until - mReport.from) + 1;
        return MARGIN + LABELS + static_cast<double>(moment - mReport.from) / length * CHART;
    }

    std::string Description() const
    {
        return "Timeline from " + MomentText(mReport.from) + " to " + MomentText(mReport.until) + " of "
            + std::to_string(mReport.trees.size()) + " trees and their root causes.";
    }

    static std::string Words(const std::string& words, int left, int top, const std::string& style)
    {
        return "<text class=\"" + style + "\" x=\"" + Number(left) + "\" y=\"" + Number(top + ROW - 7) + "\">"
            + Markup(words) + "</text>\n";
    }

    static std::string Label(const std::string& words, int top, const std::string& style)
    {
        return Words(Shortened(words, LABEL_WIDTH), MARGIN, top, style);
    }

    std::string Density() const
    {
        const auto most = std::max_element(mReport.density.begin(), mReport.density.end());
        if (most == mReport.density.end() || *most == 0) {
            return "";
        }
        std::string text = Label("rows of the log, at most " + std::to_string(*most), MARGIN, "tick");
        const double width = static_cast<double>(CHART) / static_cast<double>(mReport.density.size());
        for (std::size_t part = 0; part < mReport.density.size(); ++part) {
            const double height =
                static_cast<double>(mReport.density[part]) / static_cast<double>(*most) * DENSITY;
            if (height > 0) {
                text += SvgRectangle("density", MARGIN + LABELS + static_cast<double>(part) * width,
                    MARGIN + DENSITY - std::max(height, 1.0), width, std::max(height, 1.0)) + "/>\n";
            }
        }
        return text;
    }

    std::string Axis(int end) const
    {
        std::string text;
        for (int tick = 0; tick < TICKS; ++tick) {
            const std::int64_t moment = mReport.from + (mReport.until - mReport.from) / (TICKS - 1) * tick;
            const double x = Place(moment);
            text += SvgLine("axis", x, MARGIN + DENSITY, x, end)
                + "<text class=\"tick\" text-anchor=\"" + (tick == TICKS - 1 ? "end" : "middle") + "\" x=\"" + SvgTenths(x) + "\" y=\""
                + Number(MARGIN + DENSITY + 15) + "\">" + MomentText(moment).substr(0, 16) + "</text>\n";
        }
        return text;
    }

    // Intervals that begin in the same tenth of a pixel as one before can't be seen beside it.
    std::string RowText(const Row& row, int top) const
    {
        const int middle = top + ROW / 2;
        const int topOfBar = middle - BAR / 2;
        std::string text = Label((row.isTree ? "" : "\u2003") + row.name, top, row.isTree ? "heading" : "cause");
        text += SvgLine("false", MARGIN + LABELS, middle, MARGIN + LABELS + CHART, middle);
        std::array<std::string, 3> last;
        for (const SweptInterval& interval : row.timeline->GetIntervals()) {
            const std::string x = SvgTenths(Place(interval.from));
            std::string& before = last.at(static_cast<std::size_t>(interval.state));
            if (interval.state == SweptState::FALSE || x == before) {
                continue;
            }
            before = x;
            const double width = std::max(Place(interval.until + 1) - Place(interval.from), 1.0);
            const std::string state =
                interval.state == SweptState::TRUE ? "true" : "not judged" + (interval.word.empty() ? "" : ", " + interval.word);
            text += SvgRectangle(SweptStateText(interval.state), Place(interval.from), topOfBar, width, BAR)
                + ">" + SvgTitle(row.name + ": " + state + " from " + MomentText(interval.from) + " to "
                + MomentText(interval.until)) + "</rect>\n";
        }
        return text;
    }

    const SweepReport& mReport;
    std::vector<Row> mRows;
    std::size_t mLeftOut = 0;
    std::vector<std::string> mBelow;
};

} // namespace

std::string SvgTimeline(const SweepReport& report)
{
    const TimeZoneGuard zone(report.tz);
    return TimelinePicture(report).Text("", "");
}

std::string SvgTimelineFile(const SweepReport& report)
{
    const TimeZoneGuard zone(report.tz);
    return TimelinePicture(report).Text(" xmlns=\"http://www.w3.org/2000/svg\"",
        std::string("<style>") + COLOURS + TIMELINE_STYLE + "</style>\n");
}

} // namespace diagnosis
