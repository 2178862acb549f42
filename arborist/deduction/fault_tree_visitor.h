#ifndef ARBORIST_DEDUCTION_FAULT_TREE_VISITOR_H
#define ARBORIST_DEDUCTION_FAULT_TREE_VISITOR_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "arborist/frame/check.h"

class DetectionObserver;
class FaultTree;
class FaultTreeParser;
class RootCause;
struct FaultTreeNode;

/// Computes the root causes of a tree whose events have the results of their rules.
///
/// Keeps the results of the last deduction. Of a tree with more root causes than Settings::CAUSE_LIMIT it finds the first
/// ones, and tells log and observer how many there are before it builds them. Not thread-safe.
class FaultTreeVisitor {
public:
    /// Stores `faultTreeParser` but doesn't use it; it may be null.
    explicit FaultTreeVisitor(std::shared_ptr<FaultTreeParser> faultTreeParser);

    /// Folds the statuses of `tree` up to its top event and replaces the root causes by those of this tree. A null tree
    /// changes nothing.
    ///
    /// `checks` are passed to the observer with the folded events: one for each event in pre-order, NONE for events
    /// beyond the end of the list.
    void DeduceRootCause(
        const std::shared_ptr<FaultTree>& tree, const std::vector<Evidence::Check>& checks = {});

    /// Folds the statuses and passes them to the observer, but looks for no root causes: both lists are empty then.
    /// A null tree changes nothing.
    void FoldStatuses(const std::shared_ptr<FaultTree>& tree, const std::vector<Evidence::Check>& checks = {});

    /// True if the last deduction found root causes, whatever the status of the top event.
    bool IsFault() const { return mIsFault; }
    /// The leaf event of each root cause, in the order of GetRootCauseList. Valid until the next deduction.
    const std::vector<std::shared_ptr<FaultTreeNode>>& GetRootCauseNodeList() const { return mRootCauseNodeList; }
    /// The root causes, in the order in which they were found. Valid until the next deduction. For tests and benches.
    const std::vector<std::shared_ptr<RootCause>>& GetRootCauseList() const { return mRootCauseList; }

    /// Sets the observer that is notified of folded events and root causes; null, the default, for none. Not owned.
    void SetObserver(DetectionObserver* observer) { mObserver = observer; }

private:
    void AnalyzeRootCause();
    // Call it after the search has been destroyed: the nodes reuse its memory.
    void ListNodes();
    void TellLimit(double count, std::size_t most) const;
    // Each use of the observer goes through this call, of which the bench of the observer makes one that returns null.
    DetectionObserver* GetObserver() const { return mObserver; }

    std::shared_ptr<FaultTree> mFaultTree;
    std::vector<std::shared_ptr<RootCause>> mRootCauseList;
    std::vector<std::shared_ptr<FaultTreeNode>> mRootCauseNodeList;
    bool mIsFault = false;
    std::shared_ptr<FaultTreeParser> mFaultTreeParser;
    DetectionObserver* mObserver = nullptr;
};

#endif
