#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

std::span<const Check> CommonPartChecks()
{
    return {};
}

} // namespace diagnosis::lint
