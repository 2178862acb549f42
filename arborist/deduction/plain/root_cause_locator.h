#ifndef ARBORIST_DEDUCTION_PLAIN_ROOT_CAUSE_LOCATOR_H
#define ARBORIST_DEDUCTION_PLAIN_ROOT_CAUSE_LOCATOR_H

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "arborist/deduction/cut_set.h"

class CauseNode;
class Event;
class FaultTree;
class RootCause;

/// Selects the cut sets that explain the fault: those whose members, and all events above them, are in error.
///
/// Stateless. Searches all leaves for the path of every member, so that its time is the number of cut sets times the
/// size of the tree. A detection uses RootCauseSearch; this class is kept for the tests, which compare the two.
class RootCauseLocator {
public:
    /// One root cause for each cut set that qualifies, in order. Empty, without a log line, for a tree without a top
    /// event.
    std::vector<std::shared_ptr<RootCause>> FindRootCause(const FaultTree& tree, const MinimalCutSet& cutSets);

    /// A copy of the tree from `event` down, as nodes. `event` must not be null.
    std::shared_ptr<CauseNode> ParseEvent(const std::shared_ptr<Event>& event);

private:
    friend class RootCauseLocatorTest;
    using RootCauses = std::vector<std::shared_ptr<RootCause>>;
    using DepthOfPath = std::map<std::string, int>;

    std::shared_ptr<CauseNode> ParseEvent(const std::shared_ptr<Event>& event, const std::shared_ptr<CauseNode>& node);
    std::shared_ptr<CauseNode> GetChildNodeByXpath(const std::shared_ptr<CauseNode>& top, const std::string& path);
    bool IsRootCause(const std::shared_ptr<CauseNode>& node);
    int IsParentError(const std::string& path, const std::shared_ptr<CauseNode>& top, DepthOfPath& depths);
    std::shared_ptr<RootCause> AddEvent(const std::shared_ptr<RootCause>& rootCause,
                                        const std::shared_ptr<CauseNode>& node);
    void FindChildRootCause(const std::shared_ptr<CauseNode>& top, RootCauses& result, const DepthOfPath& depths,
                            std::vector<std::string>& usedPaths, int depth);
};

#endif
