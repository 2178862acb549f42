#include "diagnosis/results_report/wilson.h"

#include <algorithm>
#include <cmath>

namespace diagnosis {

namespace {

// Between minus and plus this lie 95 percent of a standard normal distribution.
constexpr double Z = 1.959963984540054;

} // namespace

ShareInterval WilsonInterval(std::uint64_t part, std::uint64_t whole)
{
    if (whole == 0) {
        return {};
    }
    const auto size = static_cast<double>(whole);
    const double share = static_cast<double>(part) / size;
    const double scale = 1 + Z * Z / size;
    const double middle = (share + Z * Z / (2 * size)) / scale;
    const double half = Z * std::sqrt(share * (1 - share) / size + Z * Z / (4 * size * size)) / scale;
    // Rounding must not leave a bound beside 0 or 1 where it is exactly that.
    return {share, part == 0 ? 0 : std::max(0.0, middle - half), part == whole ? 1 : std::min(1.0, middle + half)};
}

} // namespace diagnosis
