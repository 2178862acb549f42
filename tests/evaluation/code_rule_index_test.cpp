#include "arborist/evaluation/code_rule_index.h"

#include <string_view>

#include <gtest/gtest.h>

#include "arborist/model/rule.h"

namespace {

using namespace std::string_view_literals;

std::vector<std::shared_ptr<CodeRule>> RulesOf(const std::vector<std::string>& codes)
{
    std::vector<std::shared_ptr<CodeRule>> rules;
    for (const auto& code : codes) {
        rules.push_back(std::make_shared<CodeRule>());
        rules.back()->codeItem.id = code;
    }
    return rules;
}

TEST(CodeRuleIndexTest, FindsTheFirstCodeThatHoldsTheTextAnywhere)
{
    const auto rules = RulesOf({"A1", "XABY", "AB"});
    CodeRuleIndex index;
    EXPECT_EQ(index.FindFirst("AB", rules), rules[1]);
    EXPECT_EQ(index.FindFirst("A", rules), rules[0]);
    EXPECT_EQ(index.FindFirst("XABY", rules), rules[1]);
    EXPECT_EQ(index.FindFirst("XABYZ", rules), nullptr);
    EXPECT_EQ(index.FindFirst("B", RulesOf({})), nullptr);
}

TEST(CodeRuleIndexTest, TextNeverReachesIntoTheNextCode)
{
    const auto rules = RulesOf({"A", "", "BA", "AB"});
    CodeRuleIndex index;
    EXPECT_EQ(index.FindFirst("AB", rules), rules[3]);
    EXPECT_EQ(index.FindFirst("AA", rules), nullptr);
    EXPECT_EQ(index.FindFirst("A\0BA"sv, rules), nullptr);
    EXPECT_EQ(index.FindFirst("\0B"sv, rules), nullptr);
    EXPECT_EQ(index.FindFirst("\0"sv, rules), nullptr);
    const auto zeros = RulesOf({"A", std::string(1, '\0')}); // a match that crosses ends where one within begins
    EXPECT_EQ(CodeRuleIndex().FindFirst("\0"sv, zeros), zeros[1]);
    EXPECT_EQ(CodeRuleIndex().FindFirst("B", {}), nullptr);
}

TEST(CodeRuleIndexTest, AnotherListIsReadAnew)
{
    CodeRuleIndex index;
    const auto before = RulesOf({"AB"});
    EXPECT_EQ(index.FindFirst("AB", before), before[0]);
    const auto after = RulesOf({"CD"});
    EXPECT_EQ(index.FindFirst("AB", after), nullptr);
    EXPECT_EQ(index.FindFirst("CD", after), after[0]);
}

TEST(CodeRuleIndexTest, NullRulesArePassedOver)
{
    auto rules = RulesOf({"", "AB"});
    rules[0] = nullptr;
    EXPECT_EQ(CodeRuleIndex().FindFirst("B", rules), rules[1]);
}

} // namespace
