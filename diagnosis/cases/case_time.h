#ifndef ARBORIST_DIAGNOSIS_CASES_CASE_TIME_H
#define ARBORIST_DIAGNOSIS_CASES_CASE_TIME_H

#include <cstdint>
#include <optional>
#include <string>

namespace diagnosis::cases {

/// The moment of a device whose case names none.
inline constexpr char DEFAULT_NOW[] = "2024-01-01 12:00:00";
inline constexpr char DEFAULT_ZONE[] = "UTC";

/// The seconds of a distance from the case's moment: "-3d", "-12h", "-30m", "+5s"; a day has 86,400 seconds. Nothing
/// for any other text.
std::optional<std::int64_t> ParseDistance(const std::string& text);

} // namespace diagnosis::cases

#endif
