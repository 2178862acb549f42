#include "arborist/model/common_part.h"

#include <initializer_list>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/log_capture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Item = ThresholdOrLumbraBean::ThresholdItem;

ParamMap Params(const std::map<std::string, std::string>& keyById)
{
    ParamMap params;
    for (const auto& [id, key] : keyById) {
        params[id] = std::make_shared<Param>(Param{key, "string", id, ""});
    }
    return params;
}

std::shared_ptr<Logic> Condition(const std::string& logic, const std::string& paramId, const std::string& value,
    const std::vector<std::string>& set = {})
{
    auto condition = std::make_shared<Logic>();
    condition->SetLogic(logic);
    condition->SetParamId(paramId);
    condition->SetValue(value);
    condition->SetSetList(set);
    return condition;
}

std::shared_ptr<Item> ItemOf(const Item::LogicList& conditions, const std::map<std::string, std::string>& thresholds)
{
    auto item = std::make_shared<Item>();
    item->SetConditionList(conditions);
    Item::ThresholdList list;
    for (const auto& [id, value] : thresholds) {
        auto threshold = std::make_shared<ThresholdOrLumbraBean::Threshold>();
        threshold->SetId(id);
        threshold->SetValue(value);
        list.push_back(threshold);
    }
    list.push_back(nullptr);
    item->SetThresholdList(list);
    return item;
}

class CommonPartTest : public testing::Test {
protected:
    CommonPartTest()
    {
        mBean->SetName("Jank");
        mBean->SetSystemParaMap(Params({{"1", "CPU_NAME"}, {"2", "RAM_SIZE"}, {"3", "RESOLUTION"},
            {"4", "BATTFULL_DESIGN"}, {"5", "SOMETHING"}}));
        mBean->SetThresholdMap(Params({{"T1", "limit"}, {"T2", "other"}}));
        mBlock->SetThresholdLumbraList({nullptr, mBean});
        mPart.SetCombineCommon(mBlock);
    }

    void SetItems(const ThresholdOrLumbraBean::ThresholdItemList& items) { mBean->SetThresholdItemList(items); }
    void SetThreshold() { mPart.SetThreshold("i7", "16G", "4K", "5000"); }
    std::string System(const std::string& id) const { return mPart.GetSystemValue(id, "Jank"); }
    std::string Threshold(const std::string& id) const { return mPart.GetThresholdValue(id, "Jank"); }

    std::shared_ptr<ThresholdOrLumbraBean> mBean = std::make_shared<ThresholdOrLumbraBean>();
    std::shared_ptr<CommonPart::CombineCommonPart> mBlock = std::make_shared<CommonPart::CombineCommonPart>();
    CommonPart mPart;
};

// A rule whose statement names no such table isn't opened by it.
TEST_F(CommonPartTest, ATableThatLacksRowsMattersToTheRulesThatNameIt)
{
    EXPECT_TRUE(mPart.AreTablesWhole("Jank", "select n from Jank"));
    mBean->SetTableState(ThresholdOrLumbraBean::TableState::INCOMPLETE);
    EXPECT_FALSE(mPart.AreTablesWhole("Jank", "select 1"));
    EXPECT_FALSE(mPart.AreTablesWhole("Other", "select n from JANK"));
    EXPECT_TRUE(mPart.AreTablesWhole("Other", "select n from Other"));
}

TEST_F(CommonPartTest, DeviceAttributesFillTheSystemParametersOfTheirKeys)
{
    SetThreshold();
    EXPECT_EQ(System("1"), "i7");
    EXPECT_EQ(System("2"), "16G");
    EXPECT_EQ(System("3"), "4K");
    EXPECT_EQ(System("4"), "5000");
    EXPECT_EQ(System("5"), "");
}

