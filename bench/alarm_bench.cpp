// Alarm rules over a large event log, against one grouped statement over the same rows through a connection with the
// same settings. No rule fires, so that every window of every rule is counted to its end.

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "arborist/frame/settings.h"
#include "arborist/stores/sql/sql_cursor.h"
#include "arborist/utilities/device_paths.h"
#include "bench/alarm_rules.h"
#include "bench/compare.h"
#include "bench/event_log_generator.h"
#include "bench/heap_gauge.h"

namespace {

using bench::DecideAll;
using bench::Range;
using bench::Rules;
using bench::Tests;

constexpr int ROUNDS = 5;
constexpr std::int64_t LONGEST_WINDOW = 30 * 86400;

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

// Peak heap, without the rules, while all rules are decided.
double BytesInUse(const std::vector<std::shared_ptr<AlarmRule>>& rules)
{
    const HeapGauge gauge;
    DecideAll(rules);
    return gauge.Peak();
}

// Time per row of a log of this size against that of a log a tenth of its size.
void ReportGrowth(EventLogShape shape, std::int64_t largest, const std::vector<std::shared_ptr<AlarmRule>>& rules)
{
    double before = 0;
    for (shape.rows = 10000; shape.rows <= largest; shape.rows *= 10) {
        GenerateEventLog(DevicePaths::EventLog(), shape);
        std::vector<double> times;
        for (int round = 0; round < (shape.rows < 10000000 ? ROUNDS : 3); ++round) {
            times.push_back(bench::Milliseconds([&rules] { DecideAll(rules); }));
        }
        const double time = bench::Median(times);
        if (before != 0) {
            bench::Report("alarm growth to " + std::to_string(shape.rows) + " rows", {time, 10 * before}, 1.2);
        }
        before = time;
        bench::Report("alarm bytes at " + std::to_string(shape.rows) + " rows against 16 a row and 256 KiB",
                      {BytesInUse(rules), 16.0 * static_cast<double>(shape.rows) + 256 * 1024}, 1.0);
    }
}

} // namespace

// With any argument, also runs on 10,000,000 rows, which takes 1 GB in the folder for temporary files.
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
