#include "arborist/model/event_rule.h"

#include <memory>

#include <gtest/gtest.h>

namespace {

std::shared_ptr<OrRuleSingle> AlternativeThat(bool holds)
{
    auto alternative = std::make_shared<OrRuleSingle>();
    alternative->result = holds;
    return alternative;
}

TEST(EventRuleTest, WithoutAlternativesIsFalseAndForgetsAnEarlierTrue)
{
    EventRule rule;
    rule.SetRuleResult(true);
    EXPECT_FALSE(rule.CheckResult());
    EXPECT_FALSE(rule.IsRuleResult());
}

TEST(EventRuleTest, AnyAlternativeThatHoldsMakesItTrue)
{
    EventRule rule;
    rule.SetRuleList({AlternativeThat(false), AlternativeThat(true)});
    EXPECT_TRUE(rule.CheckResult());
    EXPECT_TRUE(rule.IsRuleResult());
}

TEST(EventRuleTest, NullAlternativesArePassedOver)
{
    EventRule rule;
    rule.SetRuleList({nullptr, AlternativeThat(false)});
    EXPECT_FALSE(rule.CheckResult());
}

TEST(EventRuleTest, OnceTrueStaysTrue)
{
    EventRule rule;
    rule.SetRuleList({AlternativeThat(true)});
    ASSERT_TRUE(rule.CheckResult());
    rule.GetRuleList().front()->result = false;
    EXPECT_TRUE(rule.CheckResult());
}

TEST(EventRuleTest, TheIdIsReadThroughTheOverloadWithoutArgument)
{
    EventRule rule;
    rule.SetEventId("E1");
    EXPECT_EQ(rule.SetEventId(), "E1");
}

} // namespace