TEST_F(CommonPartTest, OneEmptyAttributeChangesNothingAtAll)
{
    SetItems({ItemOf({Condition("gt", "1", "")}, {{"T1", "7"}})});
    mPart.SetThreshold("i7", "16G", "", "5000");
    EXPECT_EQ(System("1"), "");
    EXPECT_EQ(Threshold("T1"), "");
    mPart.SetThreshold("", "16G", "4K", "5000");
    mPart.SetThreshold("i7", "", "4K", "5000");
    mPart.SetThreshold("i7", "16G", "4K", "");
    EXPECT_EQ(System("2"), "");
}

TEST_F(CommonPartTest, BothConditionsOfAnItemMustHold)
{
    const auto item = ItemOf({Condition("eq", "1", "i7"), Condition("in", "2", "", {"8G", "16G"})}, {{"T1", "7"}});
    SetItems({item});
    mPart.SetThreshold("i7", "32G", "4K", "5000");
    EXPECT_EQ(Threshold("T1"), "");
    mPart.SetThreshold("i5", "16G", "4K", "5000");
    EXPECT_EQ(Threshold("T1"), "");
    SetThreshold();
    EXPECT_EQ(Threshold("T1"), "7");
}

TEST_F(CommonPartTest, BeanWithoutSystemParametersIsSetOnlyByItemsThatLookAtNone)
{
    mBean->SetSystemParaMap({});
    SetItems({ItemOf({Condition("eq", "1", "i7")}, {{"T1", "7"}}), ItemOf({Condition("le", "1", "0")}, {{"T2", "9"}})});
    SetThreshold();
    EXPECT_EQ(Threshold("T1"), "");
    EXPECT_EQ(Threshold("T2"), "9");
}

TEST_F(CommonPartTest, ConditionOnAnUnknownParameterNeverHolds)
{
    SetItems({ItemOf({Condition("eq", "99", "")}, {{"T1", "7"}}),
        ItemOf({Condition("in", "99", "", {""}), Condition("eq", "1", "i7")}, {{"T1", "8"}})});
    SetThreshold();
    EXPECT_EQ(Threshold("T1"), "");
}

TEST_F(CommonPartTest, AnyOtherComparisonWordHoldsAlways)
{
    SetItems({ItemOf({Condition("gt", "99", "100")}, {{"T1", "7"}})});
    SetThreshold();
    EXPECT_EQ(Threshold("T1"), "7");
}

TEST_F(CommonPartTest, LaterOfTwoItemsThatApplyWins)
{
    SetItems({ItemOf({Condition("eq", "1", "i7")}, {{"T1", "7"}}), nullptr,
        ItemOf({Condition("eq", "2", "16G")}, {{"T1", "8"}})});
    SetThreshold();
    EXPECT_EQ(Threshold("T1"), "8");
}

TEST_F(CommonPartTest, ItemWithoutConditionsNeverApplies)
{
    SetItems({ItemOf({}, {{"T1", "7"}})});
    SetThreshold();
    EXPECT_EQ(Threshold("T1"), "");
}

TEST_F(CommonPartTest, UnknownThresholdIdIsPassedOverAndItsNeighboursAreSet)
{
    SetItems({ItemOf({Condition("eq", "1", "i7")}, {{"T0", "1"}, {"T1", "2"}, {"T9", "3"}, {"T2", "4"}})});
    SetThreshold();
    EXPECT_EQ(Threshold("T1"), "2");
    EXPECT_EQ(Threshold("T2"), "4");
}

TEST_F(CommonPartTest, LookUpsThatFindNothingAreEmpty)
{
    EXPECT_EQ(Threshold("T1"), "");
    EXPECT_EQ(Threshold("none"), "");
    EXPECT_EQ(System("none"), "");
    EXPECT_EQ(mPart.GetThresholdValue("T1", "NoSuchBean"), "");
    EXPECT_EQ(mPart.GetSystemValue("1", "NoSuchBean"), "");
    mBean->SetThresholdMap({{"T1", nullptr}});
    EXPECT_EQ(Threshold("T1"), "");
}

