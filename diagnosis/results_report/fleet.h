#ifndef ARBORIST_DIAGNOSIS_RESULTS_REPORT_FLEET_H
#define ARBORIST_DIAGNOSIS_RESULTS_REPORT_FLEET_H

#include <cstdint>
#include <string>
#include <vector>

#include "arborist/frame/evidence_words.h"
#include "diagnosis/results_report/repair_effect.h"

namespace diagnosis {

/// An engine and a rule set, and how many bundles they diagnosed or failed to.
struct FleetRun {
    std::string engine;
    std::string ruleSet;
    std::uint64_t bundles = 0;
};

/// Bundles by the most serious verdict of their trees.
struct BundleStates {
    std::uint64_t fault = 0;
    std::uint64_t undecided = 0;
    std::uint64_t noFault = 0;
    std::uint64_t notApplicable = 0;
    /// Could not be diagnosed, and have no trees.
    std::uint64_t failed = 0;

    std::uint64_t All() const { return fault + undecided + noFault + notApplicable + failed; }
};

/// The verdicts of one tree, in all its versions.
struct TreeVerdicts {
    std::string tree;
    std::uint64_t fault = 0;
    std::uint64_t undecided = 0;
    std::uint64_t noFault = 0;
    std::uint64_t notApplicable = 0;
    /// Bundles that were diagnosed without this tree.
    std::uint64_t absent = 0;

    std::uint64_t All() const { return fault + undecided + noFault + notApplicable + absent; }
};

/// A root cause by its tree and event, whatever its cut sets.
struct CommonCause {
    std::string tree;
    std::string event;
    std::string name;
    std::uint64_t bundles = 0;
};

/// The commonest causes, the first first, and how often two are in one bundle.
struct CommonCauses {
    /// Number of different causes, listed or not.
    std::uint64_t different = 0;
    std::vector<CommonCause> causes;
    /// For the first MOST_TOGETHER causes a row with a count for each of them; that of the cause itself on the diagonal.
    std::vector<std::vector<std::uint64_t>> together;

    static constexpr std::size_t MOST = 30;
    static constexpr std::size_t MOST_TOGETHER = 12;
};

/// Open checks that ended in the same way.
struct OpenByReason {
    std::string check;
    std::string reason;
    std::uint64_t checks = 0;
    std::uint64_t bundles = 0;
};

/// Open checks with the same missing source.
struct OpenBySource {
    /// NONE for a word that this version doesn't know.
    Evidence::Reason reason = Evidence::Reason::NONE;
    std::string detail;
    std::uint64_t checks = 0;
    std::uint64_t bundles = 0;
    /// Undecided trees with a check that lacks it, alone or among others.
    std::uint64_t undecidedTrees = 0;
};

struct OpenChecks {
    std::uint64_t checks = 0;
    /// The most checks first.
    std::vector<OpenByReason> byReason;
    /// Those that keep the most undecided trees open first; `rest` has what the others add up to.
    std::vector<OpenBySource> bySource;
    std::uint64_t sourcesInRest = 0;
    std::uint64_t checksInRest = 0;

    static constexpr std::size_t MOST = 30;
};

/// Bundles that failed alike.
struct CommonFailure {
    std::string code;
    bool retry = false;
    std::uint64_t bundles = 0;
    std::string example;
};

struct SlowBundle {
    std::string bundle;
    std::string moment;
    std::int64_t microseconds = 0;
};

struct RunTimes {
    std::uint64_t bundles = 0;
    /// All together, the median and the 95th percentile, in microseconds.
    std::int64_t sum = 0;
    std::int64_t median = 0;
    std::int64_t most95 = 0;
    std::vector<SlowBundle> slowest;

    static constexpr std::size_t MOST = 20;
};

/// A week from Monday on.
struct FleetWeek {
    /// "YYYY-MM-DD".
    std::string monday;
    BundleStates bundles;
    /// For each of the first MOST_LINES common causes, the number of these bundles that have it.
    std::vector<std::uint64_t> causes;
};

struct FleetTrend {
    /// Consecutive, including weeks without bundles. At most MOST: the stretch with the most bundles.
    std::vector<FleetWeek> weeks;
    std::uint64_t before = 0;
    std::uint64_t after = 0;
    /// Bundles without a moment.
    std::uint64_t undated = 0;

    static constexpr std::size_t MOST = 104;
    static constexpr std::size_t MOST_LINES = 6;
};

struct RepairFigures {
    std::int64_t withinDays = 0;
    std::uint64_t devices = 0;
    std::uint64_t bundlesWithoutDevice = 0;
    /// The repairs on record on the most devices first.
    std::vector<RepairEffect> effects;
    /// Number of further repairs that a cause names and a device has on record.
    std::uint64_t leftOut = 0;
    /// Number of repairs on record that no root cause of these results names.
    std::uint64_t withoutCause = 0;

    static constexpr std::size_t MOST = 40;
};

/// All figures about the bundles of a results database.
struct Fleet {
    /// At most MOST_RUNS; `runs` that are left out are counted.
    std::vector<FleetRun> runs;
    std::uint64_t runsLeftOut = 0;
    /// First and last moment of a detection, "YYYY-MM-DD HH:MM:SS"; empty if none is known.
    std::string from;
    std::string until;
    BundleStates bundles;
    std::vector<TreeVerdicts> trees;
    std::uint64_t treesLeftOut = 0;
    CommonCauses causes;
    OpenChecks open;
    std::vector<CommonFailure> failures;
    RunTimes times;
    FleetTrend trend;
    RepairFigures repairs;

    static constexpr std::size_t MOST_RUNS = 20;
    static constexpr std::size_t MOST_TREES = 60;
};

} // namespace diagnosis

#endif
