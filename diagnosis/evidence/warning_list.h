#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_WARNING_LIST_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_WARNING_LIST_H

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "diagnosis/problem.h"

namespace diagnosis {

/// Warnings of one bundle, each listed once, in the order of their first occurrence.
///
/// Keeps only the first LARGEST_NUMBER different ones of each code, as a foreign rule set can cause any number.
class WarningList {
public:
    static constexpr std::size_t LARGEST_NUMBER = 100;

    /// Adds a warning; a repetition only increments the count of the first.
    void Add(const std::string& code, const std::string& message);
    void Add(const std::vector<Warning>& warnings);

    /// The warnings, with " (3 times)" behind repeated ones, and one line for each code with more than the limit.
    std::vector<Warning> Told() const;

private:
    struct Entry {
        Warning warning;
        std::size_t count;
    };

    std::vector<Entry> mEntries;
    std::map<std::pair<std::string, std::string>, std::size_t> mPlaces;
    std::map<std::string, std::size_t> mNumbers;
};

/// The exit status of a warning under --strict: RULE_SET if the rule set is at fault, otherwise INPUT.
ExitStatus StrictStatus(const Warning& warning);

} // namespace diagnosis

#endif
