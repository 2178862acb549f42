#include "arborist/frame/check.h"

#include <numeric>

namespace Evidence {

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
