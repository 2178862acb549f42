#ifndef ARBORIST_BENCH_ALARM_RULES_H
#define ARBORIST_BENCH_ALARM_RULES_H

#include <memory>
#include <vector>

#include "arborist/model/rule.h"

namespace bench {

enum class Tests { NONE, ONE_RULE_IN_FIVE };
enum class Range { NARROW, WIDE };

/// 500 alarm rules of three windows each, over `blocks` blocks of ids of a generated event log. None ever fires.
std::vector<std::shared_ptr<AlarmRule>> Rules(Tests tests, Range range, int blocks);

/// Decides each rule with a new checker, so that opening and reading the log is part of the measured work.
void DecideAll(const std::vector<std::shared_ptr<AlarmRule>>& rules);

} // namespace bench

#endif
