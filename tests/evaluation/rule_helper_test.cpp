#include "arborist/evaluation/rule_helper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/log.h"
#include "arborist/model/event.h"
#include "tests/evaluation/laptop.h"
#include "tests/evaluation/rule_set.h"
#include "tests/support/log_capture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Evidence::Reason;

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

TEST_F(RuleHelperTest, NullRuleAndNullInputAreRejected)
{
    EXPECT_FALSE(Passes(InfoOf(LAPTOP, 2), nullptr));
    EXPECT_FALSE(Passes(nullptr, RuleForScene("2")));
}

TEST_F(RuleHelperTest, FilterThatRejectsIsReturnedWithBothTexts)
{
    const RuleHelper helper(InfoOf(LAPTOP, 2), nullptr);
    const auto rule = RuleForScene("1");
    rule->production = "AB";
    EXPECT_FALSE(helper.IsSpecifiedRuleItemSupported(rule));
    const auto rejection = helper.Reject(*rule);
    ASSERT_TRUE(rejection.has_value());
    EXPECT_EQ(rejection->reason, Reason::FILTERED_SCENE);
    EXPECT_EQ(rejection->deviceValue, "2");
    EXPECT_EQ(rejection->ruleText, "1");
    EXPECT_TRUE(helper.IsSpecifiedRuleItemSupported(RuleForScene("2")));
    EXPECT_FALSE(helper.Reject(*RuleForScene("2")).has_value());
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
    RuleHelper helper(info, parser);
    mLog.Clear();
    EXPECT_TRUE(helper.IsSpecifiedCodeRuleSupported("AB", parser));
    EXPECT_FALSE(helper.IsSpecifiedCodeRuleSupported("CD", parser)); // the first that contains it decides
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
    RuleHelper helper(info, nullptr);
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
