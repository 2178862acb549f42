#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

std::span<const Check> CommandChecks()
{
    return {};
}

} // namespace diagnosis::lint
