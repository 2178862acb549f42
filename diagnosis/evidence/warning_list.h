#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_WARNING_LIST_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_WARNING_LIST_H

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "diagnosis/problem.h"

namespace diagnosis {

/// Warnings of one bundle, each told once, in the order in which they first came up.
///
/// A rule set of a stranger can make any number of them: of one code only the first LARGEST_NUMBER are kept apart.
class WarningList {
public:
    static constexpr std::size_t LARGEST_NUMBER = 100;

    /// A repetition adds to the count of the first.
    void Add(const std::string& code, const std::string& message);
    void Add(const std::vector<Warning>& warnings);

    /// With " (3 times)" behind what came up more than once, and one line a code for those past the limit.
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

/// What --strict makes of a warning: RULE_SET where the rule set is at fault, else INPUT.
ExitStatus StrictStatus(const Warning& warning);

} // namespace diagnosis

#endif
