#ifndef ARBORIST_DIAGNOSIS_ANALYSIS_EXPLANATION_VIEW_H
#define ARBORIST_DIAGNOSIS_ANALYSIS_EXPLANATION_VIEW_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/analysis/distinct_causes.h"
#include "diagnosis/analysis/near_misses.h"
#include "diagnosis/evidence/explanation.h"
#include "diagnosis/problem.h"

namespace diagnosis {

/// What of an explanation is shown. Without narrowing words it is all of it.
struct ExplanationView {
    /// Only events with this id, only this rule, only root causes with this id in their cut set; empty for no narrowing.
    std::string event;
    std::string rule;
    std::string cause;
    /// Up to how many events short; 0 shows no near misses.
    std::size_t nearMisses = 0;
    /// How many near misses of a tree are shown.
    std::size_t limit = 20;
    bool minimal = false;
    /// One line a distinct root cause, and beside that only what `nearMisses` and `minimal` ask for.
    bool brief = false;

    bool IsNarrow() const { return !event.empty() || !rule.empty() || !cause.empty(); }
};

/// Why nothing can be shown: an id or a name of the view stands nowhere in the explanation; names near matches.
std::optional<Failure> UnknownWord(const Explanation& explanation, const ExplanationView& view);

/// Places of the events that a narrow view shows: one for each id and evidence, the first one.
std::vector<std::size_t> ShownEvents(const ExplainedTree& tree, const ExplanationView& view);

/// Whether the view is one of the whole tree, or has an event or a near miss of it to show.
bool HasShown(const ExplainedTree& tree, const ExplanationView& view);

/// Whether a rule of a shown event is shown.
bool IsShown(const Evidence::Rule& rule, const ExplanationView& view);

/// The near misses that the view asks for: of a narrow one those that its event, rule or cause has to do with.
NearMisses ShownNearMisses(const ExplainedTree& tree, const ExplanationView& view);

/// The distinct root causes that the view shows.
std::vector<DistinctCause> ShownCauses(const ExplainedTree& tree, const ExplanationView& view);

} // namespace diagnosis

#endif
