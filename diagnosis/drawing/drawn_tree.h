#ifndef ARBORIST_DIAGNOSIS_DRAWING_DRAWN_TREE_H
#define ARBORIST_DIAGNOSIS_DRAWING_DRAWN_TREE_H

#include <cstddef>
#include <string>
#include <vector>

#include "diagnosis/detection/detection.h"

namespace diagnosis {

/// One place of a tree. An event that occurs in several places has one DrawnEvent for each.
struct DrawnEvent {
    /// Lives as long as the report.
    const RecordedEvent* event;
    std::vector<std::size_t> children;
    /// Is a member of a cut set that explains the fault.
    bool isInCutSet = false;
    /// Is the member that gives the root cause its name.
    bool isRootCause = false;
    /// Is a member of such a cut set, or above one.
    bool isOnCausePath = false;
};

/// The input of all drawings of one tree: its events in pre-order, the top event first.
struct DrawnTree {
    /// Lives as long as the report.
    const TreeReport* report;
    /// False if only the shape is known, so that no status may be shown.
    bool hasStatuses;
    std::vector<DrawnEvent> events = {};
    /// For the title: "FAULT", or what is open. Empty for none.
    std::string verdict = {};
};

/// The trees of a report that was made with trees; if `treeId` is not empty, only those with this id.
std::vector<DrawnTree> DrawTrees(const DetectionReport& report, bool hasStatuses, const std::string& treeId);

} // namespace diagnosis

#endif
