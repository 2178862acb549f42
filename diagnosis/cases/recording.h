#ifndef ARBORIST_DIAGNOSIS_CASES_RECORDING_H
#define ARBORIST_DIAGNOSIS_CASES_RECORDING_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/detection/code_answers.h"
#include "diagnosis/problem.h"

namespace diagnosis::cases {

/// Most rows of the event log and of external databases that a recorded case may have.
inline constexpr std::size_t MOST_RECORDED_ROWS = 10'000;

struct RecordOptions {
    BundleOverrides overrides;
    CodeRunner codeRunner;
    /// Path of the file that will have the case, from which it names its rule set; empty for one in the working
    /// directory.
    std::string target;
};

/// A case as the content of a file.
struct Recording {
    /// Set if there is none: the bundle can't be diagnosed, its rules query too many rows, or a case can't represent
    /// what they read.
    std::optional<Failure> failure;
    std::vector<Warning> warnings;
    std::string text;
};

/// Diagnoses a bundle, and writes a case of a device that gives the same answers: its data is what the rules read, and
/// it expects the root causes, verdicts and statuses of this run, right or wrong, marked as not reviewed. The case was
/// run and passes. Takes the library's log meanwhile, as RunTests does.
Recording RecordCase(const BundlePath& bundle, const RecordOptions& options);

} // namespace diagnosis::cases

#endif
