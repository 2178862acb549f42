#include "arborist/evaluation/rule_filter.h"

#include <gtest/gtest.h>

#include "arborist/model/rule.h"
#include "tests/evaluation/laptop.h"
#include "tests/support/case_name.h"

namespace {

using Evidence::Reason;

NodeRule RuleForScene(const std::string& scenes)
{
    NodeRule rule;
    rule.name = "r";
    rule.detectScene = scenes;
    return rule;
}

// NONE: the rule passes.
Reason ReasonOf(const std::shared_ptr<DetectInfo>& info, const Rule& rule)
{
    const auto rejection = RuleFilter(info).Reject(rule);
    return rejection ? rejection->reason : Reason::NONE;
}

bool Passes(const std::shared_ptr<DetectInfo>& info, const Rule& rule) { return ReasonOf(info, rule) == Reason::NONE; }

struct FilterCase {
    const char* name;
    std::string Rule::*field;
    const char* ruleText;
    Reason expected; // NONE: the rule passes
};
void PrintTo(const FilterCase& filter, std::ostream* out) { *out << filter.name; }
class RuleFilterTable : public testing::TestWithParam<FilterCase> {};

TEST_P(RuleFilterTable, LooksForTheDeviceInTheRulesText)
{
    NodeRule rule = RuleForScene("2");
    rule.*GetParam().field = GetParam().ruleText;
    EXPECT_EQ(ReasonOf(InfoOf(LAPTOP, 2), rule), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, RuleFilterTable, testing::Values(
    FilterCase{"SceneListed", &Rule::detectScene, "1,2,12", Reason::NONE},
    FilterCase{"SceneAsPartOfAnotherNumber", &Rule::detectScene, "12", Reason::NONE},
    FilterCase{"SceneNotListed", &Rule::detectScene, "1,3", Reason::FILTERED_SCENE},
    FilterCase{"SceneEmptyRejects", &Rule::detectScene, "", Reason::FILTERED_SCENE},
    FilterCase{"ProductEmpty", &Rule::production, "", Reason::NONE},
    FilterCase{"ProductListed", &Rule::production, "X,AB", Reason::NONE},
    FilterCase{"ProductAsPartOfAnotherName", &Rule::production, "ABC", Reason::NONE},
    FilterCase{"ProductNotListed", &Rule::production, "X,A B", Reason::FILTERED_PRODUCT},
    FilterCase{"BlackProductListed", &Rule::blackProducts, "AB", Reason::FILTERED_BLACK_PRODUCT},
    FilterCase{"BlackProductNotListed", &Rule::blackProducts, "X", Reason::NONE},
    FilterCase{"PlatformEmpty", &Rule::platform, "", Reason::NONE},
    FilterCase{"PlatformListed", &Rule::platform, "arm,x86", Reason::NONE},
    FilterCase{"PlatformNotListed", &Rule::platform, "arm", Reason::FILTERED_PLATFORM},
    FilterCase{"DeviceTypeEmpty", &Rule::deviceType, "", Reason::NONE},
    FilterCase{"DeviceTypeListed", &Rule::deviceType, "Notebook", Reason::NONE},
    FilterCase{"DeviceTypeNotListed", &Rule::deviceType, "notebook", Reason::FILTERED_DEVICE_TYPE}),
    CaseName());

TEST(RuleFilterTest, SceneListPassesItsOwnScenesOnly)
{
    EXPECT_TRUE(Passes(InfoOf(LAPTOP, 2), RuleForScene("1,2,12")));
    EXPECT_FALSE(Passes(InfoOf(LAPTOP, 3), RuleForScene("1,2,12")));
    EXPECT_TRUE(Passes(InfoOf(LAPTOP, -4), RuleForScene("1,-4")));
    EXPECT_FALSE(Passes(InfoOf(LAPTOP, -4), RuleForScene("1,4")));
}

TEST(RuleFilterTest, BlackProductBeatsTheProductList)
{
    NodeRule rule = RuleForScene("2");
    rule.production = "AB";
    rule.blackProducts = "AB";
    EXPECT_FALSE(Passes(InfoOf(LAPTOP, 2), rule));
}

TEST(RuleFilterTest, DeviceThatNamesNothingIsFoundInEveryText)
{
    NodeRule rule = RuleForScene("2");
    rule.production = "X";
    rule.platform = "arm";
    rule.deviceType = "Phone";
    EXPECT_TRUE(Passes(InfoOf(DeviceDetails(), 2), rule));
    rule.blackProducts = "Y";
    EXPECT_FALSE(Passes(InfoOf(DeviceDetails(), 2), rule));
}

TEST(RuleFilterTest, WithoutDeviceDetailsOnlyRulesThatAskForNothingPass)
{
    const auto info = InfoOf(LAPTOP, 2);
    info->mDeviceDetails = nullptr;
    NodeRule rule = RuleForScene("2");
    EXPECT_TRUE(Passes(info, rule));
    rule.platform = "x86";
    EXPECT_FALSE(Passes(info, rule));
}

TEST(RuleFilterTest, FirstFilterThatFailsIsTheReason)
{
    const RuleFilter filter(InfoOf(LAPTOP, 2));
    NodeRule rule = RuleForScene("1");
    rule.blackProducts = "AB";
    rule.production = "X";
    rule.platform = "arm";
    rule.deviceType = "Phone";
    const auto reason = [&] {
        const auto rejection = filter.Reject(rule);
        return rejection ? rejection->reason : Reason::NONE;
    };
    EXPECT_EQ(reason(), Reason::FILTERED_BLACK_PRODUCT);
    rule.blackProducts = "";
    EXPECT_EQ(reason(), Reason::FILTERED_PRODUCT);
    rule.production = "";
    EXPECT_EQ(reason(), Reason::FILTERED_SCENE);
    rule.detectScene = "2";
    EXPECT_EQ(reason(), Reason::FILTERED_PLATFORM);
    rule.platform = "";
    EXPECT_EQ(reason(), Reason::FILTERED_DEVICE_TYPE);
    rule.deviceType = "";
    EXPECT_EQ(reason(), Reason::NONE);
}

TEST(RuleFilterTest, WithoutInputEveryRuleIsRejectedByItsProducts)
{
    NodeRule rule = RuleForScene("2");
    EXPECT_EQ(ReasonOf(nullptr, rule), Reason::FILTERED_PRODUCT);
    rule.production = "AB";
    EXPECT_EQ(RuleFilter(nullptr).Reject(rule)->ruleText, "AB");
}

TEST(RuleFilterTest, RejectionShowsBothTexts)
{
    NodeRule rule = RuleForScene("1,3");
    auto rejection = RuleFilter(InfoOf(LAPTOP, 2)).Reject(rule);
    ASSERT_TRUE(rejection);
    EXPECT_EQ(rejection->deviceValue, "2");
    EXPECT_EQ(rejection->ruleText, "1,3");
    rule.blackProducts = "AB,Z";
    rejection = RuleFilter(InfoOf(LAPTOP, 2)).Reject(rule);
    ASSERT_TRUE(rejection);
    EXPECT_EQ(rejection->deviceValue, "AB");
    EXPECT_EQ(rejection->ruleText, "AB,Z");
}

} // namespace
