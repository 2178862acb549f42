#include <algorithm>
#include <map>

#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/reading/alarm_items.h"
#include "diagnosis/lint/reading/binding_walk.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/reading/condition_walk.h"
#include "diagnosis/lint/reading/value_sets.h"

namespace diagnosis::lint {

namespace {

using rule_source::ConditionAlternative;
using rule_source::Family;
using rule_source::Param;
using rule_source::RuleCondition;
using rule_source::Test;
using rule_source::TimeWindow;
using rule_source::WindowKind;
using Kind = ConditionAlternative::Kind;

using SetsByParam = std::map<const Param*, ValueSets>;

void AddTest(
    const RuleCondition& condition, const ConditionAlternative& alternative, const Test& test, SetsByParam& sets)
{
    const auto params = ParamsOf(condition, alternative, test);
    const auto kind = params.size() == 1 ? ValueKindOf(params.front().type) : std::nullopt;
    if (kind && AskedTest{condition, alternative, test, params}.HasOwnValue()) {
        const std::string_view value = *kind == ValueKind::TEXT ? test.value : Trimmed(test.value);
        sets.emplace(&params.front(), ValueSets(*kind)).first->second.Add(test.word, value);
    }
}

// True if one row must pass all tests, which is only the case under "duration".
bool IsOneValueTested(const RuleCondition& condition)
{
    return condition.item == nullptr
        || (!HasWindow(*condition.item, WindowKind::DAILY_PEAK) && !HasWindow(*condition.item, WindowKind::LATEST));
}

void CheckExclusive(const Subject& subject, Report& report)
{
    ForEachAskedCondition(subject.rules, [&report](const RuleCondition& condition) {
        for (const ConditionAlternative& alternative : condition.condition->alternatives) {
            SetsByParam sets;
            for (const Test& test : alternative.tests) {
                AddTest(condition, alternative, test, sets);
            }
            const bool isTogether = alternative.kind == Kind::SINGLE || IsOneValueTested(condition);
            const auto none = std::find_if(
                sets.begin(), sets.end(), [](const auto& entry) { return entry.second.IsNonePassingAll(); });
            if (isTogether && none != sets.end()) {
                report.Add(alternative.element, "no value of the parameter " + Quoted(none->first->id) + " of the rule "
                        + Quoted(condition.rule->name) + " passes this alternative");
            }
        }
    });
}

// True if one alternative that is true for a value is enough for the rule; an alarm rule counts rows for each
// alternative.
bool IsOneAlternativeEnough(const RuleCondition& condition)
{
    if (condition.item == nullptr) {
        return condition.rule->family == Family::COMMAND;
    }
    bool isOneRowEnough = false;
    ForEachWindow(*condition.item,
        [&isOneRowEnough](WindowKind, const TimeWindow& window) { isOneRowEnough |= window.threshold == 1; });
    return isOneRowEnough;
}

void CheckExhaustive(const Subject& subject, Report& report)
{
    ForEachAskedCondition(subject.rules, [&report](const RuleCondition& condition) {
        SetsByParam sets;
        for (const ConditionAlternative& alternative : condition.condition->alternatives) {
            if (alternative.tests.size() == 1) {
                AddTest(condition, alternative, alternative.tests.front(), sets);
            }
        }
        for (const auto& [param, set] : sets) {
            if (IsOneAlternativeEnough(condition) && set.IsEveryOnePassingOne()) {
                report.Add(condition.condition->element, "every value of the parameter " + Quoted(param->id)
                        + " of the rule " + Quoted(condition.rule->name) + " passes one of its alternatives");
            }
        }
    });
}

void CheckValueSets(const Subject& subject, Report& report)
{
    CheckExclusive(subject, report);
    CheckExhaustive(subject, report);
}

constexpr Check CHECKS[] = {
    {"A430", Severity::WARNING, CheckClass::STATIC, "condition that no value or every value passes",
        "Tests of one parameter that must hold together and exclude each other, as \"ge 10\" and \"le 5\"; or alternatives "
        "of which one holds for every value, as \"ge 5\" and \"lt 10\".",
        "the alternative never holds, or the rule holds whatever the value", CheckValueSets},
};

} // namespace

std::span<const Check> ValueSetChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
