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

/// A path that the rules name, and whether it exists on the device.
struct NamedPath {
    std::string path;
    bool isThere = false;
};

/// The content of a bundle, as far as it could be read.
struct BundleContents {
    std::string bundle;
    /// Set if the bundle could not be entered; all other members are empty then.
    std::optional<Failure> failure;
    std::vector<Warning> warnings;
    /// The mistakes of the rule set, if they were looked for.
    std::vector<Warning> ruleSetWarnings;
    bool isZip = false;
    Bundle description;
    /// The current time of the bundle in seconds since the epoch.
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

/// Number of entries of a file of the rule set; 0 if the file was not read.
std::size_t RuleSetCount(const BundleContents& contents, Evidence::RuleSetFileType type);

/// Whether to look for mistakes in the rule set, too.
enum class BundleLook { AS_IT_IS, FOR_MISTAKES };

/// Reads the whole bundle without running any rule.
BundleContents LookIntoBundle(
    const BundlePath& bundle, const BundleOverrides& overrides, BundleLook look = BundleLook::AS_IT_IS);

/// The result of one check. SOUND; DOUBTFUL: a detection works with it and warns of it; MISSING: a detection works without
/// it, but devices usually have it; or BROKEN.
struct BundleFinding {
    enum class State { SOUND, DOUBTFUL, MISSING, BROKEN };
    State state;
    /// The word of the failure or the warning; empty for a sound one.
    std::string code;
    Remark what;
    ExitStatus status = ExitStatus::SUCCESS;
    /// The status under --strict.
    ExitStatus strictStatus = status;
};

/// "ok", "warning", "missing" or "broken".
const char* StateWord(BundleFinding::State state);

/// Checks piece by piece whether a bundle can be run with everything that its rules read.
std::vector<BundleFinding> CheckBundle(const BundleContents& contents);

} // namespace diagnosis

#endif
