#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

std::span<const Check> NodeChecks()
{
    return {};
}

} // namespace diagnosis::lint
