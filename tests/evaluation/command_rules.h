#ifndef ARBORIST_TESTS_EVALUATION_COMMAND_RULES_H
#define ARBORIST_TESTS_EVALUATION_COMMAND_RULES_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "arborist/evaluation/command_rule_engine.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/settings.h"
#include "arborist/model/common_part.h"
#include "tests/support/common_part_builder.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

inline constexpr std::int64_t NOW = 1700000000;

inline std::shared_ptr<OrLogic> Single(const std::string& logic, const std::string& paramId, const std::string& value,
    const std::string& source = "static")
{
    auto orLogic = std::make_shared<OrLogic>();
    orLogic->SetType("single_logic");
    orLogic->SetLogic(logic);
    orLogic->SetParamId(paramId);
    orLogic->SetLogicType(source);
    // The same text for both; the source decides which one the engine uses.
    orLogic->SetValue(value);
    orLogic->SetCommonPartParamId(value);
    return orLogic;
}

inline std::shared_ptr<OrLogic> Multiple(const std::vector<std::vector<std::string>>& tests)
{
    auto orLogic = std::make_shared<OrLogic>();
    orLogic->SetType("multiple_logic");
    for (const auto& test : tests) {
        auto item = std::make_shared<OrLogic::LogicItem>();
        item->SetLogic(test[0]);
        item->SetParamId(test[1]);
        item->SetValue(test[2]);
        orLogic->InsertLogicItemList({item});
    }
    return orLogic;
}

/// A command rule for the event "event", its derived table with two rows, and copies of databases.
class CommandRuleEngineTest : public testing::Test {
protected:
    CommandRuleEngineTest()
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("root"));
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW));
        mDir.MakeDir("root/Comms/Lumbra/zxdetectrepair/databases");
        EventLogBuilder::Run(mDerived, "create table Jank (n int, s string, occurrence_time int);"
                                       "insert into Jank values (5, 'x', 1699999999), (7, 'old', 1600000000)");
        mBean->SetThresholdMap(ParamMapOf({ParamOf("limit", "int")}));
        mBean->GetThresholdMap().at("limit")->value = "4";
        mBean->SetSystemParaMap(ParamMapOf({ParamOf("ram", "string")}));
        mBean->GetSystemParamMap().at("ram")->value = "16";
        mRule->analysisMethod.type = "SQL";
        mRule->commonPartName = "Jank";
        mRule->params = ParamMapOf({ParamOf("n", "int"), ParamOf("s", "string")});
        mRule->analysisMethod.sqlItem.sql = "select n, s from Jank";
    }

    CommandRule::SqlItem& Item() { return mRule->analysisMethod.sqlItem; }
    void Conditions(const ConditionList& conditions) { Item().conditionList = conditions; }

    // Runs the rule with these conditions.
    bool Fires(const ConditionList& conditions)
    {
        Conditions(conditions);
        return Fires();
    }
    bool Fires() { return Fires(mRule, "event"); }
    bool Fires(const std::shared_ptr<Rule>& rule, const std::string& eventId)
    {
        const bool fires = mEngine.IsFaultHappened(rule, eventId);
        mReason = mEngine.GetReason();
        return fires;
    }

    // Lets the rule query copies, one for each of these numbers, with the number as its n.
    void Refer(const std::string& type, const std::string& number, const std::vector<int>& numbers)
    {
        std::vector<std::string> files;
        for (const int n : numbers) {
            files.push_back(mDir.Path("copy" + std::to_string(files.size()) + ".db"));
            EventLogBuilder::Run(files.back(),
                "create table t(n, s); insert into t values (" + std::to_string(n) + ", '')");
        }
        mTable->SetCopyDbFileList(files);
        mRule->referenceDefDb = std::make_shared<CommandRule::ReferenceDefDb>();
        mRule->referenceDefDb->type = type;
        mRule->referenceDefDb->defDBName = "Copies";
        mRule->referenceDefDb->defDBNum = number;
        Item().sql = "select n, s from t";
        Conditions({Single("gt", "n", "10")});
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    Evidence::Rule mRecord;
    std::string mDerived = mDir.Path("root/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db");
    std::shared_ptr<ThresholdOrLumbraBean> mBean = BeanOf("Jank", {});
    std::shared_ptr<DefDbTableBean> mTable = TableBeanOf("Copies", {}, "");
    std::shared_ptr<CommandRule> mRule = std::make_shared<CommandRule>();
    CommandRuleEngine mEngine{PartOf({mBean}, {mTable}),
        std::make_shared<RuleHelper>(std::make_shared<DetectInfo>(), nullptr)};
    Evidence::Reason mReason = Evidence::Reason::NONE;
};

#endif
