#include "bench/alarm_rules.h"

#include <string>

#include "arborist/evaluation/alarm_rule_engine.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "bench/compare.h"
#include "bench/event_log_generator.h"

namespace bench {
namespace {

constexpr int RULES = 500;
constexpr int NEVER_REACHED = 1000000000;

std::shared_ptr<TimeSet> Window(int days)
{
    auto window = std::make_shared<TimeSet>();
    window->period = days;
    window->threshold = NEVER_REACHED;
    return window;
}

void AddTests(AlarmRule::AlarmItem& item, int number)
{
    item.type = "param_eventid";
    item.params["L"] = std::make_shared<Param>(Param{"level", "int", "L", ""});
    item.params["M"] = std::make_shared<Param>(Param{"module", "string", "M", ""});
    item.params["T"] = std::make_shared<Param>(Param{"temp", "float", "T", ""});
    auto single = std::make_shared<OrLogic>();
    single->SetType("single_logic");
    single->SetParamId(number % 2 == 0 ? "L" : "M");
    single->SetLogic(number % 2 == 0 ? "ge" : "eq");
    single->SetValue(number % 2 == 0 ? "3" : "module_7");
    item.conditionList.push_back(single);
    if (number % 3 == 0) {
        auto multiple = std::make_shared<OrLogic>();
        multiple->SetType("multiple_logic");
        OrLogic::LogicItemList tests;
        for (const char* const param : {"L", "T"}) {
            tests.push_back(std::make_shared<OrLogic::LogicItem>());
            tests.back()->SetParamId(param);
            tests.back()->SetLogic("gt");
            tests.back()->SetValue("2");
        }
        multiple->SetLogicItemList(tests);
        item.conditionList.push_back(multiple);
    }
}

} // namespace

std::vector<std::shared_ptr<AlarmRule>> Rules(Tests tests, Range range, int blocks)
{
    std::vector<std::shared_ptr<AlarmRule>> rules;
    for (int number = 0; number < RULES; ++number) {
        auto item = std::make_shared<AlarmRule::AlarmItem>();
        const std::int32_t first = FirstIdOfBlock(number % blocks);
        item->Eventid_Min = std::to_string(range == Range::NARROW ? first : first - BLOCK_DISTANCE / 2);
        item->Eventid_Max = std::to_string(range == Range::NARROW ? first + 999 : first + BLOCK_DISTANCE / 2 - 1);
        item->BeginFlag = number % 2 == 0 ? "1" : "4";
        item->duration = Window(30);
        item->daily_peak = Window(7);
        item->latest = Window(3);
        if (tests == Tests::ONE_RULE_IN_FIVE && number % 5 == 0) {
            AddTests(*item, number / 5);
        }
        rules.push_back(std::make_shared<AlarmRule>());
        rules.back()->alarmItemList.push_back(item);
    }
    return rules;
}

void DecideAll(const std::vector<std::shared_ptr<AlarmRule>>& rules)
{
    AlarmRuleEngine engine(std::make_shared<RuleHelper>(std::make_shared<DetectInfo>(), nullptr));
    for (const auto& rule : rules) {
        engine.Foresee(*rule);
    }
    for (const auto& rule : rules) {
        Keep(engine.IsFaultHappened(rule, ""));
    }
}

} // namespace bench
