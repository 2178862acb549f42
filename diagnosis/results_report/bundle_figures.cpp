#include "diagnosis/results_report/bundle_figures.h"

#include <algorithm>
#include <map>

namespace diagnosis {

namespace {

constexpr std::int64_t WEEK = 7 * 86400;
constexpr std::int64_t FIRST_MONDAY = 4 * 86400; // 1970 began on a Thursday

using Weeks = std::map<std::int64_t, BundleStates>;

void ReadRuns(Questions& questions, Fleet& fleet)
{
    questions.Ask("SELECT run.engine, run.rule_set, count(*) FROM bundle JOIN run ON run.id = bundle.run "
                  "GROUP BY run.id ORDER BY 3 DESC, 1, 2",
        [&fleet](const Statement& row) {
            if (fleet.runs.size() == Fleet::MOST_RUNS) {
                ++fleet.runsLeftOut;
                return;
            }
            fleet.runs.push_back({row.Text(0), row.Text(1), static_cast<std::uint64_t>(row.Integer(2))});
        });
}

// The member that a bundle counts in: rank 3 is a fault, 0 no tree for the device.
std::uint64_t& StateOf(BundleStates& states, bool isOk, std::int64_t rank)
{
    return !isOk   ? states.failed
        : rank == 3 ? states.fault
        : rank == 2 ? states.undecided
        : rank == 1 ? states.noFault
                    : states.notApplicable;
}

Weeks ReadBundles(Questions& questions, Fleet& fleet)
{
    Weeks weeks;
    questions.Ask("SELECT now, ok, (SELECT max(CASE verdict WHEN 'fault' THEN 3 WHEN 'undecided' THEN 2 "
                  "WHEN 'no_fault' THEN 1 ELSE 0 END) FROM tree JOIN outcome_def ON outcome_def.id = tree.outcome_def "
                  "WHERE tree.bundle = bundle.id) FROM bundle",
        [&](const Statement& row) {
            ++StateOf(fleet.bundles, row.Integer(1) != 0, row.Integer(2));
            if (row.IsNull(0)) {
                ++fleet.trend.undated;
            } else {
                ++StateOf(weeks[WeekOf(row.Integer(0))], row.Integer(1) != 0, row.Integer(2));
            }
        });
    questions.Ask("SELECT ifnull(datetime(min(now), 'unixepoch'), ''), ifnull(datetime(max(now), 'unixepoch'), '') "
                  "FROM bundle",
        [&fleet](const Statement& row) {
            fleet.from = row.Text(0);
            fleet.until = row.Text(1);
        });
    return weeks;
}

void ReadTrees(Questions& questions, Fleet& fleet)
{
    const std::uint64_t diagnosed = fleet.bundles.All() - fleet.bundles.failed;
    questions.Ask("SELECT tree_def.tree, sum(verdict = 'fault'), sum(verdict = 'undecided'), sum(verdict = 'no_fault'), "
                  "sum(verdict = 'not_applicable') FROM tree JOIN tree_def ON tree_def.id = tree.tree_def "
                  "JOIN outcome_def ON outcome_def.id = tree.outcome_def "
                  "GROUP BY tree_def.tree ORDER BY 2 DESC, 3 DESC, 1",
        [&](const Statement& row) {
            if (fleet.trees.size() == Fleet::MOST_TREES) {
                ++fleet.treesLeftOut;
                return;
            }
            const auto count = [&row](int column) { return static_cast<std::uint64_t>(row.Integer(column)); };
            TreeVerdicts tree{row.Text(0), count(1), count(2), count(3), count(4)};
            tree.absent = diagnosed > tree.All() ? diagnosed - tree.All() : 0;
            fleet.trees.push_back(tree);
        });
}

void ReadFailures(Questions& questions, Fleet& fleet)
{
    questions.Ask("SELECT code, retry, bundles, example FROM failed_by_code", [&fleet](const Statement& row) {
        fleet.failures.push_back(
            {row.Text(0), row.Integer(1) != 0, static_cast<std::uint64_t>(row.Integer(2)), row.Text(3)});
    });
}

// The time that so many of a hundred bundles took at most.
std::int64_t MostOf(Questions& questions, std::uint64_t bundles, std::uint64_t percent)
{
    std::int64_t most = 0;
    const std::uint64_t place = bundles == 0 ? 0 : (bundles * percent + 99) / 100 - 1;
    questions.Ask("SELECT microseconds FROM bundle ORDER BY microseconds LIMIT 1 OFFSET " + std::to_string(place),
        [&most](const Statement& row) { most = row.Integer(0); });
    return most;
}

void ReadTimes(Questions& questions, RunTimes& times)
{
    questions.Ask("SELECT count(*), ifnull(sum(microseconds), 0) FROM bundle", [&times](const Statement& row) {
        times.bundles = static_cast<std::uint64_t>(row.Integer(0));
        times.sum = row.Integer(1);
    });
    times.median = MostOf(questions, times.bundles, 50);
    times.most95 = MostOf(questions, times.bundles, 95);
    questions.Ask("SELECT name, ifnull(datetime(now, 'unixepoch'), ''), microseconds FROM bundle "
                  "ORDER BY microseconds DESC, name, now LIMIT " + std::to_string(RunTimes::MOST),
        [&times](const Statement& row) { times.slowest.push_back({row.Text(0), row.Text(1), row.Integer(2)}); });
}

// The first of MOST weeks with the most bundles; of several the last. A clock that goes wrong must not move the trend
// away from the others.
std::int64_t FirstWeek(const Weeks& weeks)
{
    std::int64_t best = 0;
    std::uint64_t most = 0;
    std::uint64_t inside = 0;
    auto first = weeks.begin();
    for (const auto& [week, states] : weeks) {
        inside += states.All();
        for (; week - first->first >= static_cast<std::int64_t>(FleetTrend::MOST); ++first) {
            inside -= first->second.All();
        }
        if (inside >= most) {
            most = inside;
            best = first->first;
        }
    }
    return best;
}

std::string MondayOf(Questions& questions, std::int64_t week)
{
    std::string monday;
    questions.Ask("SELECT date(" + std::to_string(week * WEEK + FIRST_MONDAY) + ", 'unixepoch')",
        [&monday](const Statement& row) { monday = row.Text(0); });
    return monday;
}

void FillTrend(Questions& questions, const Weeks& weeks, std::int64_t first, FleetTrend& trend)
{
    const std::int64_t end = first + static_cast<std::int64_t>(FleetTrend::MOST);
    for (const auto& [week, states] : weeks) {
        if (week < first || week >= end) {
            (week < first ? trend.before : trend.after) += states.All();
            continue;
        }
        for (auto next = first + static_cast<std::int64_t>(trend.weeks.size()); next <= week; ++next) {
            trend.weeks.push_back({MondayOf(questions, next), {}, std::vector<std::uint64_t>(FleetTrend::MOST_LINES)});
        }
        trend.weeks.back().bundles = states;
    }
}

} // namespace

std::int64_t WeekOf(std::int64_t moment)
{
    const std::int64_t since = moment - FIRST_MONDAY;
    return since / WEEK - (since % WEEK < 0 ? 1 : 0);
}

FleetWeek* TrendWeeks::Of(std::int64_t moment) const
{
    const std::int64_t week = WeekOf(moment) - first;
    return week < 0 || week >= static_cast<std::int64_t>(trend.weeks.size())
        ? nullptr : &trend.weeks[static_cast<std::size_t>(week)];
}

TrendWeeks ReadBundleFigures(Questions& questions, Fleet& fleet)
{
    ReadRuns(questions, fleet);
    const Weeks weeks = ReadBundles(questions, fleet);
    ReadTrees(questions, fleet);
    ReadFailures(questions, fleet);
    ReadTimes(questions, fleet.times);
    const std::int64_t first = FirstWeek(weeks);
    FillTrend(questions, weeks, first, fleet.trend);
    return {first, fleet.trend};
}

} // namespace diagnosis
