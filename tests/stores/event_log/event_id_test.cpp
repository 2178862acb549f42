#include "arborist/stores/event_log/event_id.h"

#include <gtest/gtest.h>

#include "tests/support/log_capture.h"

namespace {

class EventIdTest : public testing::Test {
protected:
    EventIdTest() { mDatabase.Open(":memory:"); }

    std::optional<std::int32_t> IdOf(const std::string& value)
    {
        FT::sql::SqlCursor row(mDatabase.GetHandle(), "select " + value);
        EXPECT_TRUE(row.Step());
        return EventIdOf(row);
    }

    LogCapture mLog;
    FT::sql::SqlDatabase mDatabase;
};

TEST_F(EventIdTest, NumbersOf32BitsAreIds)
{
    EXPECT_EQ(IdOf("7"), 7);
    EXPECT_EQ(IdOf("2147483647"), 2147483647);
    EXPECT_EQ(IdOf("-2147483648"), -2147483647 - 1);
    EXPECT_EQ(IdOf("2147483648"), std::nullopt);
    EXPECT_EQ(IdOf("-2147483649"), std::nullopt);
}

TEST_F(EventIdTest, OtherValuesCountAsTheNumberThatTheyBeginWith)
{
    EXPECT_EQ(IdOf("7.5"), 7);
    EXPECT_EQ(IdOf("'12 and more'"), 12);
    EXPECT_EQ(IdOf("'text'"), 0);
    EXPECT_EQ(IdOf("1e300"), std::nullopt);
    EXPECT_EQ(IdOf("-1e300"), std::nullopt);
}

} // namespace
