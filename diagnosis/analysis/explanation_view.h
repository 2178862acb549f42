#ifndef ARBORIST_DIAGNOSIS_ANALYSIS_EXPLANATION_VIEW_H
#define ARBORIST_DIAGNOSIS_ANALYSIS_EXPLANATION_VIEW_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/analysis/distinct_causes.h"
#include "diagnosis/analysis/near_misses.h"
#include "diagnosis/evidence/recorded_tree.h"
#include "diagnosis/problem.h"

namespace diagnosis {

/// Selects the part of an explanation to show; the default is all of it.
struct ExplanationView {
    /// Show only events with this id, only this rule, only root causes with this id in their cut set; empty for all.
    std::string event;
    std::string rule;
    std::string cause;
    /// Shows near misses that lack up to this many events; 0 for none.
    std::size_t nearMisses = 0;
    /// Most near misses that are shown for a tree.
    std::size_t limit = 20;
    bool minimal = false;
    /// Shows up to this many checks to close next of each undecided tree; 0 for none.
    std::size_t next = 0;
    /// Shows one line for each distinct root cause, and otherwise only what `nearMisses`, `minimal` and `next` ask
    /// for.
    bool brief = false;

    bool IsNarrow() const { return !event.empty() || !rule.empty() || !cause.empty(); }
};

/// The failure if an id or a name of the view is not in the explained trees, with similar names; nothing otherwise.
std::optional<Failure> UnknownWord(const TreeReports& reports, const ExplanationView& view);

/// Indexes of the events that a narrowed view shows: the first one for each id and evidence.
std::vector<std::size_t> ShownEvents(const RecordedTree& tree, const ExplanationView& view);

/// True if the view shows the whole tree, or an event or a near miss of it.
bool HasShown(const RecordedTree& tree, const ExplanationView& view);

/// True if the view shows this rule of a shown event.
bool IsShown(const Evidence::Rule& rule, const ExplanationView& view);

/// The near misses that the view shows; for a narrowed view those that involve its event, rule or cause.
NearMisses ShownNearMisses(const RecordedTree& tree, const ExplanationView& view);

/// The distinct root causes that the view shows.
std::vector<DistinctCause> ShownCauses(const RecordedTree& tree, const ExplanationView& view);

} // namespace diagnosis

#endif
