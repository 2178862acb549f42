#include "arborist/model/rule.h"

#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/log_capture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::shared_ptr<Param> ParamOfKey(const std::string& key)
{
    auto param = std::make_shared<Param>();
    param->key = key;
    return param;
}

TEST(RuleTest, EachFamilyNamesItselfAndTheBaseHasNoName)
{
    EXPECT_EQ(Rule().GetRuleType(), "");
    EXPECT_EQ(AlarmRule().GetRuleType(), "AlarmRule");
    EXPECT_EQ(CodeRule().GetRuleType(), "CodeRule");
    EXPECT_EQ(CommandRule().GetRuleType(), "CommandRule");
    EXPECT_EQ(NodeRule().GetRuleType(), "NodeRule");
}

TEST(AlarmItemTest, StartsFromResetOrUpdateWithoutWindowsAndTests)
{
    const AlarmRule::AlarmItem item;
    EXPECT_EQ(item.BeginFlag, "1");
    EXPECT_EQ(item.duration, nullptr);
    EXPECT_EQ(item.daily_peak, nullptr);
    EXPECT_EQ(item.latest, nullptr);
    EXPECT_THAT(item.params, IsEmpty());
    EXPECT_THAT(item.conditionList, IsEmpty());
    EXPECT_FALSE(item.flag);
}

TEST(AlarmItemTest, AbsentBoundIsZeroInSilence)
{
    const LogCapture log;
    EXPECT_EQ(AlarmRule::AlarmItem().GetEventIdMin(), 0);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(AlarmItemTest, BoundThatIsNoNumberIsZeroAndLogged)
{
    const LogCapture log;
    AlarmRule::AlarmItem item;
    item.Eventid_Max = "abc";
    EXPECT_EQ(item.GetEventIdMax(), 0);
    EXPECT_THAT(log.Lines(), SizeIs(1));
}

TEST(AlarmItemTest, BoundIsReadAsDecimal)
{
    AlarmRule::AlarmItem item;
    item.Eventid_Min = "920000000";
    EXPECT_EQ(item.GetEventIdMin(), 920000000);
}

TEST(TimeSetTest, IsAnEmptyDurationByDefault)
{
    const TimeSet window;
    EXPECT_EQ(window.type, "");
    EXPECT_EQ(window.period, 0);
    EXPECT_EQ(window.threshold, 0);
    EXPECT_EQ(window.timeType, TimeSet::DURATION);
}

TEST(CommandRuleTest, ReferencesNoDatabaseAndStartsFromResetOrUpdateByDefault)
{
    const CommandRule rule;
    EXPECT_EQ(rule.referenceDefDb, nullptr);
    EXPECT_EQ(rule.analysisMethod.sqlItem.BeginFlag, "1");
}

TEST(NodeRuleTest, InsertedParamsKeepTheFirstOfAnId)
{
    NodeRule rule;
    rule.InsertParamMap({{"a", ParamOfKey("first")}});
    rule.InsertParamMap({{"a", ParamOfKey("second")}, {"b", ParamOfKey("third")}});
    ASSERT_THAT(rule.GetParamMap(), SizeIs(2));
    EXPECT_EQ(rule.GetParamMap().at("a")->key, "first");
    EXPECT_EQ(rule.GetParamMap().at("b")->key, "third");
}

TEST(NodeRuleTest, SetReplacesListsAndInsertAppends)
{
    const auto node = std::make_shared<NodeInfo>();
    const auto condition = std::make_shared<OrLogic>();
    NodeRule rule;
    rule.SetNodeInfoList({std::make_shared<NodeInfo>()});
    rule.SetNodeInfoList({node});
    rule.InsertNodeInfoList({});
    rule.InsertNodeInfoList({node});
    rule.SetConditionList({condition});
    rule.InsertConditionList({condition});
    EXPECT_THAT(rule.GetNodeInfoList(), ElementsAre(node, node));
    EXPECT_THAT(rule.GetConditionList(), ElementsAre(condition, condition));
}

TEST(NodeRuleTest, TheExpressionIsCopiedIntoTheRule)
{
    NodeRule::LogicExpression expression;
    expression.SetExpress("a+b");
    expression.SetRet("sum");
    expression.SetType("formula");
    NodeRule rule;
    rule.SetLogicExpression(expression);
    expression.SetExpress("changed");
    EXPECT_EQ(rule.GetLogicExpression().GetExpress(), "a+b");
    EXPECT_EQ(rule.GetLogicExpression().GetRet(), "sum");
    EXPECT_EQ(rule.GetLogicExpression().GetType(), "formula");
}

} // namespace
