#ifndef ARBORIST_DIAGNOSIS_RULE_SET_OPEN_PSA_REFERENCES_H
#define ARBORIST_DIAGNOSIS_RULE_SET_OPEN_PSA_REFERENCES_H

#include "diagnosis/rule_set/open_psa/model.h"

namespace diagnosis::rule_set::open_psa {

/// Finds what each name of a formula refers to, and sets Model::argumentsFirst. Fails for a name that is not defined, and
/// for a gate that is part of itself.
std::optional<Failure> ResolveReferences(Model& model);

/// Calls `visit(formula)` for each reference in a formula.
template <typename SomeFormula, typename Visit>
void ForEachReference(SomeFormula& formula, const Visit& visit)
{
    if (formula.kind == Formula::Kind::GATE || formula.kind == Formula::Kind::BASIC_EVENT) {
        visit(formula);
    }
    for (auto& argument : formula.arguments) {
        ForEachReference(argument, visit);
    }
}

} // namespace diagnosis::rule_set::open_psa

#endif
