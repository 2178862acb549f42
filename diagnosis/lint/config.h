#ifndef ARBORIST_DIAGNOSIS_LINT_CONFIG_H
#define ARBORIST_DIAGNOSIS_LINT_CONFIG_H

#include <optional>
#include <string>
#include <vector>

namespace diagnosis::lint {

/// What a configuration file says: strict JSON, every key optional.
struct Config {
    std::vector<std::string> tags;
    std::string prefix;
    /// Ids of checks.
    std::vector<std::string> disable;
    std::vector<std::string> only;
    /// "error", "warning" or "info"; empty where the file does not say.
    std::string failLevel;
    /// Files, relative to the folder of the configuration; empty for none.
    std::string baseline;
    std::vector<std::string> devices;
};

/// Nothing, with the reason in `problem`, for a file that can't be read, and for keys, ids and words that are not known.
std::optional<Config> ReadConfig(const std::string& path, std::string& problem);

/// Why these are no ids of checks: `no such check: A9999; did you mean ...`; empty when all are.
std::string UnknownCheck(const std::vector<std::string>& ids);

} // namespace diagnosis::lint

#endif
