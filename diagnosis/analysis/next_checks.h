#ifndef ARBORIST_DIAGNOSIS_ANALYSIS_NEXT_CHECKS_H
#define ARBORIST_DIAGNOSIS_ANALYSIS_NEXT_CHECKS_H

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "diagnosis/analysis/check_fold.h"
#include "diagnosis/evidence/recorded_tree.h"

namespace diagnosis {

/// An open check to close.
struct NextCheck {
    /// Index into RecordedTree::events.
    std::size_t event;
    /// How few checks were left to close before this one.
    FewestChecks before;
};

/// What to close of the open checks of a tree, and in which order. Nothing is known of how likely an answer is: the
/// order is that of the fewest checks.
struct NextChecks {
    /// What the answers have to settle.
    enum class Aim : unsigned char {
        /// Whether there is a root cause.
        CAUSE,
        /// Whether the top event is in error: no answer gives a root cause any more.
        TOP_EVENT,
        /// No answer makes the top event true, but nothing was decided yet. The first check that gets an answer, true or
        /// false, decides that there is no fault; `toRuleOut` is how few answers a check needs for that.
        FIRST_ANSWER,
    };

    FewestChecks fewest;
    Aim aim = Aim::CAUSE;
    /// True if the numbers are bounds: an open check counts at several places, several rest on one source or one rule, or a
    /// group of rules ended at an open one, so that those behind it were not asked.
    bool isAtMost = false;
    /// Each as it comes next if those before leave the tree open: if either answer does so, they are taken as false.
    std::vector<NextCheck> checks;
};

/// The first `most` checks to close. Empty for a tree in which nothing is open, and for one whose top event is true without
/// a cut set that could explain it, which stays undecided.
NextChecks FindNextChecks(const TreeReport& report, std::size_t most);

/// The open check of an event as the verdict has it; null if it has none.
const Evidence::OpenCheck* OpenCheckOf(const TreeReport& report, const std::string& eventId);

/// Something that is missing, and the undecided trees that it keeps open.
struct MissingSource {
    /// What is missing, as the open checks have it; the event log for all that lack it.
    Evidence::Reason reason;
    std::string detail;
    /// How many open checks of undecided trees rest on it.
    std::size_t checks = 0;
    /// How many undecided trees are decided if all these checks come out true, and also if all come out false.
    std::size_t decides = 0;
};

/// The reasons of checks that lack the event log. Where several stand in one tree, the first of them counts.
inline constexpr std::array<Evidence::Reason, 3> LOG_REASONS = {
    Evidence::Reason::LOG_UNAVAILABLE, Evidence::Reason::LOG_DAMAGED, Evidence::Reason::TABLE_INCOMPLETE};

/// Whether a check lacks the event log if another one of its tree does: it has such a reason, or the detail names tables
/// that are derived from the log.
bool RestsOnLog(Evidence::Reason reason, const std::string& detail);

/// What an open check of a tree lacks, without numbers.
MissingSource SourceOf(const TreeReport& report, const Evidence::OpenCheck& open);

/// The sources behind open checks of undecided trees.
struct MissingSources {
    std::size_t undecided = 0;
    /// Those that decide a tree, the most trees first, and then the most checks. Only the `MOST` sources with the most
    /// checks are tried.
    std::vector<MissingSource> sources;

    static constexpr std::size_t MOST = 16;
};
MissingSources FindMissingSources(const TreeReports& reports);

} // namespace diagnosis

#endif
