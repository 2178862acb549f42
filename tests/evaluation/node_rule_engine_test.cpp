#include "arborist/evaluation/node_rule_engine.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/settings.h"
#include "arborist/model/rule.h"
#include "tests/support/log_capture.h"
#include "tests/support/evidence_lines.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Evidence::Reason;

std::shared_ptr<OrLogic> SingleTest(const std::string& logic, const std::string& value,
                                    const std::string& type = "single_logic")
{
    auto condition = std::make_shared<OrLogic>();
    condition->SetType(type);
    condition->SetLogic(logic);
    condition->SetValue(value);
    return condition;
}

std::shared_ptr<OrLogic::LogicItem> Item(const std::string& paramId, const std::string& logic, const std::string& value)
{
    auto item = std::make_shared<OrLogic::LogicItem>();
    item->SetParamId(paramId);
    item->SetLogic(logic);
    item->SetValue(value);
    return item;
}

std::shared_ptr<OrLogic> MultipleTest(const OrLogic::LogicItemList& items)
{
    auto condition = std::make_shared<OrLogic>();
    condition->SetType("multiple_logic");
    condition->SetLogicItemList(items);
    return condition;
}

class NodeRuleEngineTest : public testing::Test {
protected:
    void Node(const std::string& param, const std::string& path)
    {
        auto node = std::make_shared<NodeInfo>();
        node->SetParam(param);
        node->SetPath(path);
        mRule->InsertNodeInfoList({node});
    }

    // A node with its file in the test's folder.
    void NodeFile(const std::string& param, const std::string& value)
    {
        mDir.Write(param, value);
        Node(param, param);
    }

    std::shared_ptr<Param> AddParam(const std::string& id, const std::string& key, const std::string& type)
    {
        auto param = std::make_shared<Param>(Param{key, type, id, ""});
        mRule->InsertParamMap({{id, param}});
        return param;
    }

    void Express(const std::string& express, const std::string& ret, const std::string& type = "calc")
    {
        NodeRule::LogicExpression expression;
        expression.SetExpress(express);
        expression.SetRet(ret);
        expression.SetType(type);
        mRule->SetLogicExpression(expression);
    }

    void Conditions(const ConditionList& conditions) { mRule->SetConditionList(conditions); }

    bool Ask() { return mEngine.IsFaultHappened(mRule, "A"); }

