#include "diagnosis/sweep/grounds.h"

#include <gmock/gmock.h>

namespace diagnosis {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

TEST(GroundsTest, AreToldInOneOrderEachOnce)
{
    Grounds grounds;
    EXPECT_EQ(grounds.Text(), "-");
    grounds.Add({SweptSource::CAPTURED, false});
    grounds.Add({SweptSource::LOG, true});
    grounds.Add({SweptSource::LOG, false});
    EXPECT_THAT(grounds.Words(), ElementsAre("log", "captured", "repair date"));
    grounds.Add({SweptSource::TABLES, false});
    EXPECT_EQ(grounds.Text(), "log, tables, captured, repair date");
}

TEST(GroundsTest, TheLegendSaysWhatIsLessThanAHistory)
{
    EXPECT_THAT(LegendOf(Grounds(SweptSource::LOG, false)), IsEmpty());
    EXPECT_THAT(LegendOf(Grounds(SweptSource::CAPTURED, false)), ElementsAre(StartsWith("captured: ")));
    EXPECT_THAT(LegendOf(Grounds(SweptSource::TABLES, true)), ElementsAre(HasSubstr("only the latest date is stored")));
}

} // namespace
} // namespace diagnosis
