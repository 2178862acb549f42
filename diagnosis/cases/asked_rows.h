#ifndef ARBORIST_DIAGNOSIS_CASES_ASKED_ROWS_H
#define ARBORIST_DIAGNOSIS_CASES_ASKED_ROWS_H

#include <cstdint>
#include <map>
#include <vector>

#include "diagnosis/evidence/recorded_tree.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::cases {

/// The rows of the event log for which the rules of a detection asked.
class AskedRows {
public:
    /// The windows of alarm rules in explained trees, and the events of the derived tables of a rule set. `now` in
    /// seconds since the epoch.
    AskedRows(const TreeReports& trees, const rule_source::RuleSet& ruleSet, std::int64_t now);

    /// Whether a rule asked for events with this number at this time.
    bool Contains(std::int64_t event, std::int64_t time) const;

private:
    /// Events from one number to another, from a moment on.
    struct Range {
        std::int64_t first;
        std::int64_t last;
        std::int64_t since;
    };

    static void AddWindows(const TreeReports& trees, std::vector<Range>& ranges);
    static void AddWindows(const Evidence::Alarm& alarm, std::vector<Range>& ranges);
    static void AddTables(const rule_source::RuleSet& ruleSet, std::int64_t now, std::vector<Range>& ranges);
    void Join(const std::vector<Range>& ranges);

    /// By the first number of a part, the earliest moment that a rule asked for; the part ends at the next.
    std::map<std::int64_t, std::int64_t> mSince;
};

} // namespace diagnosis::cases

#endif
