#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

std::span<const Check> CodeRuleChecks()
{
    return {};
}

} // namespace diagnosis::lint
