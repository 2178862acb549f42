#include "diagnosis/log_db/log_density.h"

#include <gmock/gmock.h>

#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"

namespace diagnosis {
namespace {

using testing::ElementsAre;

TEST(LogDensityTest, EachRowCountsInThePartOfItsTime)
{
    const TempDir dir;
    EventLogBuilder().Rows({{99, 1, "", ""}, {100, 1, "", ""}, {149, 1, "", ""}, {150, 1, "", ""}, {199, 2, "", ""},
        {200, 2, "", ""}}).WriteTo(dir.Path("log.db"));
    EXPECT_THAT(DensityOfLog(dir.Path("log.db"), 100, 199, 2), ElementsAre(2, 2));
    EXPECT_THAT(DensityOfLog(dir.Path("log.db"), 100, 100, 3), ElementsAre(1, 0, 0));
    EXPECT_THAT(DensityOfLog(dir.Path("log.db"), 199, 100, 2), ElementsAre(0, 0));
}

TEST(LogDensityTest, TheSpanLeavesOutTimesThatNoRuleCounts)
{
    const TempDir dir;
    EventLogBuilder().Rows({{-5, 1, "", ""}, {20, 1, "", ""}, {10, 1, "", ""}, {1716206400000, 1, "", ""}})
        .WriteTo(dir.Path("log.db"));
    std::string problem = "before";
    const LoggedSpan span = SpanOfLog(dir.Path("log.db"), problem);
    EXPECT_EQ(problem, "");
    EXPECT_EQ(span.first, 10);
    EXPECT_EQ(span.last, 20);
}

TEST(LogDensityTest, ALogWithoutTimesHasNoSpan)
{
    const TempDir dir;
    EventLogBuilder().Row({-5, 1, "", ""}).WriteTo(dir.Path("log.db"));
    std::string problem = "before";
    EXPECT_FALSE(SpanOfLog(dir.Path("log.db"), problem).first);
    EXPECT_EQ(problem, "");
}

TEST(LogDensityTest, ALogThatCantBeReadHasNoRows)
{
    const TempDir dir;
    EXPECT_THAT(DensityOfLog(dir.Path("none.db"), 0, 9, 1), ElementsAre(0));
    std::string problem;
    EXPECT_FALSE(SpanOfLog(dir.Path("none.db"), problem).first);
    EXPECT_NE(problem, "");
}

} // namespace
} // namespace diagnosis
