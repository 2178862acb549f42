#include "arborist/evaluation/rule_helper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/log.h"
#include "arborist/model/event.h"
#include "tests/evaluation/rule_set.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"
#include "tests/support/recording_observer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Reason = DetectionObserver::Reason;

const DeviceDetails LAPTOP("Notebook", "AB", "x86", "", "", "", "");

std::shared_ptr<DetectInfo> InfoOf(const DeviceDetails& details, int scene)
{
    auto info = std::make_shared<DetectInfo>();
    info->mDetectScene = scene;
    info->mDeviceDetails = std::make_shared<DeviceDetails>(details);
    return info;
}

struct FilterCase {
    const char* name;
    std::string Rule::*field;
    const char* ruleText;
    Reason expected; // NONE: the rule passes
};
void PrintTo(const FilterCase& filter, std::ostream* out) { *out << filter.name; }
class RuleFilter : public testing::TestWithParam<FilterCase> {};

TEST_P(RuleFilter, LooksForTheDeviceInTheRulesText)
{
    const RuleHelper helper(InfoOf(LAPTOP, 2), nullptr);
    const auto rule = std::make_shared<NodeRule>();
    rule->detectScene = "2";
    (*rule).*GetParam().field = GetParam().ruleText;
    EXPECT_EQ(helper.IsSpecifiedRuleItemSupported(rule), GetParam().expected == Reason::NONE);
    EXPECT_EQ(helper.GetFilterReason(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, RuleFilter, testing::Values(
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

class RuleHelperTest : public testing::Test {
protected:
    static std::shared_ptr<NodeRule> RuleForScene(const std::string& scenes)
    {
        auto rule = std::make_shared<NodeRule>();
        rule->name = "r";
        rule->detectScene = scenes;
        return rule;
    }

    static bool Passes(const std::shared_ptr<DetectInfo>& info, const std::shared_ptr<Rule>& rule)
    {
        return RuleHelper(info, nullptr).IsSpecifiedRuleItemSupported(rule);
    }

    TempDir mDir;
    LogCapture mLog;
};

TEST_F(RuleHelperTest, SceneListPassesItsOwnScenesOnly)
{
    EXPECT_TRUE(Passes(InfoOf(LAPTOP, 2), RuleForScene("1,2,12")));
    EXPECT_FALSE(Passes(InfoOf(LAPTOP, 3), RuleForScene("1,2,12")));
    EXPECT_TRUE(Passes(InfoOf(LAPTOP, -4), RuleForScene("1,-4")));
    EXPECT_FALSE(Passes(InfoOf(LAPTOP, -4), RuleForScene("1,4")));
}

TEST_F(RuleHelperTest, BlackProductBeatsTheProductList)
{
    const auto rule = RuleForScene("2");
    rule->production = "AB";
    rule->blackProducts = "AB";
    EXPECT_FALSE(Passes(InfoOf(LAPTOP, 2), rule));
}

TEST_F(RuleHelperTest, DeviceThatNamesNothingIsFoundInEveryText)
{
    const auto rule = RuleForScene("2");
    rule->production = "X";
    rule->platform = "arm";
    rule->deviceType = "Phone";
    EXPECT_TRUE(Passes(InfoOf(DeviceDetails(), 2), rule));
    rule->blackProducts = "Y";
    EXPECT_FALSE(Passes(InfoOf(DeviceDetails(), 2), rule));
}

TEST_F(RuleHelperTest, WithoutDeviceDetailsOnlyRulesThatAskForNothingPass)
{
    const auto info = InfoOf(LAPTOP, 2);
    info->mDeviceDetails = nullptr;
    const auto rule = RuleForScene("2");
    EXPECT_TRUE(Passes(info, rule));
    rule->platform = "x86";
    EXPECT_FALSE(Passes(info, rule));
}

TEST_F(RuleHelperTest, NullRuleAndNullInputAreRejected)
{
    EXPECT_FALSE(Passes(InfoOf(LAPTOP, 2), nullptr));
    EXPECT_FALSE(Passes(nullptr, RuleForScene("2")));
}

TEST_F(RuleHelperTest, FilterThatRejectsIsToldWithBothTexts)
{
    RuleHelper helper(InfoOf(LAPTOP, 2), nullptr);
    RecordingObserver observer;
    helper.SetObserver(&observer);
    const auto rule = RuleForScene("1");
    rule->production = "AB";
    EXPECT_FALSE(helper.IsSpecifiedRuleItemSupported(rule));
    rule->blackProducts = "AB,Z";
    EXPECT_FALSE(helper.IsSpecifiedRuleItemSupported(rule));
    EXPECT_TRUE(helper.IsSpecifiedRuleItemSupported(RuleForScene("2")));
    EXPECT_THAT(observer.Lines(), ElementsAre("filter r '2' in '1' [filtered_scene]",
                                              "filter r 'AB' in 'AB,Z' [filtered_black_product]"));
}

TEST_F(RuleHelperTest, FirstFilterThatFailsIsTheReason)
{
    const RuleHelper helper(InfoOf(LAPTOP, 2), nullptr);
    const auto rule = RuleForScene("1");
    rule->blackProducts = "AB";
    rule->production = "X";
    rule->platform = "arm";
    rule->deviceType = "Phone";
    const auto reason = [&] {
        EXPECT_FALSE(helper.IsSpecifiedRuleItemSupported(rule));
        return helper.GetFilterReason();
    };
    EXPECT_EQ(reason(), Reason::FILTERED_BLACK_PRODUCT);
    rule->blackProducts = "";
    EXPECT_EQ(reason(), Reason::FILTERED_PRODUCT);
    rule->production = "";
    EXPECT_EQ(reason(), Reason::FILTERED_SCENE);
    rule->detectScene = "2";
    EXPECT_EQ(reason(), Reason::FILTERED_PLATFORM);
    rule->platform = "";
    EXPECT_EQ(reason(), Reason::FILTERED_DEVICE_TYPE);
}

TEST_F(RuleHelperTest, CodeRuleIsFoundByAnyPartOfItsDetectCode)
{
    const auto info = InfoOf(LAPTOP, 2);
    info->mTreeTag = TAG;
    info->mRuleFileDir = mDir.Path();
    const auto parser = Load(mDir, TreeXml(TAG),
                             RuleXml(TAG)
                                 .Rule(CodeRuleXml("other", "A1", "", "2"))
                                 .Rule(CodeRuleXml("first", "XABY", "", "2"))
                                 .Rule(CodeRuleXml("second", "CD", "", "1"))
                                 .Rule(CodeRuleXml("third", "CDE", "", "2")),
                             info);
    const RuleHelper helper(info, parser);
    mLog.Clear();
    EXPECT_TRUE(helper.IsSpecifiedCodeRuleSupported("AB", parser));
    EXPECT_FALSE(helper.IsSpecifiedCodeRuleSupported("CD", parser)); // the first that holds it decides
    EXPECT_TRUE(helper.IsSpecifiedCodeRuleSupported("CDE", parser));
    EXPECT_FALSE(helper.IsSpecifiedCodeRuleSupported("Z", parser));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_INFO),
                ElementsAre("FUNc:RuleHelper::IsSpecifiedCodeRuleSupported: isRunRule detectCode:AB",
                            "FUNc:RuleHelper::IsSpecifiedCodeRuleSupported: isRunRule detectCode:CD",
                            "FUNc:RuleHelper::IsSpecifiedCodeRuleSupported: isRunRule detectCode:CDE",
                            "FUNc:RuleHelper::IsSpecifiedCodeRuleSupported: isRunRule detectCode:Z"));
}

TEST_F(RuleHelperTest, WithoutCodeRulesNoneIsSupported)
{
    const auto info = InfoOf(LAPTOP, 2);
    const auto parser = std::make_shared<FaultTreeParser>(info);
    EXPECT_FALSE(RuleHelper(info, parser).IsSpecifiedCodeRuleSupported("AB", parser));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_INFO),
                ElementsAre("FUNc:RuleHelper::IsSpecifiedCodeRuleSupported: isRunRule codeRuleList is empty"));
}

