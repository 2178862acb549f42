#ifndef ARBORIST_DIAGNOSIS_CAPTURE_BUNDLE_CONTENTS_H
#define ARBORIST_DIAGNOSIS_CAPTURE_BUNDLE_CONTENTS_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/evidence/detection_recorder.h"
#include "diagnosis/log_db/inspect_log.h"
#include "diagnosis/problem.h"

namespace diagnosis {

/// A path that the rules name, and whether something stands there on the device.
struct NamedPath {
    std::string path;
    bool isThere = false;
};

/// What a bundle holds, as far as it could be looked into.
struct BundleContents {
    std::string bundle;
    /// Why the bundle could not be entered; all else is empty then.
    std::optional<Failure> failure;
    std::vector<Warning> warnings;
    bool isZip = false;
    Bundle description;
    /// The moment in force, seconds since the epoch.
    std::int64_t now = 0;
    std::vector<Evidence::RuleSetFile> ruleFiles;
    std::optional<Failure> ruleSetFailure;
    bool hasLog = false;
    LogInspection log;
    std::optional<Failure> logFailure;
    std::size_t repairRecords = 0;
    std::optional<Failure> repairFailure;
    std::vector<NamedPath> nodeFiles;
    std::vector<NamedPath> searchedFolders;
};

/// How many entries a file of the rule set has; 0 for a file that was not read.
std::size_t RuleSetCount(const BundleContents& contents, Evidence::RuleSetFileType type);

/// Reads all of a bundle, and runs nothing.
BundleContents LookIntoBundle(const BundlePath& bundle, const BundleOverrides& overrides);

/// One thing that was checked. SOUND, or MISSING: it runs without, but a device has it as a rule; or BROKEN.
struct BundleFinding {
    enum class State { SOUND, MISSING, BROKEN };
    State state;
    std::string code;
    std::string message;
    ExitStatus status = ExitStatus::SUCCESS;
};

/// "ok", "missing" or "broken".
const char* StateWord(BundleFinding::State state);

/// Whether a bundle can be run with all that its rules look at, piece by piece.
std::vector<BundleFinding> CheckBundle(const BundleContents& contents);

} // namespace diagnosis

#endif
