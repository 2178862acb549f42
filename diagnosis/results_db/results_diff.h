#ifndef ARBORIST_DIAGNOSIS_RESULTS_DB_RESULTS_DIFF_H
#define ARBORIST_DIAGNOSIS_RESULTS_DB_RESULTS_DIFF_H

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "diagnosis/problem.h"
#include "diagnosis/results_db/results_database.h"
#include "diagnosis/sqlite/connection.h"

namespace diagnosis::results_db {

/// The verdict of a tree in a bundle, or that the line has no such tree.
enum class TreeVerdict { FAULT, UNDECIDED, NO_FAULT, NOT_APPLICABLE, ABSENT };
inline constexpr std::size_t TREE_VERDICTS = 5;
/// "fault", "undecided", "no_fault", "not_applicable", "absent".
const char* VerdictWord(TreeVerdict verdict);

/// Why a bundle, tree or root cause can't be compared. It counts neither as new nor as gone.
enum class NotComparable {
    MISSING_BEFORE, ///< the bundle has no line
    MISSING_AFTER,
    FAILED_BEFORE, ///< the bundle was not diagnosed
    FAILED_AFTER,
    FAILED_BOTH,
    UNDECIDED_BEFORE, ///< the tree is undecided
    UNDECIDED_AFTER,
    UNDECIDED_BOTH,
    OPEN_BEFORE, ///< a root cause of the other side has a member, or an event above one, whose check is open
    OPEN_AFTER,
};
inline constexpr std::size_t NOT_COMPARABLE_REASONS = 10;
/// "missing_before" ...
const char* NotComparableWord(NotComparable reason);

/// How many, and the first bundles of them in the order of their names.
struct Occurrences {
    static constexpr std::size_t MOST_EXAMPLES = 5;

    std::int64_t count = 0;
    std::vector<std::string> examples;

    void Add(const std::string& bundle);
};

/// One of the two results that are compared.
struct ResultsSide {
    std::string path;
    std::int64_t bundles = 0;
    std::int64_t failed = 0;
    /// All different ones, sorted; rule sets without those that are not known.
    std::vector<std::string> engines;
    std::vector<std::string> ruleSets;
    /// The first and the last moment, "YYYY-MM-DD HH:MM:SS"; empty if none is known.
    std::string firstMoment;
    std::string lastMoment;
    /// Wall time of the bundles that were diagnosed on both sides.
    double seconds = 0;
};

/// A root cause, known by its tree and its cut set, in the bundles that are compared.
struct CauseChange {
    std::string tree;
    /// The paths of the members, sorted, each once.
    std::vector<std::string> cutSet;
    /// Of the later side, if that has the cause.
    std::string id;
    std::string name;
    Occurrences added;
    Occurrences gone;
    Occurrences unchanged;
    Occurrences notComparable;
};

/// Bundles whose tree has one verdict before and another after.
struct VerdictChange {
    std::string tree;
    TreeVerdict before = TreeVerdict::ABSENT;
    TreeVerdict after = TreeVerdict::ABSENT;
    Occurrences bundles;
};

/// Bundles in which a check is open on the later side alone.
struct NewlyOpen {
    std::string tree;
    std::string event;
    std::string rule;
    std::string reason;
    Occurrences bundles;
};

/// Where two results of the same bundles differ. Does not depend on the order of the lines.
struct ResultsDiff {
    ResultsSide before;
    ResultsSide after;
    /// Bundles that were diagnosed on both sides, and those of them whose moments differ.
    std::int64_t compared = 0;
    std::int64_t otherMoment = 0;
    /// How many trees of these bundles have the one verdict before and the other after.
    std::array<std::array<std::int64_t, TREE_VERDICTS>, TREE_VERDICTS> matrix = {};
    /// All but trees that are undecided on a side, by tree and verdicts.
    std::vector<VerdictChange> verdicts;
    /// All root causes, those that changed in most bundles first.
    std::vector<CauseChange> causes;
    /// Bundles, trees or root causes, by NotComparable.
    std::array<Occurrences, NOT_COMPARABLE_REASONS> notComparable;
    /// Those of most bundles first.
    std::vector<NewlyOpen> newlyOpen;

    /// How many root causes of a bundle are new, and how many are gone.
    std::int64_t Added() const;
    std::int64_t Gone() const;
    /// How many trees of a bundle have another verdict.
    std::int64_t ChangedVerdicts() const;
    /// True if anything is new, gone, changed or newly open, or can't be compared for a reason that one side alone has.
    bool HasDifference() const;
};

/// Compares two results, each a results database or a file of result lines ("-" for standard input). Bundles are those of
/// one name; where a side has several lines of it, those of the latest moment that both have count, or else the latest, and
/// of one moment one that was diagnosed. Returns the failure, if any: `mixed_rules` where several results of that moment,
/// of different rule sets or engines, could count. Asks `tryAgain` while another process has a database locked.
std::optional<Failure> CompareResults(const std::string& before, const std::string& after, ResultsDiff& diff,
    const std::function<bool(int tries)>& tryAgain = WaitForOthers);

/// The same for two open results databases. Sets all but the paths of the sides, which a failure names.
std::optional<Failure> CompareDatabases(Connection& before, Connection& after, ResultsDiff& diff);

} // namespace diagnosis::results_db

#endif