TEST_F(RuleHelperTest, EmptyCodeAndNullLoaderAreQuietlyUnsupported)
{
    const auto info = InfoOf(LAPTOP, 2);
    const RuleHelper helper(info, nullptr);
    EXPECT_FALSE(helper.IsSpecifiedCodeRuleSupported("", std::make_shared<FaultTreeParser>(info)));
    EXPECT_FALSE(helper.IsSpecifiedCodeRuleSupported("AB", nullptr));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

std::shared_ptr<OrRuleSingle> OneOf(const std::string& name)
{
    return std::make_shared<OrRuleSingle>(OrRuleSingle{"singleRule", name, false, {}});
}

std::shared_ptr<OrRuleSingle> AllOf(const std::vector<std::string>& names, const std::string& type = "multipleRule")
{
    return std::make_shared<OrRuleSingle>(OrRuleSingle{type, "", false, names});
}

TEST_F(RuleHelperTest, NameFindsItsSingleRule)
{
    const OrRuleList rules{OneOf("b"), nullptr, OneOf("a"), OneOf("a")};
    EXPECT_EQ(RuleHelper::GetRuleByName("a", rules), rules[2]);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RuleHelperTest, JoinedNameFindsAnEntryThatListsItsPartsAndMore)
{
    const OrRuleList rules{AllOf({"a"}), AllOf({"b", "a", "c"}), AllOf({"a", "b"})};
    EXPECT_EQ(RuleHelper::GetRuleByName("a,b", rules), rules[1]);
    EXPECT_EQ(RuleHelper::GetRuleByName(",b,", rules), rules[1]);
}

TEST_F(RuleHelperTest, SingleRuleWhoseNameHoldsACommaIsFoundByItsWholeName)
{
    const OrRuleList rules{OneOf("a"), OneOf("a,b"), AllOf({"a", "b"})};
    EXPECT_EQ(RuleHelper::GetRuleByName("a,b", rules), rules[1]);
}

TEST_F(RuleHelperTest, ListedNameThatHoldsACommaIsNeverFoundByItsParts)
{
    const OrRuleList rules{AllOf({"a,b", "c"})};
    EXPECT_EQ(RuleHelper::GetRuleByName("a,b,c", rules), nullptr);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
                ElementsAre("FUNc:RuleHelper::GetRuleByName: Get rule instance by rule name fail."));
}

