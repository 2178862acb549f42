#include "diagnosis/lint/reading/condition_walk.h"

namespace diagnosis::lint {

using rule_source::ConditionAlternative;
using rule_source::Family;
using rule_source::Param;
using rule_source::RuleCondition;
using rule_source::Test;

bool AskedTest::HasOwnValue() const
{
    return condition.rule->family != Family::COMMAND || alternative.kind != ConditionAlternative::Kind::SINGLE
        || test.logicType == "static";
}

std::span<const Param> ParamsOf(
    const RuleCondition& condition, const ConditionAlternative& alternative, const Test& test)
{
    const bool isSingle = alternative.kind == ConditionAlternative::Kind::SINGLE;
    if (condition.rule->family == Family::NODE && isSingle) {
        const bool isFirst = &alternative == &condition.condition->alternatives.front();
        return isFirst ? std::span<const Param>(condition.params->Params()) : std::span<const Param>();
    }
    const bool isOfFirst = condition.rule->family == Family::COMMAND && !isSingle;
    const Param* const param = condition.params->Find(isOfFirst ? alternative.tests.front().id : test.id);
    return param == nullptr ? std::span<const Param>() : std::span(param, 1);
}

} // namespace diagnosis::lint
