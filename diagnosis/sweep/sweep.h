#ifndef ARBORIST_DIAGNOSIS_SWEEP_SWEEP_H
#define ARBORIST_DIAGNOSIS_SWEEP_SWEEP_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/detection/code_answers.h"
#include "diagnosis/problem.h"
#include "diagnosis/sweep/sweep_recorder.h"

namespace diagnosis {

/// Options of a sweep.
struct SweepOptions {
    BundleOverrides overrides;
    CodeRunner codeRunner;
    /// The first and the last moment, as ParseMoment takes them; a date alone means its first or its last second. Empty:
    /// from the first row of the log to the bundle's moment, or to the last row if that is later.
    std::string from;
    std::string until;
    /// Only this tree, and only rules of this name. Empty for all.
    std::string tree;
    std::string rule;
    /// See SweepRequest.
    std::size_t mostTableMoments = 1000;
    /// Takes a SIGINT as the end of the sweep; see StoppedBySignal.
    bool stopsOnSignal = false;
};

/// The numbers of rows in the log in parts of equal length of a sweep's time.
using LogDensity = std::vector<std::uint64_t>;

/// The complete output of a sweep, from which all renderings are made. Times are seconds since the epoch.
struct SweepReport {
    std::string bundle;
    /// Set if the bundle could not be swept; there is nothing else then.
    std::optional<Failure> failure;
    /// The problems that make the answers less reliable.
    std::vector<Warning> warnings;
    std::int64_t from = 0;
    std::int64_t until = 0;
    /// The bundle's time zone, in which times are shown; empty for that of this machine.
    std::string tz;
    std::vector<SweptTree> trees;
    std::vector<SweptRule> rules;
    SweepPlan plan;
    LogDensity density;
};

/// Sweeps the event log of a bundle: what detections find as of every moment. Every failure is in the report.
SweepReport RunSweep(const BundlePath& bundle, const SweepOptions& options);

} // namespace diagnosis

#endif
