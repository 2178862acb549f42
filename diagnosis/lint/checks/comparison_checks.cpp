#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

std::span<const Check> ComparisonChecks()
{
    return {};
}

} // namespace diagnosis::lint
