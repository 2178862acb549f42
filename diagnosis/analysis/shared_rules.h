#ifndef ARBORIST_DIAGNOSIS_ANALYSIS_SHARED_RULES_H
#define ARBORIST_DIAGNOSIS_ANALYSIS_SHARED_RULES_H

#include <cstddef>
#include <map>
#include <string_view>
#include <vector>

#include "diagnosis/evidence/recorded_tree.h"

namespace diagnosis {

/// Which open checks of a tree are closed together, as one rule decides several of them. Refers to the tree.
class SharedRules {
public:
    explicit SharedRules(const RecordedTree& tree);

    /// Whether an open rule stands there more than once, or several open code rules ask the host for the same code, or with
    /// the same text.
    bool HasAny() const { return mHasAny; }

    /// The ids of the events that the answer to this one answers, beginning with its own. The others are those that
    /// rest, as it does, on nothing but one rule, the same for all.
    std::vector<std::string_view> AnsweredWith(std::size_t event) const;

private:
    const RecordedTree& mTree;
    bool mHasAny;
    /// The ids of the open events that rest on one rule alone, by its name.
    std::map<std::string_view, std::vector<std::string_view>> mEventsOfRule;
};

} // namespace diagnosis

#endif