    void ExpectThatAIsZeroInAFormula()
    {
        AddParam("1", "a", "");
        AddParam("2", "r", "double");
        Express("a + 2", "r");
        Conditions({SingleTest("eq", "2")});
        EXPECT_TRUE(Ask());
        EXPECT_THAT(mLog.Lines(), ElementsAre("FUNc:StringUtil::StringToDoubleDef: stod error"));
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::shared_ptr<NodeRule> mRule = std::make_shared<NodeRule>();
    NodeRuleEngine mEngine;
};

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

TEST_F(NodeRuleEngineTest, FilesAreReadAnewAtEachCall)
{
    NodeFile("a", "5");
    const auto param = AddParam("1", "a", "int");
    Conditions({SingleTest("gt", "5")});
    EXPECT_FALSE(Ask());
    mDir.Write("a", "6");
    EXPECT_TRUE(Ask());
    EXPECT_EQ(param->value, "6");
}

TEST_F(NodeRuleEngineTest, MissingFileGivesTheEmptyValue)
{
    Node("a", "none");
    const auto param = AddParam("1", "a", "int");
    param->value = "7";
    Conditions({SingleTest("ne", "1")});
    EXPECT_FALSE(Ask());
    EXPECT_EQ(param->value, "");
    EXPECT_EQ(mEngine.GetReason(), Reason::NODE_UNREADABLE);
}

TEST_F(NodeRuleEngineTest, MissingFileCountsAsZeroInTheFormula)
{
    Node("a", "none");
    ExpectThatAIsZeroInAFormula();
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

TEST_F(NodeRuleEngineTest, NodePathsLieBelowTheDeviceRoot)
{
    mDir.Write("root/sys/value", "5");
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("root"));
    Node("a", "/sys/value");
    AddParam("1", "a", "int");
    Conditions({SingleTest("eq", "5")});
    EXPECT_TRUE(Ask());
}

TEST_F(NodeRuleEngineTest, LinkOfACapturedDeviceIsFollowedWithinTheDevice)
{
    mDir.Write("root/devices/value", "5");
    mDir.Write("devices/value", "6");
    mDir.MakeDir("root/sys");
    std::filesystem::create_symlink("/devices/value", mDir.Path("root/sys/value"));
    std::filesystem::create_symlink("../../devices/value", mDir.Path("root/sys/relative"));
    mSettings.Set(Settings::DEVICE_ROOT_DIR, mDir.Path("root"));
    Node("a", "/sys/value");
    Node("b", "/sys/relative");
    AddParam("1", "a", "int");
    AddParam("2", "b", "int");
    Conditions({MultipleTest({Item("1", "eq", "5"), Item("2", "eq", "5")})});
    EXPECT_TRUE(Ask());
}

TEST_F(NodeRuleEngineTest, DirectoryIsUnreadable)
{
    mDir.MakeDir("folder");
    Node("a", "folder");
    AddParam("1", "a", "int");
    Conditions({SingleTest("eq", "0")});
    EXPECT_FALSE(Ask());
    EXPECT_EQ(mEngine.GetReason(), Reason::NODE_UNREADABLE);
}

TEST_F(NodeRuleEngineTest, FilesOfADetectionBeyond256MebibytesCountAsUnreadable)
{
    constexpr std::size_t LARGEST = 32 * 1024 * 1024;
    std::filesystem::resize_file(mDir.Write("large", "5\n"), LARGEST);
    mDir.Write("small", "5\n");
    AddParam("1", "small", "int");
    Conditions({SingleTest("eq", "5")});
    for (std::size_t bytes = 0; bytes < NodeRuleEngine::MOST_BYTES; bytes += LARGEST) {
        Node("large", "large"); // no parameter keeps it
    }
    Node("small", "small");
    EXPECT_FALSE(Ask());
    EXPECT_EQ(mEngine.GetReason(), Reason::NODE_UNREADABLE);
    const char* const line =
        "FUNc:NodeRuleEngine::SetParamValue: the node files have 268435456 bytes or more, no other is read.";
    EXPECT_THAT(mLog.Lines(), ElementsAre(line));

    mRule = std::make_shared<NodeRule>();
    Node("small", "small");
    AddParam("1", "small", "int");
    Conditions({SingleTest("eq", "5")});
    EXPECT_FALSE(Ask());
    mEngine.StartDetection();
    EXPECT_TRUE(Ask());
    EXPECT_THAT(mLog.Lines(), ElementsAre(line));
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

TEST_F(NodeRuleEngineTest, FilesFormulaAndComparisonsAreNoted)
{
    Evidence::Rule record;
    mEngine.SetRecord(&record);
    NodeFile("a", "10");
    Node("b", "none");
    AddParam("1", "a", "int");
    AddParam("2", "r", "double");
    Express("a - 3 - 2", "r");
    Conditions({MultipleTest({Item("2", "lt", "9.5"), Item("1", "lt", "9"), Item("3", "eq", "1")})});
    EXPECT_FALSE(Ask());
    EXPECT_THAT(EvidenceLines(record),
                ElementsAre("node a a = '10'", "node b none unreadable ''",
                            "formula r = a - 3 - 2 as a - (3 - 2) -> 9.000000",
                            "compare 2 r double '9.000000' lt '9.5' holds", "compare 1 a int '10' lt '9' fails",
                            "compare 3   '' eq '1' fails", "note [unknown_name]"));
}

TEST_F(NodeRuleEngineTest, AMissingNodeIsNotedAlsoWhenTheConditionIsMet)
{
    Evidence::Rule record;
    mEngine.SetRecord(&record);
    NodeFile("a", "10");
    Node("b", "none");
    AddParam("1", "a", "int");
    AddParam("2", "b", "");
    Conditions({SingleTest("eq", "10")});
    EXPECT_TRUE(Ask());
    EXPECT_THAT(record.notes, ElementsAre(Reason::NODE_UNREADABLE));
    record = {};
    Conditions({SingleTest("eq", "11")});
    EXPECT_FALSE(Ask());
    EXPECT_EQ(mEngine.GetReason(), Reason::NODE_UNREADABLE);
    EXPECT_THAT(record.notes, IsEmpty()) << "what decided is told once";
}

// The quotient is 0 whatever the condition makes of it.
TEST_F(NodeRuleEngineTest, DivisionByZeroIsNotedWhetherTheConditionIsMetOrNot)
{
    Evidence::Rule record;
    NodeFile("errors", "7");
    NodeFile("packets", "0");
    AddParam("1", "errors", "");
    AddParam("2", "packets", "");
    const auto share = AddParam("3", "share", "double");
    Express("100 * errors / packets", "share");
    for (const auto& [limit, answer] : {std::pair("5", false), std::pair("-1", true)}) {
        record = {};
        mEngine.SetRecord(&record);
        Conditions({SingleTest("gt", limit)});
        EXPECT_EQ(Ask(), answer);
        EXPECT_EQ(share->value, "0.000000");
        EXPECT_THAT(record.notes, ElementsAre(Reason::DIVISION_BY_ZERO));
    }
    mDir.Write("packets", "4");
    record = {};
    mEngine.SetRecord(&record);
    EXPECT_TRUE(Ask());
    EXPECT_THAT(record.notes, IsEmpty());
}

TEST_F(NodeRuleEngineTest, ExpressionOfBlanksIsNoted)
{
    Evidence::Rule record;
    mEngine.SetRecord(&record);
    NodeFile("a", "5");
    AddParam("1", "a", "int");
    Express("  ", "a");
    Conditions({SingleTest("eq", "5")});
    EXPECT_TRUE(Ask());
    EXPECT_THAT(record.notes, ElementsAre(Reason::BAD_FORMULA));
}

TEST_F(NodeRuleEngineTest, AnswersAndLogAreTheSameWithAndWithoutARecord)
{
    NodeFile("a", "x");
    AddParam("1", "a", "int");
    AddParam("2", "r", "double");
    Express("a / (3", "r");
    Conditions({SingleTest("eq", "y")});
    const bool before = Ask();
    const auto lines = mLog.Lines();
    mLog.Clear();
    Evidence::Rule record;
    mEngine.SetRecord(&record);
    EXPECT_EQ(Ask(), before);
    EXPECT_EQ(mLog.Lines(), lines);
    EXPECT_FALSE(lines.empty());
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

TEST_F(NodeRuleEngineTest, EveryFileIsReadAlsoBehindOneThatCanNotBe)
{
    Evidence::Rule record;
    mEngine.SetRecord(&record);
    Node("gone", "gone");
    Node("none", "none");
    NodeFile("mode", "on");
    AddParam("1", "gone", "string");
    AddParam("2", "none", "string");
    AddParam("3", "mode", "string");
    Conditions({SingleTest("eq", "off")});
    EXPECT_FALSE(Ask());
    EXPECT_EQ(mEngine.GetReason(), Reason::NODE_UNREADABLE);
    Conditions({SingleTest("eq", "on")});
    EXPECT_TRUE(Ask());
    mEngine.SetRecord(nullptr);
}

TEST_F(NodeRuleEngineTest, WithoutAParameterOfAnyTypeASingleConditionComparesNothing)
{
    Evidence::Rule record;
    mEngine.SetRecord(&record);
    NodeFile("mode", "on");
    AddParam("1", "mode", "");
    Conditions({SingleTest("eq", "on")});
    EXPECT_FALSE(Ask());
    EXPECT_THAT(record.notes, ElementsAre(Reason::UNKNOWN_NAME));
    record.notes.clear();
    Conditions({MultipleTest({Item("1", "eq", "on")})});
    EXPECT_FALSE(Ask());
    EXPECT_THAT(record.notes, ElementsAre(Reason::UNKNOWN_NAME)) << "of an item, too";
    mEngine.SetRecord(nullptr);
}

TEST_F(NodeRuleEngineTest, ValuesThatAreNoNumbersAreNotedOnce)
{
    Evidence::Rule record;
    mEngine.SetRecord(&record);
    NodeFile("a", "x");
    NodeFile("b", "y");
    AddParam("1", "a", "");
    AddParam("2", "b", "");
    AddParam("3", "r", "double");
    Express("a + b", "r");
    Conditions({SingleTest("eq", "0")});
    EXPECT_TRUE(Ask());
    EXPECT_THAT(record.notes, ElementsAre(Reason::BAD_NUMBER));
    mEngine.SetRecord(nullptr);
}

} // namespace
