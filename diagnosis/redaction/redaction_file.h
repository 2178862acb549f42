#ifndef ARBORIST_DIAGNOSIS_REDACTION_REDACTION_FILE_H
#define ARBORIST_DIAGNOSIS_REDACTION_REDACTION_FILE_H

#include <cstdint>
#include <map>
#include <optional>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "diagnosis/problem.h"

namespace diagnosis {

/// Paths of node files whose content is replaced.
struct NodePattern {
    std::string text;
    std::regex pattern;
};

/// Members of the "extra" of some events whose values are replaced.
struct LogMembers {
    /// Ranges of event numbers, both ends inclusive; none for all events.
    std::vector<std::pair<std::int64_t, std::int64_t>> events;
    /// The names as they were given, by the same in lower case: case makes no difference.
    std::map<std::string, std::string> names;

    bool HasEvent(std::int64_t event) const;
};

/// What is to be replaced by keyed hashes, and the key.
struct Redaction {
    std::string key;
    /// Names of bundle.json as RedactableKeys has them.
    std::vector<std::string> bundleKeys;
    std::vector<NodePattern> nodes;
    std::vector<LogMembers> log;
    /// Parts of result lines, of those that REDACTABLE_RESULTS has.
    std::vector<std::string> results;
};

/// The keys of bundle.json whose values can be replaced: texts that name no place of the bundle ("device.Product").
std::vector<std::string> RedactableKeys();

/// The parts of a result line that can be replaced.
inline constexpr const char* REDACTABLE_RESULTS[] = {"bundle", "device", "details", "warnings", "error", "explanation"};

/// Reads a redaction file strictly: an unknown key is an error, since a misspelt one would leave its value as it is. A
/// "keyFile" is relative to the folder of the file. The message of a failure lists all that is wrong.
std::optional<Failure> ReadRedactionFile(const std::string& path, Redaction& redaction);

/// The text in lower case, ASCII letters only, as SQLite compares names.
std::string LowerLetters(std::string text);

} // namespace diagnosis

#endif
