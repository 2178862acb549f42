#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

std::span<const Check> DescriptionChecks()
{
    return {};
}

} // namespace diagnosis::lint
