#ifndef ARBORIST_DIAGNOSIS_LINT_READING_ALARM_ITEMS_H
#define ARBORIST_DIAGNOSIS_LINT_READING_ALARM_ITEMS_H

#include <algorithm>

#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/reading/kept_rules.h"

namespace diagnosis::lint {

/// Calls `visit(rule, item)` for each "alarmId" of rules that are kept.
template <typename Visit>
void ForEachItem(const Subject& subject, Visit visit)
{
    ForEachKept(subject.rules.rules.alarmRules, [&visit](const rule_source::AlarmRule& rule) {
        for (const rule_source::AlarmItem& item : rule.items) {
            visit(rule, item);
        }
    });
}

/// Makes a check of a function that checks a single "alarmId".
template <void (*CheckItem)(const rule_source::AlarmRule&, const rule_source::AlarmItem&, Report&)>
void OnItems(const Subject& subject, Report& report)
{
    ForEachItem(subject, [&report](const rule_source::AlarmRule& rule, const rule_source::AlarmItem& item) {
        CheckItem(rule, item, report);
    });
}

/// Calls `visit(kind, window)` for each window of an item that the engine reads.
template <typename Visit>
void ForEachWindow(const rule_source::AlarmItem& item, Visit visit)
{
    for (std::size_t kind = 0; kind < item.windows.size(); ++kind) {
        if (item.windows[kind].element) {
            visit(static_cast<rule_source::WindowKind>(kind), item.windows[kind]);
        }
    }
}

inline bool HasWindow(const rule_source::AlarmItem& item, rule_source::WindowKind kind)
{
    return static_cast<bool>(item.Window(kind).element);
}

/// True if a window has neither days nor a count: the engine skips it.
inline bool IsPassedOver(const rule_source::TimeWindow& window)
{
    return window.period == 0 && window.threshold == 0;
}

/// True if the engine runs the tests of an item and one of its alternatives is of this kind.
inline bool HasAsked(const rule_source::AlarmItem& item, rule_source::ConditionAlternative::Kind kind)
{
    const auto& alternatives = item.condition.alternatives;
    return item.HasTests() && !item.params.IsEmpty()
        && std::any_of(alternatives.begin(), alternatives.end(),
            [kind](const rule_source::ConditionAlternative& alternative) { return alternative.kind == kind; });
}

} // namespace diagnosis::lint

#endif
