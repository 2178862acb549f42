#include "tools/arborist/render/sweep_text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

#include "diagnosis/bundle/moment.h"
#include "diagnosis/process/process_state.h"
#include "diagnosis/text/printable.h"

namespace diagnosis::command {

namespace {

constexpr std::uint64_t DAY = 86400;
constexpr std::size_t COLUMNS = 6;

using Row = std::array<std::string, COLUMNS>;

std::string LengthText(std::uint64_t seconds)
{
    if (seconds == 0) {
        return "-";
    }
    char clock[16];
    std::snprintf(clock, sizeof(clock), "%02d:%02d:%02d", static_cast<int>(seconds % DAY / 3600),
        static_cast<int>(seconds % 3600 / 60), static_cast<int>(seconds % 60));
    return (seconds >= DAY ? std::to_string(seconds / DAY) + "d " : "") + clock;
}

std::string LastReason(const Timeline& timeline)
{
    const auto& intervals = timeline.GetIntervals();
    const auto last = std::find_if(intervals.rbegin(), intervals.rend(),
        [](const SweptInterval& interval) { return interval.state == SweptState::NOT_JUDGED; });
    return last == intervals.rend() || last->word.empty() ? "" : " (" + Printable(last->word) + ")";
}

Row RowOf(const std::string& name, const Timeline& timeline, const Grounds& grounds)
{
    const auto first = timeline.GetFirst();
    const std::size_t times = timeline.GetTimes();
    const bool isEverFalse = timeline.GetSeconds(SweptState::FALSE) > 0;
    return {name, first ? MomentText(*first) : isEverFalse ? "never" : "-", LengthText(timeline.GetSeconds()),
        times == 0 ? "-" : std::to_string(times),
        LengthText(timeline.GetSeconds(SweptState::NOT_JUDGED)) + LastReason(timeline), grounds.Text()};
}

// In characters of UTF-8, of which a cell has no invalid ones.
std::size_t WidthOf(const std::string& cell)
{
    return static_cast<std::size_t>(
        std::count_if(cell.begin(), cell.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

std::string Table(const std::vector<Row>& rows)
{
    std::array<std::size_t, COLUMNS> widths{};
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < COLUMNS; ++column) {
            widths[column] = std::max(widths[column], WidthOf(row[column]));
        }
    }
    std::string text;
    for (const Row& row : rows) {
        std::string line = row[0];
        for (std::size_t column = 1; column < COLUMNS; ++column) {
            line += std::string(widths[column - 1] - WidthOf(row[column - 1]) + 2, ' ') + row[column];
        }
        text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

// Adds to `all` what the rows rest on.
std::vector<Row> RowsOf(const SweepReport& report, Grounds& all)
{
    std::vector<Row> rows{{"", "first true", "how long", "how often", "not judged", "rests on"}};
    const std::vector<std::string> names = NamesOf(report.trees);
    for (std::size_t place = 0; place < names.size(); ++place) {
        const SweptTree& tree = report.trees[place];
        all.Add(tree.grounds);
        rows.push_back(RowOf("tree " + Printable(names[place]), tree.timeline, tree.grounds));
        for (const SweptCause& cause : tree.causes) {
            rows.push_back(RowOf("  cause " + Printable(cause.id), cause.timeline, cause.grounds));
        }
    }
    if (!report.rules.empty()) {
        rows.push_back({"rules"});
    }
    for (const SweptRule& rule : report.rules) {
        all.Add(rule.GetGrounds());
        rows.push_back(RowOf(
            "  " + Printable(rule.name) + " of " + Printable(rule.eventId), rule.timeline, rule.GetGrounds()));
    }
    return rows;
}

} // namespace

std::string SweepText(const SweepReport& report)
{
    const std::string head = Printable(report.bundle) + ": ";
    if (report.failure) {
        return head + "NOT SWEPT\n";
    }
    const TimeZoneGuard zone(report.tz);
    Grounds all;
    const std::vector<Row> rows = RowsOf(report, all);
    std::string text = head + "as of every second from " + MomentText(report.from) + " to " + MomentText(report.until)
        + "; " + std::to_string(report.plan.moments) + (report.plan.moments == 1 ? " moment" : " moments")
        + " at which an answer may change\n" + Table(rows);
    for (const SweepPlan::Asked& asked : report.plan.asked) {
        text += "rules of " + Printable(asked.eventId) + " on derived tables asked "
            + std::to_string(asked.times) + (asked.times == 1 ? " time\n" : " times\n");
    }
    for (const std::string& line : LegendOf(all)) {
        text += line + "\n";
    }
    return text;
}

} // namespace diagnosis::command
