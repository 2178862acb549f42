#ifndef ARBORIST_DIAGNOSIS_DETECTION_DETECTION_H
#define ARBORIST_DIAGNOSIS_DETECTION_DETECTION_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/bundle/repair_records.h"
#include "diagnosis/detection/code_answers.h"
#include "diagnosis/detection/stop_switch.h"
#include "diagnosis/evidence/recorded_tree.h"
#include "diagnosis/evidence/rule_set_memory.h"
#include "diagnosis/problem.h"
#include "diagnosis/redaction/hash_key.h"

namespace diagnosis {

/// Options of a detection.
struct DetectionOptions {
    BundleOverrides overrides;
    CodeRunner codeRunner;
    bool withTrees = false;
    bool withExplanation = false;
    /// Keep what nothing but the line of JSON shows: the cut sets of root causes, the digest of the rule set, and the
    /// repairs on record.
    bool isForLine = false;
    /// Warn of mistakes in the rule set, whichever rules the device asks for.
    bool checksRuleSet = true;
    /// What is known of rule sets from earlier detections; may be null.
    std::shared_ptr<RuleSetMemory> ruleSets = nullptr;
    /// A SIGINT stops the detection instead of ending the process; see StoppedBySignal.
    bool stopsOnSignal = false;
    DeviceNames deviceNames;
    /// Lets another thread stop the detection, or what comes before it; may be null. It must outlive the detection.
    StopSwitch* stop = nullptr;
};

/// The complete output of one detection, from which all renderings are made.
struct DetectionReport {
    std::string bundle;
    /// Set if the bundle could not be run; there are no trees then.
    std::optional<Failure> failure;
    std::vector<Warning> warnings;
    TreeReports trees;
    /// The name of the device, as the options ask for it; empty for a device without an id.
    std::string device;
    /// As requested: whether the report shows the trees, and the explanation.
    bool withTrees = false;
    bool withExplanation = false;
    /// The bundle that was diagnosed, without the id of its device, and the time of the diagnosis as local time. Set
    /// once the bundle is entered.
    Bundle subject;
    std::string moment;
    /// RuleSetReading::GetDigest, if requested.
    std::string ruleSet = {};
    /// The repairs on record at that moment, if requested; none of a bundle that could not be run.
    std::vector<RepairRecord> repaired = {};
    /// How long the detection took, by the clock on the wall.
    double seconds = 0;

    bool IsFault() const;
    bool IsUndecided() const;
    /// Whether a check of any tree is an error of the rule set.
    bool HasUnusableRule() const;
};

/// Runs one detection for a bundle. Every failure, including an exception, is in the report.
DetectionReport RunDetection(const BundlePath& bundle, const DetectionOptions& options);

/// Runs one detection with each of these rule sets, absolute paths of folders, in turn: the bundle is entered once,
/// with one moment for all, and each detection starts from the bundle's own databases. A report for each, as
/// RunDetection makes it, with the seconds of its own detection.
std::vector<DetectionReport> RunDetections(
    const BundlePath& bundle, const DetectionOptions& options, const std::vector<std::string>& rules);

/// Reads the bundle's rule set and adds its mistakes, unless the bundle failed so that the failure says what is wrong with
/// the files. Call it while the bundle is entered.
void AddRuleSetWarnings(const Bundle& bundle, const std::optional<Failure>& failure, WarningList& warnings);

/// The failure if the loaded rule set can't be used: a file is missing or malformed, or the tag has no tree.
std::optional<Failure> RuleSetFailure(const Evidence::RuleSet& ruleSet, const Bundle& bundle);

/// The current exception as a failure. Call it in a catch block while the bundle is entered.
std::optional<Failure> FailureInFlight(const Evidence::RuleSet& ruleSet = {});

} // namespace diagnosis

#endif
