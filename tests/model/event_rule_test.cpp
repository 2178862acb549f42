#include "arborist/model/event_rule.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

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

TEST(EventRuleTest, NameOfAnAlternativeIsThatOfItsRuleOrItsListJoined)
{
    EXPECT_EQ(NameOf({"singleRule", "a,b", false, {"c"}}), "a,b");
    EXPECT_EQ(NameOf({"multipleRule", "a", false, {"b", "", "c"}}), "b,,c");
    EXPECT_EQ(NameOf({"other", "a", false, {}}), "");
}

TEST(EventRuleTest, NameWithoutACommaAsksTheRuleOfThatNameAndOneWithCommasThoseBetween)
{
    using testing::ElementsAre;
    EXPECT_THAT(RuleNamesIn("a b"), ElementsAre("a b"));
    EXPECT_THAT(RuleNamesIn(""), ElementsAre(""));
    EXPECT_THAT(RuleNamesIn("b,,c,"), ElementsAre("b", "c"));
    EXPECT_THAT(RuleNamesIn(","), testing::IsEmpty());
}

TEST(EventRuleTest, TheIdIsReadThroughTheOverloadWithoutArgument)
{
    EventRule rule;
    rule.SetEventId("E1");
    EXPECT_EQ(rule.SetEventId(), "E1");
}

} // namespace
