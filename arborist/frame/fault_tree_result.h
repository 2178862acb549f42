#ifndef ARBORIST_FRAME_FAULT_TREE_RESULT_H
#define ARBORIST_FRAME_FAULT_TREE_RESULT_H

#include <memory>
#include <string>
#include <vector>

#include "arborist/arborist_export.h"

/// The event that a root cause stands on, told by copies of its texts.
struct FaultTreeNode {
    std::string mId;
    std::string mName;
    /// Free text of the rule author, by custom a JSON object.
    std::string mUserDefined;
};

/// The answer of one detection for one tree. Holds copies and outlives the engine.
struct ARBORIST_EXPORT FaultTreeResult {
    /// One repair instruction.
    struct ARBORIST_EXPORT RepairInfo {
        std::string mId;
        /// A JSON object from repair id to a text that holds JSON itself; empty when the rule set gives none.
        std::string mExtra;

        /// The operation word of this repair, taken from `mExtra`; empty when there is none, and also when `mExtra`
        /// spells the word "operation" out in plain. A text that is no JSON logs an error.
        std::string GetOperation() const;
    };

    /// One root cause with the ids that the host turns into texts and repairs.
    struct RootCauseResult {
        std::shared_ptr<FaultTreeNode> mNode;
        /// The first fault description id; empty when there is none.
        std::string mFaultDescription;
        /// Suggestion ids, in file order.
        std::vector<std::string> mSuggestions;
        /// Repairs, in file order.
        std::vector<RepairInfo> mRepairInfos;
    };

    explicit FaultTreeResult(std::string treeId);

    /// The nodes of all root causes, in order of deduction.
    std::vector<std::shared_ptr<FaultTreeNode>> GetTreeNodes() const;

    /// Version of the tree file, "-1" when it names none.
    std::string mVersion;
    std::string mTreeId;
    /// True when at least one root cause was found.
    bool mIsFault = false;
    /// In order of deduction. A cause may stand more than once: once for each cut set that explains the fault.
    std::vector<std::shared_ptr<RootCauseResult>> mRootCauseResults;
};

#endif
