#ifndef ARBORIST_FRAME_EVIDENCE_TREE_H
#define ARBORIST_FRAME_EVIDENCE_TREE_H

#include <cstddef>
#include <string>
#include <vector>

#include "arborist/frame/check.h"
#include "arborist/frame/comparable.h"
#include "arborist/frame/evidence_words.h"
#include "arborist/frame/tree_verdict.h"

namespace Evidence {

/// The tree whose rules run next.
struct TreeHead {
    /// The id of the tree.
    std::string id;
    /// The version of the tree file.
    std::string version;
    /// The type of the tree.
    std::string type;

    ARBORIST_COMPARABLE(TreeHead)
};

/// One event of a tree after the statuses were folded up.
struct FoldedEvent {
    /// 0 for the top event.
    std::size_t depth = 0;
    /// The kind of the event.
    EventType type = EventType::BASIC;
    /// The gate below the event; NONE for a leaf.
    GateType gate = GateType::NONE;
    /// The id of the event.
    std::string id;
    /// The name of the event.
    std::string name;
    /// The text that the tree file holds for the host.
    std::string userDefined;
    /// The status after the fold.
    EventState status = EventState::UNKNOWN;
    /// True for an intermediate event with rules of its own; such an event doesn't follow its gate.
    bool observable = false;
    /// How reliable the status is; NONE for an intermediate event without rules of its own.
    Check check = Check::NONE;

    /// Returns true if the event counts as true although its check is open.
    bool RestsOnDefault() const { return IsInError() && IsOpen(check); }
    /// Returns true if no gate belongs below the event.
    bool IsLeaf() const { return type != EventType::INTERMEDIATE; }
    /// Returns true if the event counts as true.
    bool IsInError() const { return Evidence::IsInError(status); }

    ARBORIST_COMPARABLE(FoldedEvent)
};

/// One entry of the list of root causes.
struct RootCause {
    /// The id of the first member of the cut set.
    std::string id;
    /// The cut set: the path of each member, ids from the top down joined by "/".
    std::vector<std::string> cutSet;
    /// Ids of the members and of all events above them, leaves first.
    std::vector<std::string> wayUp;

    ARBORIST_COMPARABLE(RootCause)
};

/// The result of a tree.
struct TreeResult {
    /// The id of the tree.
    std::string id;
    /// True if the tree has a root cause.
    bool isFault = false;
    /// The verdict, and how reliable it is.
    TreeVerdict verdict;

    ARBORIST_COMPARABLE(TreeResult)
};

} // namespace Evidence

#endif
