#include "diagnosis/drawing/svg_timeline.h"

#include <gmock/gmock.h>
#include <tinyxml2.h>

namespace diagnosis {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// A hundred seconds, of which the tree is a fault from 60 to 69 and its cause can't be told before.
SweepReport SampleReport()
{
    SweepReport report;
    report.from = 0;
    report.until = 99;
    report.tz = "UTC";
    report.density = {0, 4, 0, 1};
    SweptTree tree;
    tree.id = "T<1>";
    tree.timeline.Set(0, SweptState::FALSE, "no_fault");
    tree.timeline.Set(60, SweptState::TRUE, "fault");
    tree.timeline.Set(70, SweptState::FALSE, "no_fault");
    tree.timeline.Close(99);
    SweptCause cause{"C", {"T/C"}, {}};
    cause.timeline.Set(0, SweptState::NOT_JUDGED);
    cause.timeline.Set(60, SweptState::TRUE);
    cause.timeline.Close(99);
    tree.causes.push_back(cause);
    report.trees.push_back(tree);
    return report;
}

std::size_t Count(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (auto place = text.find(part); place != std::string::npos; place = text.find(part, place + 1)) {
        ++count;
    }
    return count;
}

TEST(SvgTimelineTest, ABarLiesWhereItsIntervalLies)
{
    const std::string svg = SvgTimeline(SampleReport());
    // The chart begins at 268 and has 760 pixels for the hundred seconds.
    EXPECT_THAT(svg, HasSubstr("<rect class=\"true\" x=\"724.0\" y=\"83.0\" width=\"76.0\" height=\"12.0\"><title>"
                               "T&lt;1&gt;: true from 1970-01-01 00:01:00 to 1970-01-01 00:01:09</title></rect>"));
    EXPECT_THAT(svg, HasSubstr("<rect class=\"not_judged\" x=\"268.0\" y=\"105.0\" width=\"456.0\""));
    EXPECT_EQ(Count(svg, "<rect class=\"true\""), 2U);
    EXPECT_EQ(Count(svg, "<rect class=\"density\""), 2U);
    EXPECT_THAT(svg, HasSubstr("rows of the log, at most 4"));
}

TEST(SvgTimelineTest, IntervalsThatLieInOneTenthOfAPixelAreDrawnOnce)
{
    SweepReport report = SampleReport();
    report.until = 1000000;
    Timeline& timeline = report.trees.front().timeline;
    timeline = Timeline();
    for (std::int64_t second = 0; second < 100; ++second) {
        timeline.Set(second, second % 2 == 0 ? SweptState::TRUE : SweptState::FALSE);
    }
    timeline.Close(1000000);
    report.trees.front().causes.clear();
    EXPECT_LE(Count(SvgTimeline(report), "<rect class=\"true\""), 2U);
}

TEST(SvgTimelineTest, RowsBeyondTheLimitAreCounted)
{
    SweepReport report = SampleReport();
    const SweptTree tree = report.trees.front();
    report.trees.assign(150, tree);
    const std::string svg = SvgTimeline(report);
    EXPECT_THAT(svg, HasSubstr("100 more rows are left out"));
    EXPECT_EQ(Count(svg, "class=\"heading\""), 100U);
}

TEST(SvgTimelineTest, EachRowSaysWhatItRestsOnWithALegendBelow)
{
    SweepReport report = SampleReport();
    EXPECT_THAT(SvgTimeline(report), Not(HasSubstr("captured")));
    report.trees.front().grounds = {SweptSource::CAPTURED, false};
    report.trees.front().causes.front().grounds = {SweptSource::LOG, true};
    const std::string svg = SvgTimeline(report);
    EXPECT_THAT(svg, AllOf(HasSubstr(">rests on</text>"), HasSubstr(">captured</text>"), HasSubstr(">log, repair date</text>")));
    EXPECT_THAT(svg, AllOf(HasSubstr(">captured: data without a history"), HasSubstr(">repair date: nothing before")));
}

TEST(SvgTimelineTest, TreesOfOneIdHaveNamesOfTheirOwn)
{
    SweepReport report = SampleReport();
    report.trees.push_back(report.trees.front());
    EXPECT_THAT(SvgTimeline(report), AllOf(HasSubstr(">T&lt;1&gt; (1 of 2)</text>"), HasSubstr(">T&lt;1&gt; (2 of 2)</text>")));
}

TEST(SvgTimelineTest, ASweepOfOneSecondAndWithoutRowsIsDrawn)
{
    SweepReport report = SampleReport();
    report.until = 0;
    report.density.clear();
    report.trees.clear();
    EXPECT_THAT(SvgTimeline(report), AllOf(HasSubstr("<svg"), Not(HasSubstr("density"))));
}

TEST(SvgTimelineTest, TheFileStandsAlone)
{
    const std::string svg = SvgTimelineFile(SampleReport());
    tinyxml2::XMLDocument document;
    EXPECT_EQ(document.Parse(svg.c_str()), tinyxml2::XML_SUCCESS);
    EXPECT_THAT(svg, AllOf(HasSubstr("xmlns=\"http://www.w3.org/2000/svg\""), HasSubstr("prefers-color-scheme")));
    EXPECT_THAT(SvgTimeline(SampleReport()), Not(HasSubstr("<style>")));
}

} // namespace
} // namespace diagnosis
