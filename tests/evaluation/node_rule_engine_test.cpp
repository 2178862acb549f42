#include "arborist/evaluation/node_rule_engine.h"

#include <gmock/gmock.h>

#include "tests/evaluation/node_rule_fixture.h"
#include "tests/support/evidence_lines.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Evidence::Reason;

using NodeRuleEngineTest = NodeRuleFixture;

TEST_F(NodeRuleEngineTest, FormulaOverNodesIsHeldAgainstTheLimitAsANumber)
{
    NodeFile("full", "30\n");
    NodeFile("design", "4\n");
    AddParam("1", "full", "");
    AddParam("2", "design", "");
    const auto ratio = AddParam("3", "ratio", "double");
    Express("full / design", "ratio");
    Conditions({SingleTest("gt", "7.25")});
    EXPECT_TRUE(Ask());
    EXPECT_EQ(ratio->value, "7.500000");
    EXPECT_EQ(mEngine.GetReason(), Reason::CONDITION_MET);
    Conditions({SingleTest("gt", "10.5")}); // as texts "7.500000" would be greater
    EXPECT_FALSE(Ask());
    EXPECT_EQ(mEngine.GetReason(), Reason::CONDITION_NOT_MET);
}

TEST_F(NodeRuleEngineTest, WithoutAReturnParameterConditionsSeeTheRawContents)
{
    NodeFile("mode", "on");
    const auto mode = AddParam("1", "mode", "string");
    Express("mode + 1", "");
    Conditions({SingleTest("eq", "on")});
    EXPECT_TRUE(Ask());
    EXPECT_EQ(mode->value, "on");
}

TEST_F(NodeRuleEngineTest, IncompleteOrBlankExpressionIsNotWorkedOut)
{
    NodeFile("a", "5");
    const auto param = AddParam("1", "a", "int");
    for (const auto& [express, type] : {std::pair("", "calc"), std::pair("a+1", ""), std::pair("   ", "calc")}) {
        Express(express, "a", type);
        Ask();
        EXPECT_EQ(param->value, "5");
    }
    Express("a+1", "a");
    Ask();
    EXPECT_EQ(param->value, "6.000000");
}

TEST_F(NodeRuleEngineTest, IllFormedFormulaGivesTheEmptyValueThatNeverHits)
{
    NodeFile("a", "-5");
    AddParam("1", "a", "");
    const auto result = AddParam("2", "r", "int");
    result->value = "9";
    Express("a * 2", "r");
    Conditions({SingleTest("ne", "1")});
    EXPECT_FALSE(Ask());
    EXPECT_EQ(result->value, "");
    EXPECT_EQ(mEngine.GetReason(), Reason::NO_VALUE);
}

TEST_F(NodeRuleEngineTest, EveryParameterWithTheKeyTakesTheValueAndTheFirstGivesIt)
{
    NodeFile("a", "5");
    const auto first = AddParam("1", "a", "");
    const auto second = AddParam("2", "a", "");
    const auto results = {AddParam("3", "r", "int"), AddParam("4", "r", "int")};
    mRule->InsertParamMap({{"0", nullptr}});
    Express("a", "r");
    Ask();
    EXPECT_EQ(first->value, "5");
    EXPECT_EQ(second->value, "5");
    for (const auto& result : results) {
        EXPECT_EQ(result->value, "5.000000");
    }
}

TEST_F(NodeRuleEngineTest, AmongManyParametersTheMeantOnesAreFound)
{
    NodeFile("b", "3");
    for (int other = 10; other < 30; ++other) {
        AddParam(std::to_string(other), "c" + std::to_string(40 - other), "int");
    }
    mRule->InsertParamMap({{"30", nullptr}});
    const auto first = AddParam("31", "b", "");
    const auto second = AddParam("32", "b", "");
    const auto results = {AddParam("33", "a", "int"), AddParam("34", "a", "int")};
    Express("b + 1", "a");
    Conditions({MultipleTest({Item("33", "eq", "4"), Item("34", "eq", "4")})});
    EXPECT_TRUE(Ask());
    EXPECT_EQ(first->value, "3");
    EXPECT_EQ(second->value, "3");
    for (const auto& result : results) {
        EXPECT_EQ(result->value, "4.000000");
    }
    Conditions({MultipleTest({Item("33", "eq", "4"), Item("35", "eq", "4")})});
    EXPECT_FALSE(Ask());
    EXPECT_EQ(mEngine.GetReason(), Reason::NO_VALUE);
}

TEST_F(NodeRuleEngineTest, OfTwoNodesForOneParameterTheLaterCountsEvenWhenItCantBeRead)
{
    NodeFile("a", "5");
    const auto param = AddParam("1", "a", "int");
    mDir.Write("b", "6");
    Node("a", "b");
    Ask();
    EXPECT_EQ(param->value, "6");
    Node("a", "none");
    Ask();
    EXPECT_EQ(param->value, "");
}

TEST_F(NodeRuleEngineTest, TextThatIsNoNumberComparesAsZero)
{
    NodeFile("a", "many");
    AddParam("1", "a", "int");
    Conditions({SingleTest("eq", "0")});
    EXPECT_TRUE(Ask());
    EXPECT_THAT(mLog.Lines(), ElementsAre("FUNc:StringUtil::StollS: stoll exception: invalid stoll argument"));
}

