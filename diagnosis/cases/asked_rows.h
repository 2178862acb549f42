#ifndef ARBORIST_DIAGNOSIS_CASES_ASKED_ROWS_H
#define ARBORIST_DIAGNOSIS_CASES_ASKED_ROWS_H

#include <cstdint>
#include <map>
#include <vector>

#include "diagnosis/evidence/recorded_tree.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::cases {

/// The rows of the event log that the rules of a detection queried.
class AskedRows {
public:
    /// The windows of alarm rules in explained trees, and the events of the derived tables of a rule set. `now` in
    /// seconds since the epoch.
    AskedRows(const TreeReports& trees, const rule_source::RuleSet& ruleSet, std::int64_t now);

    /// True if a rule queried events with this number at this time.
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

    /// From the first number of a part to the earliest queried moment; a part ends where the next begins.
    std::map<std::int64_t, std::int64_t> mSince;
};

} // namespace diagnosis::cases

#endif
