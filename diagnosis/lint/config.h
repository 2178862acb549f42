#ifndef ARBORIST_DIAGNOSIS_LINT_CONFIG_H
#define ARBORIST_DIAGNOSIS_LINT_CONFIG_H

#include <optional>
#include <string>
#include <vector>

namespace diagnosis::lint {

/// The content of a configuration file: strict JSON, every key optional.
struct Config {
    std::vector<std::string> tags;
    std::string prefix;
    /// Ids of checks.
    std::vector<std::string> disable;
    std::vector<std::string> only;
    /// "error", "warning" or "info"; empty if the file has none.
    std::string failLevel;
    /// Files, relative to the folder of the configuration; empty for none.
    std::string baseline;
    std::vector<std::string> devices;
    /// Cases that guard fixes.
    std::vector<std::string> tests;
};

/// Nothing, with the reason in `problem`, if the file can't be read, or for unknown keys, ids and words.
std::optional<Config> ReadConfig(const std::string& path, std::string& problem);

/// The message for an id that is no check: `no such check: A9999; did you mean ...`; empty if all are checks.
std::string UnknownCheck(const std::vector<std::string>& ids);

} // namespace diagnosis::lint

#endif
