#include "arborist/stores/common_part/text_limits.h"

#include <gtest/gtest.h>

namespace {

FT::sql::SqlBudget BudgetWith(std::uint64_t stepsLeft)
{
    FT::sql::SqlBudget budget;
    budget.SetLimits({.steps = stepsLeft});
    budget.StartText();
    return budget;
}

TEST(TextLimitsTest, ATextThatTookAllItsStepsHasHalfOfThemNextTimeAndTheOthersHaveTheirOwn)
{
    TextLimits limits({.steps = 100});
    limits.LowerAfter("endless", BudgetWith(0));
    EXPECT_EQ(limits.Of("endless").steps, 50U);
    limits.LowerAfter("endless", BudgetWith(0));
    EXPECT_EQ(limits.Of("endless").steps, 25U);
    EXPECT_EQ(limits.Of("other").steps, 100U);
}

TEST(TextLimitsTest, ATextThatFailedOtherwiseLosesNothing)
{
    TextLimits limits({.steps = 100});
    limits.LowerAfter("wrong", BudgetWith(1));
    limits.LowerAfter("wrong", FT::sql::SqlBudget()); // without limits
    EXPECT_EQ(limits.Of("wrong").steps, 100U);
}

} // namespace