TEST_F(RuleHelperTest, NameThatNothingStandsForLogsAnError)
{
    EXPECT_EQ(RuleHelper::GetRuleByName("x", {OneOf("a"), AllOf({})}), nullptr);
    EXPECT_EQ(RuleHelper::GetRuleByName(",", {OneOf("a")}), nullptr);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR),
                ElementsAre("FUNc:RuleHelper::GetRuleByName: Get rule instance by rule name fail.",
                            "FUNc:RuleHelper::GetRuleByName: Get rule instance by rule name fail."));
}

TEST_F(RuleHelperTest, EmptyNameOrListFindsNothingQuietly)
{
    EXPECT_EQ(RuleHelper::GetRuleByName("", {OneOf("")}), nullptr);
    EXPECT_EQ(RuleHelper::GetRuleByName("a", {}), nullptr);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RuleHelperTest, NamesAreThoseThatCanBeFoundAgain)
{
    EXPECT_THAT(RuleHelper::GetRuleNamesByRuleList(
                    {OneOf("a"), nullptr, AllOf({"b", "c"}), AllOf({}), AllOf({"d"}), AllOf({"", "e"}, "other"),
                     OneOf("")}),
                ElementsAre("a", "b,c", "", "d", ",e", ""));
}

TEST_F(RuleHelperTest, WindowsAreChosenByKind)
{
    const auto item = std::make_shared<AlarmRule::AlarmItem>();
    item->duration = std::make_shared<TimeSet>();
    item->latest = std::make_shared<TimeSet>();
    EXPECT_EQ(RuleHelper::GetTimeSetByRuleType(item, TimeSet::DURATION), item->duration);
    EXPECT_EQ(RuleHelper::GetTimeSetByRuleType(item, TimeSet::DAILY_PEAK), nullptr);
    EXPECT_EQ(RuleHelper::GetTimeSetByRuleType(item, TimeSet::LATEST), item->latest);
    EXPECT_EQ(RuleHelper::GetTimeSetByRuleType(item, static_cast<TimeSet::TimeType>(7)), nullptr);
    EXPECT_EQ(RuleHelper::GetTimeSetByRuleType(nullptr, TimeSet::DURATION), nullptr);
}

TEST_F(RuleHelperTest, CarriesTheInputAndTheCurrentEvent)
{
    const auto info = InfoOf(LAPTOP, 2);
    RuleHelper helper(info, nullptr);
    EXPECT_EQ(helper.GetDetectInfo(), info);
    EXPECT_EQ(helper.GetCurrentEvent(), nullptr);
    const auto event = std::make_shared<BasicEvent>();
    helper.SetCurrentEvent(event);
    EXPECT_EQ(helper.GetCurrentEvent(), event);
}

} // namespace
