#include "arborist/frame/check.h"

#include <gtest/gtest.h>

#include "arborist/frame/tree_verdict.h"

namespace {

using Evidence::Check;

TEST(CheckTest, OpenWordsWeighMoreThanOthersAndAnErrorMost)
{
    EXPECT_EQ(Evidence::WorseOf(Check::DECIDED, Check::NOT_SELECTED), Check::DECIDED);
    EXPECT_EQ(Evidence::WorseOf(Check::NOT_SELECTED, Check::NOT_APPLICABLE), Check::NOT_SELECTED);
    EXPECT_EQ(Evidence::WorseOf(Check::DECIDED, Check::NOT_CHECKED), Check::NOT_CHECKED);
    EXPECT_EQ(Evidence::WorseOf(Check::DATA_MISSING, Check::NOT_CHECKED), Check::DATA_MISSING);
    EXPECT_EQ(Evidence::WorseOf(Check::DATA_MISSING, Check::RULE_UNUSABLE), Check::RULE_UNUSABLE);
}

TEST(CheckTest, ThreeWordsAreOpen)
{
    EXPECT_FALSE(Evidence::IsOpen(Check::NONE));
    EXPECT_FALSE(Evidence::IsOpen(Check::NOT_APPLICABLE));
    EXPECT_FALSE(Evidence::IsOpen(Check::NOT_SELECTED));
    EXPECT_FALSE(Evidence::IsOpen(Check::DECIDED));
    EXPECT_TRUE(Evidence::IsOpen(Check::NOT_CHECKED));
    EXPECT_TRUE(Evidence::IsOpen(Check::DATA_MISSING));
    EXPECT_TRUE(Evidence::IsOpen(Check::RULE_UNUSABLE));
}

TEST(CheckTest, WordsAreThoseOfResults)
{
    EXPECT_STREQ(Evidence::CheckText(Check::NONE), "");
    EXPECT_STREQ(Evidence::CheckText(Check::DECIDED), "decided");
    EXPECT_STREQ(Evidence::CheckText(Check::NOT_APPLICABLE), "not_applicable");
    EXPECT_STREQ(Evidence::CheckText(Check::NOT_SELECTED), "not_selected");
    EXPECT_STREQ(Evidence::CheckText(Check::NOT_CHECKED), "not_checked");
    EXPECT_STREQ(Evidence::CheckText(Check::DATA_MISSING), "no_data");
    EXPECT_STREQ(Evidence::CheckText(Check::RULE_UNUSABLE), "error");
}

TEST(CheckTest, EveryReasonHasAWord)
{
    using Evidence::Reason;
    // VERSION_UNKNOWN is the last.
    for (int number = 1; number <= static_cast<int>(Reason::VERSION_UNKNOWN); ++number) {
        const auto reason = static_cast<Reason>(number);
        if (reason != Reason::GROUP_ENDED) {
            EXPECT_NE(Evidence::CheckOf(reason), Check::NONE) << Evidence::ReasonText(reason);
        }
    }
    EXPECT_EQ(Evidence::CheckOf(Reason::NONE), Check::NONE);
    EXPECT_EQ(Evidence::CheckOf(Reason::GROUP_ENDED), Check::NONE);
}

TEST(CheckTest, VerdictsAreThoseOfResults)
{
    using Word = Evidence::TreeVerdict::Word;
    EXPECT_STREQ(Evidence::TreeVerdictText(Word::FAULT), "fault");
    EXPECT_STREQ(Evidence::TreeVerdictText(Word::UNDECIDED), "undecided");
    EXPECT_STREQ(Evidence::TreeVerdictText(Word::NO_FAULT), "no_fault");
    EXPECT_STREQ(Evidence::TreeVerdictText(Word::NOT_APPLICABLE), "not_applicable");
}

} // namespace
