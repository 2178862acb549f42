#ifndef ARBORIST_TESTS_EVALUATION_NODE_RULE_FIXTURE_H
#define ARBORIST_TESTS_EVALUATION_NODE_RULE_FIXTURE_H

#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "arborist/evaluation/node_rule_engine.h"
#include "arborist/model/rule.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

inline std::shared_ptr<OrLogic> SingleTest(
    const std::string& logic, const std::string& value, const std::string& type = "single_logic")
{
    auto condition = std::make_shared<OrLogic>();
    condition->SetType(type);
    condition->SetLogic(logic);
    condition->SetValue(value);
    return condition;
}

inline std::shared_ptr<OrLogic::LogicItem> Item(
    const std::string& paramId, const std::string& logic, const std::string& value)
{
    auto item = std::make_shared<OrLogic::LogicItem>();
    item->SetParamId(paramId);
    item->SetLogic(logic);
    item->SetValue(value);
    return item;
}

inline std::shared_ptr<OrLogic> MultipleTest(const OrLogic::LogicItemList& items)
{
    auto condition = std::make_shared<OrLogic>();
    condition->SetType("multiple_logic");
    condition->SetLogicItemList(items);
    return condition;
}

/// Asks a node rule whose nodes are files in the folder of the test.
class NodeRuleFixture : public testing::Test {
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
        EXPECT_THAT(mLog.Lines(), testing::ElementsAre("FUNc:StringUtil::StringToDoubleDef: stod error"));
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::shared_ptr<NodeRule> mRule = std::make_shared<NodeRule>();
    NodeRuleEngine mEngine;
};

#endif
