#include "diagnosis/drawing/svg_chart.h"

#include <gmock/gmock.h>
#include <tinyxml2.h>

namespace diagnosis {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

bool IsWellFormed(const std::string& svg)
{
    tinyxml2::XMLDocument document;
    return document.Parse(svg.c_str()) == tinyxml2::XML_SUCCESS;
}

std::vector<ChartBar> TwoBars()
{
    return {{"<script>", {{"fault", "fault", 30}, {"sound", "no fault", 10}}, "40 & more"},
        {"half", {{"fault", "fault", 20}, {"sound", "no fault", 0}}, "20"}};
}

TEST(SvgChartTest, BarsHaveTheLengthsOfTheirCounts)
{
    const std::string svg = SvgBars("Two \"bars\"", TwoBars());
    // The chart begins at 268 and has 480 pixels, for 40.
    EXPECT_THAT(svg, HasSubstr("<rect class=\"fault\" x=\"268.0\" y=\"12.0\" width=\"360.0\" height=\"14.0\"><title>"
                               "&lt;script&gt;: fault 30</title></rect>"));
    EXPECT_THAT(svg, HasSubstr("<rect class=\"sound\" x=\"628.0\" y=\"12.0\" width=\"120.0\""));
    EXPECT_THAT(svg, HasSubstr("<rect class=\"fault\" x=\"268.0\" y=\"34.0\" width=\"240.0\""));
    EXPECT_THAT(svg, HasSubstr(">40 &amp; more</text>"));
    EXPECT_THAT(svg, HasSubstr("aria-label=\"Two &quot;bars&quot;\""));
    EXPECT_TRUE(IsWellFormed(svg)) << svg;
}

TEST(SvgChartTest, PartsOfAColumnStandOnEachOther)
{
    const std::string svg = SvgColumns("Two columns", TwoBars());
    // Two columns of 216 pixels, up to 180 high for 40, on a base line at 188.
    EXPECT_THAT(svg, HasSubstr("<rect class=\"fault\" x=\"268.0\" y=\"53.0\" width=\"216.0\" height=\"135.0\">"));
    EXPECT_THAT(svg, HasSubstr("<rect class=\"sound\" x=\"268.0\" y=\"8.0\" width=\"216.0\" height=\"45.0\">"));
    EXPECT_THAT(svg, HasSubstr("<rect class=\"fault\" x=\"508.0\" y=\"98.0\" width=\"216.0\" height=\"90.0\">"));
    EXPECT_THAT(svg, AllOf(HasSubstr(">40</text>"), HasSubstr(">half</text>")));
    EXPECT_TRUE(IsWellFormed(svg)) << svg;
}

TEST(SvgChartTest, ManyColumnsShowSomeOfTheirLabels)
{
    std::vector<ChartBar> columns;
    for (int week = 0; week < 104; ++week) {
        columns.push_back({"week " + std::to_string(week), {{"plain", "", 1}}, ""});
    }
    const std::string svg = SvgColumns("Weeks", columns);
    EXPECT_THAT(svg, AllOf(HasSubstr(">week 0</text>"), HasSubstr(">week 20</text>"), Not(HasSubstr(">week 19</text>"))));
}

TEST(SvgChartTest, ALineIsBrokenWhereThereIsNoNumber)
{
    const std::string svg = SvgLines("Shares", {"a", "b", "c", "d"}, {{"line1", "T<C", {0.5, 1, -1, 0}}});
    // Four places of 120 pixels; a number alone is a dot.
    EXPECT_THAT(svg, HasSubstr("points=\"328.0,98.0 448.0,8.0 \"><title>T&lt;C</title>"));
    EXPECT_THAT(svg, HasSubstr("points=\"688.0,188.0 688.0,188.0 \">"));
    EXPECT_TRUE(IsWellFormed(svg)) << svg;
}

TEST(SvgChartTest, LinesOfSmallSharesAreDrawnLarger)
{
    const std::string svg = SvgLines("Shares", {"a"}, {{"line1", "small", {0.15}}, {"line2", "none", {-1}}});
    EXPECT_THAT(svg, AllOf(HasSubstr(">20 %</text>"), HasSubstr(">10 %</text>"), HasSubstr("points=\"508.0,53.0 ")));
}

TEST(SvgChartTest, AMatrixIsShadedByTheShareOfItsRow)
{
    const std::string svg = SvgMatrix("Pairs", {{"A", "<B>"}, {{100, 50}, {50, 60}}});
    EXPECT_THAT(svg, HasSubstr("fill-opacity=\"0.3\"/>"));
    EXPECT_THAT(svg, HasSubstr("<title>A and &lt;B&gt;: 50, 50 % of the first</title>"));
    EXPECT_THAT(svg, HasSubstr("<title>&lt;B&gt; and A: 50, 83 % of the first</title>"));
    EXPECT_THAT(svg, HasSubstr("<title>A: 100</title>"));
    EXPECT_TRUE(IsWellFormed(svg)) << svg;
}

TEST(SvgChartTest, AnIntervalReachesFromItsLowToItsHighShare)
{
    const std::string svg = SvgIntervals("Shares", {{"with", "plain", 0.25, 0.125, 0.5, "1 of 4"}});
    EXPECT_THAT(svg, HasSubstr("<line class=\"plain\" x1=\"328.0\" x2=\"508.0\" y1=\"19.0\" y2=\"19.0\"/>"));
    EXPECT_THAT(svg, HasSubstr("cx=\"388.0\""));
    EXPECT_THAT(svg, HasSubstr("<title>with: 1 of 4</title>"));
    EXPECT_TRUE(IsWellFormed(svg)) << svg;
}

TEST(SvgChartTest, AShareThatIsNotKnownIsNotDrawn)
{
    ChartInterval interval{"without", "plain", 0, 0, 1, "no device was followed"};
    interval.isKnown = false;
    EXPECT_THAT(SvgIntervals("Shares", {interval}),
        AllOf(HasSubstr(">without</text>"), HasSubstr(">no device was followed</text>"), Not(HasSubstr("\"plain\""))));
}

TEST(SvgChartTest, ALabelThatIsTooLongKeepsAllThatHasRoom)
{
    EXPECT_THAT(SvgBars("", {{"A_TREE_WITH_NAME: AN_EVENT_WITH_ANOTHER", {{"fault", "", 1}}, "1"}}),
        HasSubstr(">A_TREE_WITH_NAME: AN_EVENT_WITH_A\u2026</text>"));
}

TEST(SvgChartTest, NothingIsDrawnOfNothing)
{
    EXPECT_TRUE(IsWellFormed(SvgBars("", {})));
    EXPECT_TRUE(IsWellFormed(SvgBars("", {{"none", {{"fault", "", 0}}, "0"}})));
    EXPECT_TRUE(IsWellFormed(SvgColumns("", {})));
    EXPECT_TRUE(IsWellFormed(SvgLines("", {}, {})));
    EXPECT_TRUE(IsWellFormed(SvgMatrix("", {})));
    EXPECT_TRUE(IsWellFormed(SvgIntervals("", {})));
}

} // namespace
} // namespace diagnosis
