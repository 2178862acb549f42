#ifndef ARBORIST_DIAGNOSIS_CASES_COMPARISON_H
#define ARBORIST_DIAGNOSIS_CASES_COMPARISON_H

#include <string>
#include <vector>

#include "diagnosis/cases/test_case.h"
#include "diagnosis/detection/detection.h"

namespace diagnosis::cases {

/// One thing in which an answer is not as a case demands.
struct Difference {
    /// A text of an answer, and what explains it; the note may be empty.
    struct Entry {
        std::string text;
        std::string note;

        bool operator==(const Entry&) const = default;
    };

    /// "root causes of LAPTOP_POWER", "status of CHARGE_LOST".
    std::string subject;
    /// What was demanded and is not there, and what is there instead; without what both have.
    std::vector<Entry> missing;
    std::vector<Entry> unexpected;

    bool operator==(const Difference&) const = default;
};

/// Compares the answer of a detection, which has an explanation, with what is expected. `logLines` are the lines of the
/// library's log; they are read only if lines are expected.
std::vector<Difference> Compare(
    const Expectations& expected, const DetectionReport& report, const std::vector<std::string>& logLines);

} // namespace diagnosis::cases

#endif
