#ifndef ARBORIST_DIAGNOSIS_DETECTION_DETECTION_H
#define ARBORIST_DIAGNOSIS_DETECTION_DETECTION_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "arborist/frame/fault_tree_result.h"
#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/detection/code_answers.h"
#include "diagnosis/evidence/detection_recorder.h"
#include "diagnosis/evidence/explanation.h"
#include "diagnosis/problem.h"

namespace diagnosis {

/// What the command line says about every detection.
struct DetectionOptions {
    BundleOverrides overrides;
    CodeRunner codeRunner;
    bool withTrees = false;
    bool withExplanation = false;
};

/// Everything that one detection leaves behind; the renderers show it and nothing else.
struct DetectionReport {
    std::string bundle;
    /// Why the bundle could not be run; there are no results then.
    std::optional<Failure> failure;
    std::vector<Warning> warnings;
    std::vector<std::shared_ptr<FaultTreeResult>> results;
    /// The trees of the results, in the same order; empty unless asked for.
    std::vector<RecordedTree> trees;
    /// What was diagnosed, and the moment in force as local time. Set once the bundle is entered.
    Bundle subject;
    std::string moment;
    /// Null unless asked for.
    std::shared_ptr<const Explanation> explanation;

    bool IsFault() const;
};

/// Runs one detection for a bundle. Whatever goes wrong, exceptions included, is told in the report.
DetectionReport RunDetection(const BundlePath& bundle, const DetectionOptions& options);

/// Whether the rule set that an engine tried to load can be used: a file is missing or malformed, or no tree stands
/// under the tag.
std::optional<Failure> RuleSetFailure(const Evidence::RuleSet& ruleSet, const Bundle& bundle);

/// The exception in flight as a failure; to be called in a catch block while the bundle is entered.
std::optional<Failure> FailureInFlight(const Evidence::RuleSet& ruleSet = {});

} // namespace diagnosis

#endif
