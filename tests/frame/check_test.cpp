#include "arborist/frame/check.h"

#include <set>
#include <string>

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

TEST(CheckTest, EveryReasonHasAWordAndACheck)
{
    using Evidence::Reason;
    std::set<std::string> words;
    for (int number = 1; number <= static_cast<int>(Evidence::LAST_REASON); ++number) {
        const auto reason = static_cast<Reason>(number);
        EXPECT_TRUE(words.insert(Evidence::ReasonText(reason)).second) << number;
        EXPECT_EQ(Evidence::CheckOf(reason) == Check::NONE, reason == Reason::GROUP_ENDED) << Evidence::ReasonText(reason);
    }
    EXPECT_EQ(words.count(""), 0U);
    EXPECT_EQ(Evidence::CheckOf(Reason::NONE), Check::NONE);
}

TEST(CheckTest, NumbersThatAreNoEnumeratorHaveNoWord)
{
    EXPECT_STREQ(Evidence::ReasonText(static_cast<Evidence::Reason>(1000)), "");
    EXPECT_EQ(Evidence::CheckOf(static_cast<Evidence::Reason>(-1)), Check::NONE);
    EXPECT_STREQ(Evidence::FamilyText(static_cast<Evidence::Family>(5)), "");
    EXPECT_STREQ(Evidence::GateText(static_cast<Evidence::GateType>(-1)), "");
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
