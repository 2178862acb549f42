#ifndef ARBORIST_DIAGNOSIS_CAPTURE_BUNDLE_CAPTURE_H
#define ARBORIST_DIAGNOSIS_CAPTURE_BUNDLE_CAPTURE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/detection/code_answers.h"
#include "diagnosis/problem.h"

namespace diagnosis {

/// What the command line says about a capture.
struct CaptureOptions {
    BundleOverrides overrides;
    /// With a program, a detection is run and its answers are recorded.
    CodeRunner codeRunner;
    /// Of the event log only what the longest window of the rules reaches.
    bool isWindowOnly = false;
};

struct CaptureReport {
    std::optional<Failure> failure;
    std::vector<Warning> warnings;
    std::uint64_t files = 0;
    std::uint64_t bytes = 0;
    /// The files by their names in the capture, in the order in which they were taken.
    std::vector<std::string> names;
};

/// Captures a bundle, and what its rules name outside it, into a bundle that stands for itself: a zip when `given`
/// ends in ".zip", which replaces an old one, else a folder, which must not be there. Either comes into being whole.
CaptureReport CaptureBundle(const BundlePath& bundle, const std::string& given, const CaptureOptions& options);

} // namespace diagnosis

#endif
