#ifndef ARBORIST_DIAGNOSIS_DRAWING_DRAWN_TREE_H
#define ARBORIST_DIAGNOSIS_DRAWING_DRAWN_TREE_H

#include <cstddef>
#include <string>
#include <vector>

#include "diagnosis/detection/detection.h"

namespace diagnosis {

/// One place of a tree with its neighbours. Equal ids in several places are several of these.
struct DrawnEvent {
    /// Lives as long as the recorded tree.
    const Evidence::FoldedEvent* event;
    /// The top event is its own parent.
    std::size_t parent;
    std::vector<std::size_t> children = {};
    /// Stands in a cut set that explains the fault.
    bool isInCutSet = false;
    /// The same, and the root cause is named after it.
    bool isRootCause = false;
    /// Stands in a cut set, or above an event that does.
    bool isOnCausePath = false;
};

/// One tree as all drawings start from it: the events in pre-order, the top event first.
struct DrawnTree {
    /// Lives as long as the report.
    const RecordedTree* tree;
    /// False for the bare shape, of which no status may be shown.
    bool hasStatuses;
    std::vector<DrawnEvent> events;
};

/// The trees of a report that was made with them; those with the id `treeId` alone when it is not empty.
std::vector<DrawnTree> DrawTrees(const DetectionReport& report, bool hasStatuses, const std::string& treeId);

/// The places that a member of a cut set names: more than one where siblings share an id.
std::vector<std::size_t> PlacesOf(const DrawnTree& tree, const std::vector<std::string>& members);

} // namespace diagnosis

#endif
