#ifndef ARBORIST_TESTS_EVALUATION_ALARM_RULES_H
#define ARBORIST_TESTS_EVALUATION_ALARM_RULES_H

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "arborist/model/rule.h"

/// Builds alarm rules: `RuleOf({Ids("7", "9").Latest(30, 2).Item()})`.
class Ids {
public:
    Ids(const std::string& first, const std::string& last)
    {
        mItem->Eventid_Min = first;
        mItem->Eventid_Max = last;
        mItem->BeginFlag = "4";
    }

    Ids& Duration(int period, int threshold) { return Window(mItem->duration, period, threshold); }
    Ids& DailyPeak(int period, int threshold) { return Window(mItem->daily_peak, period, threshold); }
    Ids& Latest(int period, int threshold) { return Window(mItem->latest, period, threshold); }
    Ids& Begin(const std::string& word)
    {
        mItem->BeginFlag = word;
        return *this;
    }

    Ids& WithParam(const std::string& id, const std::string& key, const std::string& type)
    {
        mItem->type = "param_eventid";
        mItem->params[id] = std::make_shared<Param>(Param{key, type, id, ""});
        return *this;
    }

    Ids& Single(const std::string& paramId, const std::string& logic, const std::string& value)
    {
        auto orLogic = std::make_shared<OrLogic>();
        orLogic->SetType("single_logic");
        orLogic->SetParamId(paramId);
        orLogic->SetLogic(logic);
        orLogic->SetValue(value);
        return Condition(orLogic);
    }

    struct Test { std::string paramId; std::string logic; std::string value; };
    Ids& Multiple(const std::vector<Test>& tests)
    {
        auto orLogic = std::make_shared<OrLogic>();
        orLogic->SetType("multiple_logic");
        OrLogic::LogicItemList items;
        for (const Test& test : tests) {
            items.push_back(std::make_shared<OrLogic::LogicItem>());
            items.back()->SetParamId(test.paramId);
            items.back()->SetLogic(test.logic);
            items.back()->SetValue(test.value);
        }
        orLogic->SetLogicItemList(items);
        return Condition(orLogic);
    }

    Ids& Condition(std::shared_ptr<OrLogic> orLogic)
    {
        mItem->type = "param_eventid";
        mItem->conditionList.push_back(std::move(orLogic));
        return *this;
    }

    std::shared_ptr<AlarmRule::AlarmItem> Item() const { return mItem; }

private:
    Ids& Window(std::shared_ptr<TimeSet>& window, int period, int threshold)
    {
        window = std::make_shared<TimeSet>();
        window->period = period;
        window->threshold = threshold;
        return *this;
    }

    std::shared_ptr<AlarmRule::AlarmItem> mItem = std::make_shared<AlarmRule::AlarmItem>();
};

inline std::shared_ptr<AlarmRule> RuleOf(const std::vector<Ids>& items)
{
    auto rule = std::make_shared<AlarmRule>();
    for (const Ids& item : items) {
        rule->alarmItemList.push_back(item.Item());
    }
    return rule;
}

#endif
