#ifndef ARBORIST_DIAGNOSIS_LINT_READING_CONDITION_WALK_H
#define ARBORIST_DIAGNOSIS_LINT_READING_CONDITION_WALK_H

#include <span>

#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::lint {

/// One test of a rule with the parameters that it compares.
struct AskedTest {
    const rule_source::RuleCondition& condition;
    const rule_source::ConditionAlternative& alternative;
    const rule_source::Test& test;
    /// The parameters whose values it compares. Empty if it names none, or if the engine never runs it.
    std::span<const rule_source::Param> params;

    std::string_view RuleName() const { return condition.rule->name; }
    /// True if it compares with its own "value"; a test of a command rule may take its threshold from elsewhere.
    bool HasOwnValue() const;
};

/// The parameters that a test compares: those of its id. A single test of a node rule compares all parameters of the
/// rule, and only the first such test runs; several tests of a command rule compare the parameter of the first one.
std::span<const rule_source::Param> ParamsOf(const rule_source::RuleCondition& condition,
    const rule_source::ConditionAlternative& alternative, const rule_source::Test& test);

/// Calls `visit(condition)` for each condition of a kept rule whose tests the engine runs.
template <typename Visit>
void ForEachAskedCondition(const rule_source::RuleSet& rules, Visit visit)
{
    for (const rule_source::RuleCondition& condition : rules.rules.conditions) {
        if (condition.IsAsked()) {
            visit(condition);
        }
    }
}

/// Calls `visit(asked)` for each test that the engine keeps in these conditions.
template <typename Visit>
void ForEachAskedTest(const rule_source::RuleSet& rules, Visit visit)
{
    ForEachAskedCondition(rules, [&visit](const rule_source::RuleCondition& condition) {
        for (const rule_source::ConditionAlternative& alternative : condition.condition->alternatives) {
            for (const rule_source::Test& test : alternative.tests) {
                visit(AskedTest{condition, alternative, test, ParamsOf(condition, alternative, test)});
            }
        }
    });
}

} // namespace diagnosis::lint

#endif
