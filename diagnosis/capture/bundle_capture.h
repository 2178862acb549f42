#ifndef ARBORIST_DIAGNOSIS_CAPTURE_BUNDLE_CAPTURE_H
#define ARBORIST_DIAGNOSIS_CAPTURE_BUNDLE_CAPTURE_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/detection/code_answers.h"
#include "diagnosis/problem.h"
#include "diagnosis/redaction/redaction_file.h"
#include "diagnosis/redaction/redaction_report.h"

namespace diagnosis {

/// Options of a capture.
struct CaptureOptions {
    BundleOverrides overrides;
    /// If it has a program, runs a detection and records its answers.
    CodeRunner codeRunner;
    /// Captures only the part of the event log within the longest window of the rules.
    bool isWindowOnly = false;
    /// What is replaced by keyed hashes in the capture; may be null.
    std::shared_ptr<const Redaction> redaction;
};

struct CaptureReport {
    std::optional<Failure> failure;
    std::vector<Warning> warnings;
    std::uint64_t files = 0;
    std::uint64_t bytes = 0;
    /// The names of the captured files, in the order of copying.
    std::vector<std::string> names;
    /// What was replaced; set if a redaction was asked for and nothing failed.
    std::optional<RedactionReport> redaction;
};

/// Copies a bundle, with everything outside it that its rules name, into a self-contained bundle: a zip if `given` ends
/// in ".zip", which replaces an existing one, otherwise a folder, which must not exist. Either is created atomically.
CaptureReport CaptureBundle(const BundlePath& bundle, const std::string& given, const CaptureOptions& options);

} // namespace diagnosis

#endif
