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
constexpr std::size_t COLUMNS = 5;

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

Row RowOf(const std::string& name, const Timeline& timeline)
{
    const auto first = timeline.GetFirst();
    const std::size_t times = timeline.GetTimes();
    const bool isEverFalse = timeline.GetSeconds(SweptState::FALSE) > 0;
    return {name, first ? MomentText(*first) : isEverFalse ? "never" : "-", LengthText(timeline.GetSeconds()),
        times == 0 ? "-" : std::to_string(times),
        LengthText(timeline.GetSeconds(SweptState::NOT_JUDGED)) + LastReason(timeline)};
}

std::string NameOf(const SweptRule& rule)
{
    const std::string name = "  " + Printable(rule.name) + " of " + Printable(rule.eventId);
    return rule.source == SweptSource::CAPTURED ? name + ", as captured" : name;
}

std::string Table(const std::vector<Row>& rows)
{
    std::array<std::size_t, COLUMNS> widths{};
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < COLUMNS; ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    std::string text;
    for (const Row& row : rows) {
        std::string line = row[0];
        for (std::size_t column = 1; column < COLUMNS; ++column) {
            line += std::string(widths[column - 1] - row[column - 1].size() + 2, ' ') + row[column];
        }
        text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

} // namespace

std::string SweepText(const SweepReport& report)
{
    const std::string head = Printable(report.bundle) + ": ";
    if (report.failure) {
        return head + "NOT SWEPT\n";
    }
    const TimeZoneGuard zone(report.tz);
    std::vector<Row> rows{{"", "first true", "how long", "how often", "not judged"}};
    for (const SweptTree& tree : report.trees) {
        rows.push_back(RowOf("tree " + Printable(tree.id), tree.timeline));
        for (const SweptCause& cause : tree.causes) {
            rows.push_back(RowOf("  cause " + Printable(cause.id), cause.timeline));
        }
    }
    if (!report.rules.empty()) {
        rows.push_back({"rules"});
    }
    for (const SweptRule& rule : report.rules) {
        rows.push_back(RowOf(NameOf(rule), rule.timeline));
    }
    std::string text = head + "as of every second from " + MomentText(report.from) + " to " + MomentText(report.until)
        + "; " + std::to_string(report.plan.moments) + (report.plan.moments == 1 ? " moment" : " moments")
        + " at which an answer may change\n" + Table(rows);
    for (const SweepPlan::Asked& asked : report.plan.asked) {
        text += "rules of " + Printable(asked.eventId) + " on derived tables asked "
            + std::to_string(asked.times) + (asked.times == 1 ? " time\n" : " times\n");
    }
    return text;
}

} // namespace diagnosis::command
