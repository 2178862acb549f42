#ifndef ARBORIST_DEDUCTION_FAULT_TREE_VISITOR_H
#define ARBORIST_DEDUCTION_FAULT_TREE_VISITOR_H

#include <memory>
#include <vector>

#include "arborist/deduction/cut_set.h"

class DetectionObserver;
class FaultTree;
class FaultTreeParser;
class RootCause;
struct FaultTreeNode;

/// Turns a tree whose events carry their rule results into the list of its root causes.
///
/// Keeps what the last deduction found. One thread at a time.
class FaultTreeVisitor {
public:
    /// `faultTreeParser` is kept, and nothing here reads it; it may be null.
    explicit FaultTreeVisitor(std::shared_ptr<FaultTreeParser> faultTreeParser);

    /// Folds the statuses of `tree` up to its top and finds its root causes, which take the place of those of the
    /// tree before. A null tree changes nothing.
    void DeduceRootCause(const std::shared_ptr<FaultTree>& tree);

    /// True when the last deduction found root causes, whatever the status of the top event.
    bool IsFault() const { return mIsFault; }
    /// The event that each root cause stands on, in order. Valid until the next deduction.
    const std::vector<std::shared_ptr<FaultTreeNode>>& GetRootCauseNodeList() const { return mRootCauseNodeList; }
    /// The root causes themselves, in the same order. Valid until the next deduction.
    const std::vector<std::shared_ptr<RootCause>>& GetRootCauseList() const { return mRootCauseList; }

    /// Who is told of folded events and root causes; null, as at first, for nobody. Not owned.
    void SetObserver(DetectionObserver* observer) { mObserver = observer; }

private:
    void AnalyzeRootCause();
    void TellRootCauses(MinimalCutSet cutSets) const;
    DetectionObserver* GetObserver() const { return mObserver; }

    std::shared_ptr<FaultTree> mFaultTree;
    std::vector<std::shared_ptr<RootCause>> mRootCauseList;
    std::vector<std::shared_ptr<FaultTreeNode>> mRootCauseNodeList;
    bool mIsFault = false;
    std::shared_ptr<FaultTreeParser> mFaultTreeParser;
    DetectionObserver* mObserver = nullptr;
};

#endif
