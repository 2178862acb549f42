#include "arborist/stores/common_part/text_limits.h"

#include <gtest/gtest.h>

namespace {

FT::sql::Sqlite3Db DatabaseWith(std::uint64_t stepsLeft)
{
    FT::sql::Sqlite3Db database;
    database.limits.emplace();
    database.stepsLeft = stepsLeft;
    return database;
}

TEST(TextLimitsTest, ATextThatTookAllItsStepsHasHalfOfThemNextTimeAndTheOthersHaveTheirOwn)
{
    TextLimits limits({.steps = 100});
    limits.LowerAfter("endless", DatabaseWith(0));
    EXPECT_EQ(limits.Of("endless").steps, 50U);
    limits.LowerAfter("endless", DatabaseWith(0));
    EXPECT_EQ(limits.Of("endless").steps, 25U);
    EXPECT_EQ(limits.Of("other").steps, 100U);
}

TEST(TextLimitsTest, ATextThatFailedOtherwiseLosesNothing)
{
    TextLimits limits({.steps = 100});
    limits.LowerAfter("wrong", DatabaseWith(1));
    limits.LowerAfter("wrong", FT::sql::Sqlite3Db()); // without limits
    EXPECT_EQ(limits.Of("wrong").steps, 100U);
}

} // namespace
