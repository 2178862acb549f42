#ifndef ARBORIST_DIAGNOSIS_LINT_READING_KEPT_RULES_H
#define ARBORIST_DIAGNOSIS_LINT_READING_KEPT_RULES_H

namespace diagnosis::lint {

/// Calls `visit(rule)` for each of the rules, all of one family, that the engine keeps.
template <typename Rules, typename Visit>
void ForEachKept(const Rules& rules, Visit visit)
{
    for (const auto& rule : rules) {
        if (rule.isKept) {
            visit(rule);
        }
    }
}

} // namespace diagnosis::lint

#endif
