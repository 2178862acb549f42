#ifndef ARBORIST_DIAGNOSIS_RESULTS_DB_LOCAL_MOMENT_H
#define ARBORIST_DIAGNOSIS_RESULTS_DB_LOCAL_MOMENT_H

#include <cstdint>
#include <optional>
#include <string>

namespace diagnosis::results_db {

/// A moment "YYYY-MM-DD HH:MM:SS" of no known zone, as seconds since 1970 with all days having 24 hours. Nothing for any
/// other text, and for a date that doesn't exist.
std::optional<std::int64_t> LocalMoment(const std::string& text);

} // namespace diagnosis::results_db

#endif