TEST_F(CommonPartTest, FirstOfTwoBeansWithOneNameAnswers)
{
    auto second = std::make_shared<ThresholdOrLumbraBean>();
    second->SetName("Jank");
    second->SetThresholdMap(Params({{"T3", "limit"}}));
    second->GetThresholdMap().at("T3")->value = "1";
    mBlock->SetThresholdLumbraList({mBean, second});
    EXPECT_EQ(Threshold("T3"), "");
}

TEST_F(CommonPartTest, ThresholdBeanIsThereByNameAndNotByTheEmptyOne)
{
    mBlock->SetThresholdLumbraList({mBean, std::make_shared<ThresholdOrLumbraBean>()});
    EXPECT_TRUE(mPart.IsHasThredCommonPart("Jank"));
    EXPECT_FALSE(mPart.IsHasThredCommonPart("jank"));
    EXPECT_FALSE(mPart.IsHasThredCommonPart(""));
}

TEST_F(CommonPartTest, TableBeanIsCopiedByName)
{
    auto bean = std::make_shared<DefDbTableBean>();
    bean->SetName("Ext");
    bean->SetCopyDbFileList({"a.db"});
    mBlock->SetDefDbTableCommonList({nullptr, std::make_shared<DefDbTableBean>(), bean});
    const auto copy = mPart.GetDefDbCommonPart("Ext");
    ASSERT_TRUE(copy.has_value());
    EXPECT_THAT(copy->GetCopyDbFileList(), ElementsAre("a.db"));
    EXPECT_FALSE(mPart.GetDefDbCommonPart("ext").has_value());
    EXPECT_FALSE(mPart.GetDefDbCommonPart("").has_value());
}

TEST_F(CommonPartTest, SetHoldsExactEntriesOnly)
{
    EXPECT_TRUE(mPart.IsCheckSet("a", {"b", "a"}));
    EXPECT_FALSE(mPart.IsCheckSet("a", {"A", "ab"}));
    EXPECT_FALSE(mPart.IsCheckSet("", {}));
}

TEST(CommonPartWithoutBlock, AnswersNothing)
{
    CommonPart part;
    part.SetThreshold("a", "b", "c", "d");
    EXPECT_FALSE(part.IsHasThredCommonPart("x"));
    EXPECT_EQ(part.GetThresholdValue("a", "x"), "");
    EXPECT_EQ(part.GetSystemValue("a", "x"), "");
    EXPECT_FALSE(part.GetDefDbCommonPart("x").has_value());
}

TEST(LumbraDataItemTest, BoundsAreNumbersAndZeroForAnyOtherText)
{
    LogCapture log;
    ThresholdOrLumbraBean::LumbraDataItem item;
    EXPECT_EQ(item.GetAlarmIdMin(), 0);
    EXPECT_EQ(item.GetAlarmIdMax(), 0);
    EXPECT_THAT(log.Lines(), IsEmpty());
    item.SetAlarmIdMin("abc");
    item.SetAlarmIdMax("-12 or so");
    EXPECT_EQ(item.GetAlarmIdMin(), 0);
    EXPECT_EQ(item.GetAlarmIdMax(), -12);
    EXPECT_THAT(log.Lines(), ElementsAre("FUNc:StringUtil::StollS: stoll exception: invalid stoll argument"));
}

TEST_F(CommonPartTest, NullParametersAndConditionsNeverHold)
{
    ParamMap params = mBean->GetSystemParamMap();
    params["6"] = nullptr;
    mBean->SetSystemParaMap(params);
    SetItems({ItemOf({nullptr}, {{"T1", "7"}}), ItemOf({Condition("eq", "1", "i7")}, {{"T2", "8"}})});
    SetThreshold();
    EXPECT_EQ(System("4"), "5000") << "the others are set";
    EXPECT_EQ(System("6"), "");
    EXPECT_EQ(Threshold("T1"), "");
    EXPECT_EQ(Threshold("T2"), "8");
}

TEST(CommonPartWithoutBlock, HasNoTableThatLacksRows)
{
    EXPECT_TRUE(CommonPart().AreTablesWhole("Jank", "select n from Jank"));
}

} // namespace
