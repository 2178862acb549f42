#include "arborist/frame/check.h"

#include <numeric>

namespace Evidence {

const char* CheckText(Check check)
{
    switch (check) {
    case Check::NONE:
        return "";
    case Check::NOT_APPLICABLE:
        return "not_applicable";
    case Check::NOT_SELECTED:
        return "not_selected";
    case Check::DECIDED:
        return "decided";
    case Check::NOT_CHECKED:
        return "not_checked";
    case Check::DATA_MISSING:
        return "no_data";
    case Check::RULE_UNUSABLE:
        return "error";
    }
    return "";
}

void CheckCounts::Add(Check check)
{
    if (check != Check::NONE) {
        ++mCounts[static_cast<std::size_t>(check)];
    }
}

std::size_t CheckCounts::Total() const
{
    return std::accumulate(mCounts.begin(), mCounts.end(), std::size_t{0});
}

std::size_t CheckCounts::Open() const
{
    return Of(Check::NOT_CHECKED) + Of(Check::DATA_MISSING) + Of(Check::RULE_UNUSABLE);
}

} // namespace Evidence