TEST_F(NodeRuleEngineTest, TextThatIsNoNumberCountsAsZeroInTheFormula)
{
    NodeFile("a", "many");
    ExpectThatAIsZeroInAFormula();
}

TEST_F(NodeRuleEngineTest, ConditionOfUnknownTypeIsPassedOver)
{
    NodeFile("a", "5");
    AddParam("1", "a", "int");
    Conditions({SingleTest("eq", "5", "other")});
    EXPECT_FALSE(Ask());
    EXPECT_EQ(mEngine.GetReason(), Reason::UNKNOWN_CONDITION);
    Conditions({SingleTest("eq", "6", "other"), SingleTest("eq", "5")});
    EXPECT_TRUE(Ask());
}

TEST_F(NodeRuleEngineTest, FirstKnownConditionDecidesAlone)
{
    NodeFile("a", "5");
    AddParam("1", "a", "int");
    Conditions({SingleTest("eq", "6"), SingleTest("eq", "5")});
    EXPECT_FALSE(Ask());
    EXPECT_EQ(mEngine.GetReason(), Reason::CONDITION_NOT_MET);
    Conditions({MultipleTest({Item("1", "eq", "6")}), SingleTest("eq", "5")});
    EXPECT_FALSE(Ask());
}

TEST_F(NodeRuleEngineTest, NullConditionEndsWithFalse)
{
    NodeFile("a", "5");
    AddParam("1", "a", "int");
    Conditions({SingleTest("eq", "5", "other"), nullptr, SingleTest("eq", "5")});
    EXPECT_FALSE(Ask());
    Conditions({});
    EXPECT_FALSE(Ask());
    EXPECT_EQ(mEngine.GetReason(), Reason::NO_CONDITION);
}

TEST_F(NodeRuleEngineTest, SingleConditionHitsOnAnyParameterWhateverItsId)
{
    NodeFile("a", "5");
    NodeFile("b", "9");
    AddParam("1", "a", "int");
    AddParam("2", "b", "int");
    const auto condition = SingleTest("eq", "9");
    condition->SetParamId("1");
    Conditions({condition});
    EXPECT_TRUE(Ask());
}

TEST_F(NodeRuleEngineTest, ItemsLookAtTheParameterWithTheirId)
{
    NodeFile("a", "5");
    NodeFile("b", "9");
    AddParam("1", "a", "int");
    AddParam("2", "b", "int");
    const auto first = Item("1", "eq", "5");
    const auto second = Item("2", "eq", "9");
    Conditions({MultipleTest({first, nullptr, second})});
    EXPECT_TRUE(Ask());
    EXPECT_TRUE(first->IsResult());
    EXPECT_TRUE(second->IsResult());
    mDir.Write("a", "9");
    EXPECT_FALSE(Ask());
    EXPECT_FALSE(first->IsResult());
    EXPECT_TRUE(second->IsResult()); // all items are evaluated
}

TEST_F(NodeRuleEngineTest, ItemWithoutItsParameterFailsTheWholeCondition)
{
    NodeFile("a", "5");
    AddParam("1", "a", "int");
    Conditions({MultipleTest({Item("1", "eq", "5"), Item("9", "eq", "5")})});
    EXPECT_FALSE(Ask());
    EXPECT_EQ(mEngine.GetReason(), Reason::NO_VALUE);
}

TEST_F(NodeRuleEngineTest, MultipleConditionWithoutItemsHolds)
{
    NodeFile("a", "5");
    AddParam("1", "a", "int");
    Conditions({MultipleTest({})});
    EXPECT_TRUE(Ask());
}

TEST_F(NodeRuleEngineTest, WithoutEventIdNodesOrParametersItIsFalseAndReadsNothing)
{
    Evidence::Rule record;
    mEngine.SetRecord(&record);
    EXPECT_FALSE(mEngine.IsFaultHappened(nullptr, "A"));
    EXPECT_FALSE(mEngine.IsFaultHappened(std::make_shared<CodeRule>(), "A"));
    AddParam("1", "a", "int");
    EXPECT_FALSE(Ask());
    EXPECT_EQ(mEngine.GetReason(), Reason::NO_NODES);
    NodeFile("a", "5");
    Conditions({SingleTest("eq", "5")});
    EXPECT_FALSE(mEngine.IsFaultHappened(mRule, ""));
    mRule->SetParamMap({});
    EXPECT_FALSE(Ask());
    EXPECT_THAT(EvidenceLines(record), IsEmpty());
}

TEST_F(NodeRuleEngineTest, NullNodesArePassedOver)
{
    mRule->InsertNodeInfoList({nullptr});
    NodeFile("a", "5");
    AddParam("1", "a", "int");
    Conditions({SingleTest("eq", "5")});
    EXPECT_TRUE(Ask());
}

TEST_F(NodeRuleEngineTest, NullParametersArePassedOver)
{
    NodeFile("mode", "on");
    mRule->InsertParamMap({{"0", nullptr}});
    AddParam("1", "mode", "string");
    Conditions({SingleTest("eq", "on")});
    EXPECT_TRUE(Ask());
    Conditions({SingleTest("eq", "off")});
    EXPECT_FALSE(Ask());
}

} // namespace
