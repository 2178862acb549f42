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

    /// Adds a warning; one with the code and message of another only increments the count of that one.
    void Add(const Warning& warning) { Add(warning, 1); }
    void Add(WarningCode code, const std::string& message) { Add(Warning(code, message)); }
    void Add(const std::vector<Warning>& warnings);
    void Add(const WarningList& others)
    {
        AddUnless(others, [](const Warning&) { return false; });
    }
    /// Adds those for which `isKnown(warning)` is false.
    template <typename IsKnown>
    void AddUnless(const WarningList& others, IsKnown isKnown)
    {
        for (const Entry& entry : others.mEntries) {
            if (!isKnown(entry.warning)) {
                Add(entry.warning, entry.count);
            }
        }
        AddNumbers(others);
    }

    /// Calls `visit(warning)` for each, which may change all but code and message.
    template <typename Visit>
    void ForEach(Visit visit)
    {
        for (Entry& entry : mEntries) {
            visit(entry.warning);
        }
    }

    /// The warnings, with " (3 times)" behind repeated ones, and one line for each code with more than the limit.
    std::vector<Warning> Told() const;
    /// The same without the numbers of times.
    std::vector<Warning> ToldOnce() const;

private:
    struct Entry {
        Warning warning;
        std::size_t count;
    };

    void Add(const Warning& warning, std::size_t count);
    std::vector<Warning> ToldWith(bool hasTimes) const;
    /// Adds the numbers of those that the other list left out.
    void AddNumbers(const WarningList& others);

    std::vector<Entry> mEntries;
    std::map<std::pair<WarningCode, std::string>, std::size_t> mPlaces;
    std::map<WarningCode, std::size_t> mNumbers;
};

} // namespace diagnosis

#endif
