#include "diagnosis/cases/asked_rows.h"

#include <limits>
#include <set>
#include <utility>

namespace diagnosis::cases {

namespace {

constexpr std::int64_t NEVER = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t SECONDS_OF_A_DAY = 86400;
// Derived tables are made of the events later than this, and those of a table that names none later than that.
constexpr std::int64_t DAYS_OF_TABLES = 30;
constexpr std::int64_t DAYS_OF_DEFAULT_EVENTS = 7;

} // namespace

AskedRows::AskedRows(const TreeReports& trees, const rule_source::RuleSet& ruleSet, std::int64_t now)
{
    std::vector<Range> ranges;
    AddWindows(trees, ranges);
    AddTables(ruleSet, now, ranges);
    Join(ranges);
}

void AskedRows::AddWindows(const TreeReports& trees, std::vector<Range>& ranges)
{
    for (const TreeReport& tree : trees) {
        for (const Evidence::Event& event : tree.tree.evidence) {
            for (const PlacedRule& placed : RulesOf(event)) {
                if (const auto* const alarm = std::get_if<Evidence::Alarm>(&placed.rule.part)) {
                    AddWindows(*alarm, ranges);
                }
            }
        }
    }
}

void AskedRows::AddWindows(const Evidence::Alarm& alarm, std::vector<Range>& ranges)
{
    for (const Evidence::Window& window : alarm.windows) {
        if (window.start) {
            ranges.push_back({window.firstId, window.lastId, window.start->start.seconds});
        }
    }
}

void AskedRows::AddTables(const rule_source::RuleSet& ruleSet, std::int64_t now, std::vector<Range>& ranges)
{
    for (const auto& bean : ruleSet.commonPart.beans) {
        bool isEmpty = true;
        for (const auto& item : bean.dataItems) {
            if (!item.ids.IsEmpty()) {
                ranges.push_back({item.ids.first, item.ids.last, now - DAYS_OF_TABLES * SECONDS_OF_A_DAY + 1});
                isEmpty = false;
            }
        }
        if (isEmpty && bean.retrieveLumbraData) {
            const std::int64_t since = now - DAYS_OF_DEFAULT_EVENTS * SECONDS_OF_A_DAY + 1;
            ranges.push_back({902000000, 902499999, since});
            ranges.push_back({902500007, 902500007, since});
        }
    }
}

// Goes through the ends of all ranges in order, with the moments of those that are open.
void AskedRows::Join(const std::vector<Range>& ranges)
{
    std::map<std::int64_t, std::pair<std::vector<std::int64_t>, std::vector<std::int64_t>>> ends;
    for (const Range& range : ranges) {
        ends[range.first].first.push_back(range.since);
        ends[range.last + 1].second.push_back(range.since);
    }
    std::multiset<std::int64_t> open;
    for (const auto& [number, change] : ends) {
        open.insert(change.first.begin(), change.first.end());
        for (const std::int64_t since : change.second) {
            open.erase(open.find(since));
        }
        mSince[number] = open.empty() ? NEVER : *open.begin();
    }
}

bool AskedRows::Contains(std::int64_t event, std::int64_t time) const
{
    const auto behind = mSince.upper_bound(event);
    return behind != mSince.begin() && std::prev(behind)->second != NEVER && time >= std::prev(behind)->second;
}

} // namespace diagnosis::cases
