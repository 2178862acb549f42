// Alarm rules over a large event log, against one grouped statement over the same rows through a connection with the
// same settings. No rule fires, so that every window of every rule is counted to its end.

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "arborist/evaluation/alarm_rule_engine.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/settings.h"
#include "arborist/stores/sql/sql_cursor.h"
#include "arborist/utilities/device_paths.h"
#include "bench/compare.h"
#include "bench/event_log_generator.h"
#include "bench/heap_gauge.h"

namespace {

constexpr int RULES = 500;
constexpr int ROUNDS = 5;
constexpr std::int64_t LONGEST_WINDOW = 30 * 86400;
constexpr int NEVER_REACHED = 1000000000;

enum class Tests { NONE, ONE_RULE_IN_FIVE };
enum class Range { NARROW, WIDE };

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

// A new checker each time: opening the log and reading it is part of the work.
void DecideAll(const std::vector<std::shared_ptr<AlarmRule>>& rules)
{
    AlarmRuleEngine engine(std::make_shared<RuleHelper>(std::make_shared<DetectInfo>(), nullptr));
    for (const auto& rule : rules) {
        engine.Foresee(*rule);
    }
    for (const auto& rule : rules) {
        bench::Keep(engine.IsFaultHappened(rule, ""));
    }
}

void CountGrouped(const EventLogShape& shape)
{
    FT::sql::SqlDatabase database;
    database.Open(DevicePaths::EventLog());
    FT::sql::SqlCursor cursor(database.GetHandle(),
        "select event_info.event_id, count(*) from event_info"
        " join event_info_flow on event_info._ID=event_info_flow._ID"
        " join event_version on event_info.version_id=event_version._ID where occurrence_time >= " +
        std::to_string(shape.now - LONGEST_WINDOW) + " group by event_info.event_id");
    std::int64_t sum = 0;
    while (cursor.Step()) {
        sum += cursor.GetInteger(1);
    }
    bench::Keep(sum);
}

// Highest heap above the rules while all of them are decided.
double BytesInUse(const std::vector<std::shared_ptr<AlarmRule>>& rules)
{
    const HeapGauge gauge;
    DecideAll(rules);
    return gauge.Peak();
}

// Time for a row of a log of this many rows against one of a tenth of them.
void ReportGrowth(EventLogShape shape, std::int64_t largest, const std::vector<std::shared_ptr<AlarmRule>>& rules)
{
    double before = 0;
    for (shape.rows = 10000; shape.rows <= largest; shape.rows *= 10) {
        GenerateEventLog(DevicePaths::EventLog(), shape);
        std::vector<double> times;
        for (int round = 0; round < ROUNDS; ++round) {
            times.push_back(bench::Milliseconds([&rules] { DecideAll(rules); }));
        }
        const double time = bench::Median(times);
        if (before != 0) {
            bench::Report("alarm growth to " + std::to_string(shape.rows) + " rows", {time, 10 * before}, 1.2);
        }
        before = time;
        bench::Report("alarm bytes at " + std::to_string(shape.rows) + " rows against 16 a row",
                      {BytesInUse(rules), 16.0 * static_cast<double>(shape.rows)}, 1.0);
    }
}

} // namespace

// With any argument also on 10,000,000 rows, for which it needs 1 GB in the folder for temporary files.
int main(int argumentCount, char**)
{
    bench::SilenceLog();
    const std::string folder = std::filesystem::temp_directory_path().string() + "/arborist_alarm_bench";
    SetFaultTreeProperty(Settings::PROGRAM_DATA_DIR, folder);
    SetFaultTreeProperty(Settings::VERSION_NAME, GENERATED_VERSION);
    EventLogShape shape;
    SetFaultTreeProperty(Settings::CURRENT_TIME, std::to_string(shape.now));
    GenerateEventLog(DevicePaths::EventLog(), shape);
    const int blocks = shape.ids / 1000;
    const auto plain = Rules(Tests::NONE, Range::NARROW, blocks);
    const auto tested = Rules(Tests::ONE_RULE_IN_FIVE, Range::NARROW, blocks);
    const auto wide = Rules(Tests::NONE, Range::WIDE, blocks);
    const auto grouped = [&shape] { CountGrouped(shape); };
    bench::Report("alarm", bench::Alternate(ROUNDS, [&] { DecideAll(plain); }, grouped), 1.0);
    bench::Report("alarm with tests", bench::Alternate(ROUNDS, [&] { DecideAll(tested); }, grouped), 2.0);
    bench::Report(
        "alarm wide", bench::Alternate(ROUNDS, [&] { DecideAll(wide); }, [&] { DecideAll(plain); }), 1.1);
    ReportGrowth(shape, argumentCount > 1 ? 10000000 : 1000000, tested);
    std::filesystem::remove_all(folder);
    return 0;
}
