#include "diagnosis/drawing/svg_chart.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "diagnosis/drawing/svg_parts.h"
#include "diagnosis/text/markup.h"

namespace diagnosis {

namespace {

// In pixels.
constexpr double MARGIN = 8;
constexpr double LABELS = 260;
constexpr double CHART = 480;
constexpr double WORDS = 330;
constexpr double LEFT = MARGIN + LABELS;
constexpr double RIGHT = LEFT + CHART;
constexpr int WIDTH = static_cast<int>(RIGHT + WORDS);
constexpr double ROW = 22;
constexpr double BAR = 14;
constexpr double AXIS = 22;
constexpr double BASE_LINE = 15; // of a text, from the top of its row
constexpr double HEIGHT = 180;   // of columns and lines
constexpr double CELL = 46;
constexpr double LEAST_LABEL = 90; // from one label of a column to the next

constexpr std::size_t LABEL_WIDTH = 34; // in characters
constexpr std::size_t WORDS_WIDTH = 54;

std::string Text(const std::string& style, const std::string& anchor, double x, double y, const std::string& words,
    std::size_t width = WORDS_WIDTH)
{
    return words.empty() ? "" : "<text class=\"" + style + "\"" + (anchor.empty() ? "" : " text-anchor=\"" + anchor + "\"")
            + " x=\"" + SvgTenths(x) + "\" y=\"" + SvgTenths(y) + "\">" + Markup(Shortened(words, width)) + "</text>\n";
}

std::string Label(const std::string& words, double top)
{
    return Text("label", "", MARGIN, top + BASE_LINE, words, LABEL_WIDTH);
}

double Share(std::uint64_t part, std::uint64_t whole)
{
    return whole == 0 ? 0 : static_cast<double>(part) / static_cast<double>(whole);
}

std::string Percent(double share)
{
    return std::to_string(std::lround(share * 100)) + " %";
}

std::uint64_t Sum(const ChartBar& bar)
{
    std::uint64_t sum = 0;
    for (const ChartPart& part : bar.parts) {
        sum += part.count;
    }
    return sum;
}

std::uint64_t LargestSum(const std::vector<ChartBar>& bars)
{
    std::uint64_t largest = 0;
    for (const ChartBar& bar : bars) {
        largest = std::max(largest, Sum(bar));
    }
    return largest;
}

std::string PartTitle(const ChartBar& bar, const ChartPart& part)
{
    return SvgTitle(bar.label + ": " + (part.name.empty() ? "" : part.name + " ") + std::to_string(part.count));
}

std::string BarText(const ChartBar& bar, std::uint64_t largest, double top)
{
    std::string text = Label(bar.label, top);
    double x = LEFT;
    for (const ChartPart& part : bar.parts) {
        const double width = Share(part.count, largest) * CHART;
        text += part.count == 0 ? "" : SvgRectangle(part.style, x, top + (ROW - BAR) / 2, width, BAR) + ">"
                + PartTitle(bar, part) + "</rect>\n";
        x += width;
    }
    return text + Text("tick", "", x + MARGIN, top + BASE_LINE, bar.words);
}

// Lines at 0, a half and 1 of the height, with what they stand for.
std::string Levels(double top, const std::string& half, const std::string& full)
{
    std::string text;
    for (const auto& [share, words] : {std::pair(0.0, std::string("0")), std::pair(0.5, half), std::pair(1.0, full)}) {
        const double y = top + (1 - share) * HEIGHT;
        text += SvgLine("axis", LEFT, y, RIGHT, y) + Text("tick", "end", LEFT - 6, y + 4, words);
    }
    return text;
}

// As many labels below as there is room for, the first and, going by steps, others.
std::string Places(const std::vector<std::string>& labels, double top)
{
    const double step = CHART / static_cast<double>(std::max<std::size_t>(labels.size(), 1));
    const auto shown = static_cast<std::size_t>(std::max(1.0, LEAST_LABEL / step + 0.999));
    std::string text;
    for (std::size_t place = 0; place < labels.size(); place += shown) {
        text += Text("tick", "middle", LEFT + (static_cast<double>(place) + 0.5) * step, top + BASE_LINE, labels[place]);
    }
    return text;
}

std::string ColumnText(const ChartBar& column, std::uint64_t largest, double x, double width)
{
    std::string text;
    double y = MARGIN + HEIGHT;
    for (const ChartPart& part : column.parts) {
        const double height = Share(part.count, largest) * HEIGHT;
        y -= height;
        text += part.count == 0 ? "" : SvgRectangle(part.style, x, y, width, height) + ">" + PartTitle(column, part)
                + "</rect>\n";
    }
    return text;
}

// Of these the least that no share is above has the height of the chart.
double HighestShare(const std::vector<ChartLine>& lines)
{
    double highest = 0;
    for (const ChartLine& line : lines) {
        for (const double share : line.shares) {
            highest = std::max(highest, share);
        }
    }
    return highest <= 0.1 ? 0.1 : highest <= 0.2 ? 0.2 : highest <= 0.5 ? 0.5 : 1;
}

// A line is broken where there is no number; a number without neighbours is a dot.
std::string LineText(const ChartLine& line, double highest)
{
    const double step = CHART / static_cast<double>(std::max<std::size_t>(line.shares.size(), 1));
    std::string text;
    std::string points;
    for (std::size_t place = 0; place <= line.shares.size(); ++place) {
        if (place < line.shares.size() && line.shares[place] >= 0) {
            points += SvgTenths(LEFT + (static_cast<double>(place) + 0.5) * step) + ","
                + SvgTenths(MARGIN + (1 - line.shares[place] / highest) * HEIGHT) + " ";
        } else if (!points.empty()) {
            const bool isDot = points.find(' ') + 1 == points.size();
            points += isDot ? points : "";
            text += "<polyline class=\"" + line.style + "\" stroke-linecap=\"round\" points=\"" + points + "\">"
                + SvgTitle(line.name) + "</polyline>\n";
            points.clear();
        }
    }
    return text;
}

std::string LineKey(const ChartLine& line, double top)
{
    return "<polyline class=\"" + line.style + "\" points=\"" + SvgTenths(RIGHT + MARGIN) + "," + SvgTenths(top + ROW / 2)
        + " " + SvgTenths(RIGHT + MARGIN + 28) + "," + SvgTenths(top + ROW / 2) + "\"/>\n"
        + Text("label", "", RIGHT + MARGIN + 36, top + BASE_LINE, line.name, LABEL_WIDTH);
}

std::string CellText(const ChartMatrix& matrix, std::size_t row, std::size_t column, double x, double y)
{
    const std::uint64_t count = matrix.counts[row][column];
    const double share = row == column ? 0 : Share(count, matrix.counts[row][row]);
    const std::string shade = share == 0 ? "" : SvgRectangle("cell", x, y, CELL, ROW) + " fill-opacity=\""
            + SvgTenths(std::max(0.1, share * 0.6)) + "\"/>";
    const std::string words = row == column ? matrix.labels[row] + ": " + std::to_string(count)
        : matrix.labels[row] + " and " + matrix.labels[column] + ": " + std::to_string(count) + ", " + Percent(share)
            + " of the first";
    return shade + SvgRectangle("frame", x, y, CELL, ROW) + ">" + SvgTitle(words) + "</rect>"
        + Text(row == column ? "id" : "label", "middle", x + CELL / 2, y + BASE_LINE, std::to_string(count));
}

std::string IntervalText(const ChartInterval& interval, double top)
{
    const double middle = top + ROW / 2;
    const auto place = [](double share) { return LEFT + share * CHART; };
    const std::string shape = SvgLine(interval.style, place(interval.low), middle, place(interval.high), middle)
        + "<circle class=\"" + interval.style + "\" cx=\"" + SvgTenths(place(interval.share)) + "\" cy=\""
        + SvgTenths(middle) + "\" r=\"4.5\">" + SvgTitle(interval.label + ": " + interval.words) + "</circle>\n";
    return Label(interval.label, top) + (interval.isKnown ? shape : "") + Text("tick", "", RIGHT + MARGIN, top + BASE_LINE, interval.words);
}

} // namespace

std::string SvgBars(const std::string& description, const std::vector<ChartBar>& bars)
{
    const double height = static_cast<double>(bars.size()) * ROW + 2 * MARGIN;
    const std::uint64_t largest = LargestSum(bars);
    std::string text = SvgStart("chart", description, WIDTH, static_cast<int>(height));
    double top = MARGIN;
    for (const ChartBar& bar : bars) {
        text += BarText(bar, largest, top);
        top += ROW;
    }
    return text + "</svg>\n";
}

std::string SvgColumns(const std::string& description, const std::vector<ChartBar>& columns)
{
    const std::uint64_t largest = LargestSum(columns);
    std::string text = SvgStart("chart", description, WIDTH, static_cast<int>(HEIGHT + AXIS + 2 * MARGIN))
        + Levels(MARGIN, "", std::to_string(largest));
    const double step = CHART / static_cast<double>(std::max<std::size_t>(columns.size(), 1));
    std::vector<std::string> labels;
    for (const ChartBar& column : columns) {
        text += ColumnText(column, largest, LEFT + static_cast<double>(labels.size()) * step, std::max(1.0, step * 0.9));
        labels.push_back(column.label);
    }
    return text + Places(labels, MARGIN + HEIGHT) + "</svg>\n";
}

std::string SvgLines(const std::string& description, const std::vector<std::string>& places,
    const std::vector<ChartLine>& lines)
{
    const double highest = HighestShare(lines);
    std::string text = SvgStart("chart", description, WIDTH, static_cast<int>(HEIGHT + AXIS + 2 * MARGIN))
        + Levels(MARGIN, Percent(highest / 2), Percent(highest));
    double top = MARGIN;
    for (const ChartLine& line : lines) {
        text += LineText(line, highest) + LineKey(line, top);
        top += ROW;
    }
    return text + Places(places, MARGIN + HEIGHT) + "</svg>\n";
}

std::string SvgMatrix(const std::string& description, const ChartMatrix& matrix)
{
    const auto size = static_cast<double>(matrix.labels.size());
    const int width = std::max(WIDTH, static_cast<int>(LEFT + size * CELL + MARGIN));
    std::string text = SvgStart("chart", description, width, static_cast<int>((size + 1) * ROW + 2 * MARGIN));
    for (std::size_t row = 0; row < matrix.labels.size(); ++row) {
        const std::string number = std::to_string(row + 1);
        const double top = MARGIN + static_cast<double>(row + 1) * ROW;
        text += Text("tick", "middle", LEFT + (static_cast<double>(row) + 0.5) * CELL, MARGIN + BASE_LINE, number)
            + Label(number + "  " + matrix.labels[row], top);
        for (std::size_t column = 0; column < matrix.labels.size(); ++column) {
            text += CellText(matrix, row, column, LEFT + static_cast<double>(column) * CELL, top);
        }
        text += "\n";
    }
    return text + "</svg>\n";
}

std::string SvgIntervals(const std::string& description, const std::vector<ChartInterval>& intervals)
{
    const double bottom = MARGIN + static_cast<double>(intervals.size()) * ROW;
    std::string text = SvgStart("chart", description, WIDTH, static_cast<int>(bottom + AXIS + MARGIN));
    for (int quarter = 0; quarter <= 4; ++quarter) {
        const double x = LEFT + quarter * CHART / 4;
        text += SvgLine("axis", x, MARGIN, x, bottom)
            + Text("tick", "middle", x, bottom + BASE_LINE, std::to_string(quarter * 25) + " %");
    }
    double top = MARGIN;
    for (const ChartInterval& interval : intervals) {
        text += IntervalText(interval, top);
        top += ROW;
    }
    return text + "</svg>\n";
}

} // namespace diagnosis
