#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

std::span<const Check> SqlChecks()
{
    return {};
}

} // namespace diagnosis::lint
