#ifndef ARBORIST_FRAME_FAULT_TREE_RESULT_H
#define ARBORIST_FRAME_FAULT_TREE_RESULT_H

#include <memory>
#include <string>
#include <vector>

#include "arborist/arborist_export.h"

/// Identity of a root cause: copies of the texts of its event.
struct FaultTreeNode {
    /// Id of the event. One id may stand at several places of a tree.
    std::string mId;
    /// Name of the event, for people.
    std::string mName;
    /// Free text of the rule author, by custom a JSON object.
    std::string mUserDefined;
};

/// Result of one detection for one tree. Consists of copies, so it may outlive the engine.
struct ARBORIST_EXPORT FaultTreeResult {
    /// One repair instruction.
    struct ARBORIST_EXPORT RepairInfo {
        /// Id of the repair.
        std::string mId;
        /// A JSON object from repair id to a text that is JSON itself; empty if the rule set gives none.
        std::string mExtra;

        /// Returns the operation word of this repair from `mExtra`; empty if `mExtra` has none, and also if the plain
        /// word "operation" occurs anywhere in `mExtra`. Logs an error if `mExtra` is no JSON.
        std::string GetOperation() const;
    };

    /// One root cause with the ids that the host turns into texts and repairs.
    struct RootCauseResult {
        /// The event of the root cause; never null.
        std::shared_ptr<FaultTreeNode> mNode;
        /// The first fault description id; empty when there is none.
        std::string mFaultDescription;
        /// Suggestion ids, in file order.
        std::vector<std::string> mSuggestions;
        /// Repairs, in file order.
        std::vector<RepairInfo> mRepairInfos;
    };

    /// A result without root causes for the tree with this id.
    explicit FaultTreeResult(std::string treeId);

    /// The nodes of all root causes, in order of deduction.
    std::vector<std::shared_ptr<FaultTreeNode>> GetTreeNodes() const;

    /// Version of the tree file, "-1" when it names none.
    std::string mVersion;
    /// Id of the tree.
    std::string mTreeId;
    /// True if at least one root cause was found. False proves nothing if data was missing: see Evidence::TreeVerdict.
    bool mIsFault = false;
    /// True if the detection was stopped before this tree was decided: there are no root causes, and `mIsFault` has
    /// no meaning.
    bool mIsStopped = false;
    /// The root causes, in order of deduction. A cause occurs once for each cut set that explains the fault.
    std::vector<std::shared_ptr<RootCauseResult>> mRootCauseResults;
};

#endif
