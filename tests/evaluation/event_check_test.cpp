#include "arborist/evaluation/event_check.h"

#include <gtest/gtest.h>

#include "arborist/model/event_rule.h"

namespace {

using Evidence::Check;

class EventCheckTest : public testing::Test {
protected:
    EventCheck mCheck;
    OrRuleSingle mFirst;
    OrRuleSingle mSecond;
};

TEST_F(EventCheckTest, AnAnswerThatIsTrueDecidesWhateverIsOpen)
{
    mCheck.Land(&mFirst, false, Check::RULE_UNUSABLE, 0);
    mCheck.Land(&mSecond, true, Check::DECIDED, 1);
    EXPECT_EQ(mCheck.GetWord().check, Check::DECIDED);
    EXPECT_EQ(mCheck.GetTrueCheck(), Check::DECIDED);
}

TEST_F(EventCheckTest, TheWorstOpenWordCountsWhereNoAnswerIsTrue)
{
    OrRuleSingle third;
    mCheck.Land(&mFirst, false, Check::NOT_CHECKED, 0);
    mCheck.Land(&mSecond, false, Check::DATA_MISSING, 1);
    mCheck.Land(&third, false, Check::DECIDED, 2);
    EXPECT_EQ(mCheck.GetWord().check, Check::DATA_MISSING);
    EXPECT_EQ(mCheck.GetWord().alternative, 1U);
}

TEST_F(EventCheckTest, OfEqualWordsTheFirstAlternativeIsTold)
{
    mCheck.Land(&mSecond, false, Check::DATA_MISSING, 1);
    mCheck.Land(&mFirst, false, Check::DATA_MISSING, 0);
    EXPECT_EQ(mCheck.GetWord().alternative, 0U);
}

TEST_F(EventCheckTest, AnAnswerCountsMoreThanAFilterAndTheSceneMoreThanTheDevice)
{
    mCheck.Land(&mFirst, false, Check::NOT_APPLICABLE, 0);
    EXPECT_EQ(mCheck.GetWord().check, Check::NOT_APPLICABLE);
    mCheck.Land(&mSecond, false, Check::NOT_SELECTED, 1);
    EXPECT_EQ(mCheck.GetWord().check, Check::NOT_SELECTED);
    mCheck.Land(&mFirst, false, Check::DECIDED, 2);
    EXPECT_EQ(mCheck.GetWord().check, Check::DECIDED);
}

TEST_F(EventCheckTest, TheLastResultOfAnEntryCounts)
{
    mCheck.Land(&mFirst, true, Check::DECIDED, 0);
    mCheck.Land(&mFirst, false, Check::DATA_MISSING, 1);
    EXPECT_EQ(mCheck.GetWord().check, Check::DATA_MISSING);
    EXPECT_EQ(mCheck.GetTrueCheck(), Check::NONE);
    mCheck.Land(&mFirst, false, Check::DECIDED, 2);
    EXPECT_EQ(mCheck.GetWord().check, Check::DECIDED);
}

TEST_F(EventCheckTest, AResultThatLandsNowhereCountsForNothing)
{
    mCheck.Land(nullptr, true, Check::DECIDED, 0);
    EXPECT_EQ(mCheck.GetWord().check, Check::NONE);
}

TEST_F(EventCheckTest, WhatWasTrueBeforeStaysTrueOnWhatItRestedOn)
{
    mCheck.Land(&mFirst, false, Check::DECIDED, 0);
    mCheck.KeepTrue(Check::RULE_UNUSABLE);
    EXPECT_EQ(mCheck.GetWord().check, Check::RULE_UNUSABLE);
    EXPECT_FALSE(mCheck.GetWord().alternative);
    EXPECT_EQ(mCheck.GetTrueCheck(), Check::RULE_UNUSABLE);
    mCheck.KeepTrue(Check::DECIDED);
    EXPECT_EQ(mCheck.GetWord().check, Check::DECIDED);
}

TEST_F(EventCheckTest, AnAnswerTakesThePlaceOfADefaultThatWasTrueBefore)
{
    mCheck.KeepTrue(Check::RULE_UNUSABLE);
    mCheck.Land(&mFirst, true, Check::DECIDED, 0);
    EXPECT_EQ(mCheck.GetWord().check, Check::DECIDED);
    EXPECT_EQ(mCheck.GetTrueCheck(), Check::DECIDED);
}

TEST_F(EventCheckTest, WhatWasTrueBeforeIsToldBeforeAnAlternativeOfTheSameWord)
{
    mCheck.KeepTrue(Check::DATA_MISSING);
    mCheck.Land(&mFirst, false, Check::DATA_MISSING, 0);
    EXPECT_EQ(mCheck.GetWord().check, Check::DATA_MISSING);
    EXPECT_FALSE(mCheck.GetWord().alternative.has_value());
    mCheck.Land(&mSecond, false, Check::RULE_UNUSABLE, 1);
    EXPECT_EQ(mCheck.GetWord().alternative, 1U);
}

} // namespace
