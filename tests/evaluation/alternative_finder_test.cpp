#include "arborist/evaluation/alternative_finder.h"

#include <algorithm>
#include <chrono>
#include <random>

#include <gtest/gtest.h>

#include "arborist/utilities/string_util.h"

namespace {

std::shared_ptr<OrRuleSingle> Alternative(const std::string& type, const std::string& name,
                                          const std::vector<std::string>& names)
{
    return std::make_shared<OrRuleSingle>(OrRuleSingle{type, name, false, names});
}

// A direct implementation of the look-up's description.
std::shared_ptr<OrRuleSingle> Walk(const std::string& name, const OrRuleList& rules)
{
    for (const auto& rule : rules) {
        if (rule->type == "singleRule" && rule->ruleName == name) {
            return rule;
        }
        const auto parts = StringUtil::Split(name, ",");
        const auto& list = rule->ruleNameList;
        bool all = !parts.empty() && !list.empty();
        for (const auto& part : parts) {
            all = all && std::count(list.begin(), list.end(), part) > 0;
        }
        if (all) {
            return rule;
        }
    }
    return nullptr;
}

std::string RandomName(std::mt19937& random)
{
    static const char* const NAMES[] = {"a", "b", "c", "d", "a,b", "b,c", ",", "", "d,"};
    return NAMES[random() % std::size(NAMES)];
}

std::shared_ptr<OrRuleSingle> RandomAlternative(std::mt19937& random)
{
    static const char* const TYPES[] = {"singleRule", "multipleRule", "other"};
    auto rule = Alternative(TYPES[random() % 3], RandomName(random), {});
    for (auto names = random() % 4; names > 0; --names) {
        rule->ruleNameList.push_back(RandomName(random));
    }
    return rule;
}

TEST(AlternativeFinderTest, AgreesWithAPlainWalkOverListsOfAnyLength)
{
    const auto seed = static_cast<unsigned>(std::chrono::steady_clock::now().time_since_epoch().count());
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 1000; ++round) {
        OrRuleList rules;
        for (auto count = random() % 40; count > 0; --count) {
            rules.push_back(RandomAlternative(random));
        }
        AlternativeFinder finder(rules);
        for (int asked = 0; asked < 10; ++asked) {
            const std::string name = RandomName(random) + "," + RandomName(random);
            ASSERT_EQ(finder.Find(name), Walk(name, rules)) << name << " of " << rules.size();
            const std::string single = RandomName(random);
            ASSERT_EQ(finder.Find(single), Walk(single, rules)) << single << " of " << rules.size();
        }
    }
}

TEST(AlternativeFinderTest, LongListsOfNamesAreCompared)
{
    std::vector<std::string> names;
    std::string joined;
    for (int i = 0; i < 40; ++i) {
        names.push_back("r" + std::to_string(i));
        joined = names.back() + (joined.empty() ? "" : "," + joined);
    }
    const OrRuleList rules{Alternative("multipleRule", "", names)};
    EXPECT_EQ(AlternativeFinder(rules).Find(joined), rules[0]);
    EXPECT_EQ(AlternativeFinder(rules).Find(joined + ",r40"), nullptr);
}

TEST(AlternativeFinderTest, EveryPartCountsAmongManyAlternatives)
{
    OrRuleList rules(20, Alternative("multipleRule", "", {"a", "b", "b"}));
    rules.push_back(Alternative("multipleRule", "", {"c", "b", "a"}));
    rules.push_back(Alternative("singleRule", "a,c", {}));
    AlternativeFinder finder(rules);
    EXPECT_EQ(finder.Find("a,a,c,c,b"), rules[20]);
    EXPECT_EQ(finder.Find("a,c"), rules[20]);
    EXPECT_EQ(finder.Find("b,a,b"), rules[0]);
    EXPECT_EQ(finder.Find("a,d"), nullptr);
    EXPECT_EQ(finder.Find(","), nullptr);
}

// Half of the alternatives list "a", the others "b", and each asks who lists both. Were each look-up to go through one
// half, this test would take minutes.
TEST(AlternativeFinderTest, NamesThatNobodyListsTogetherAreSoughtOnce)
{
    constexpr std::size_t HALF = 50'000;
    OrRuleList rules;
    for (const char* const listed : {"a", "b"}) {
        for (std::size_t place = 0; place < HALF; ++place) {
            rules.push_back(Alternative("multipleRule", "a,b", {listed}));
        }
    }
    AlternativeFinder finder(rules);
    for (std::size_t look = 0; look < rules.size(); ++look) {
        ASSERT_EQ(finder.Find(look % 2 == 0 ? "a,b" : "b,a,b"), nullptr);
    }
}

TEST(AlternativeFinderTest, NullEntriesArePassedOver)
{
    OrRuleList rules{nullptr, Alternative("singleRule", "a", {})};
    EXPECT_EQ(AlternativeFinder(rules).Find("a"), rules[1]);
    rules.insert(rules.begin(), 20, nullptr);
    EXPECT_EQ(AlternativeFinder(rules).Find("a"), rules.back());
}

} // namespace
