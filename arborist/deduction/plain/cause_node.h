#ifndef ARBORIST_DEDUCTION_PLAIN_CAUSE_NODE_H
#define ARBORIST_DEDUCTION_PLAIN_CAUSE_NODE_H

#include <memory>
#include <string>
#include <vector>

class Event;

/// An event with its parent and its path: a node of the copy that RootCauseLocator makes of a fault tree.
///
/// Create it as a shared pointer. A node owns its children but not its parent, so GetParent works as long as somebody
/// owns the top node.
class CauseNode : public std::enable_shared_from_this<CauseNode> {
public:
    /// `event` is not null.
    explicit CauseNode(std::shared_ptr<Event> event);

    /// Appends `child`, makes this node its parent and puts this node's path in front of the child's. So give a node
    /// its parent before its children. Ignores a null child.
    void AddChild(const std::shared_ptr<CauseNode>& child);
    void SetParent(const std::shared_ptr<CauseNode>& parent);

    /// Null at the top.
    std::shared_ptr<CauseNode> GetParent() const { return mParent.lock(); }
    const std::shared_ptr<Event>& GetEvent() const { return mEvent; }
    /// The ids from the top down to this node, joined by "/".
    const std::string& GetPath() const { return mXpath; }
    const std::vector<std::shared_ptr<CauseNode>>& GetChildren() const { return mChildren; }
    bool IsHasChildren() const { return !mChildren.empty(); }
    /// The leaves below this node in order, or the node itself if it is a leaf.
    std::vector<std::shared_ptr<CauseNode>> GetAllChildNodes();

private:
    void SetXpath(const std::shared_ptr<CauseNode>& parent);
    void GetAllNode(std::vector<std::shared_ptr<CauseNode>>& leaves);

    std::weak_ptr<CauseNode> mParent;
    std::shared_ptr<Event> mEvent;
    std::vector<std::shared_ptr<CauseNode>> mChildren;
    std::string mXpath;
};

#endif
