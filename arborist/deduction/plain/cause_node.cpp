#include "arborist/deduction/plain/cause_node.h"

#include <utility>

#include "arborist/model/event.h"

namespace {

constexpr const char* PATH_SEPARATOR = "/";

} // namespace

CauseNode::CauseNode(std::shared_ptr<Event> event) : mEvent(std::move(event)), mXpath(mEvent->GetId()) {}

void CauseNode::AddChild(const std::shared_ptr<CauseNode>& child)
{
    if (child == nullptr) {
        return;
    }
    mChildren.push_back(child);
    child->SetParent(shared_from_this());
    child->SetXpath(shared_from_this());
}

void CauseNode::SetParent(const std::shared_ptr<CauseNode>& parent)
{
    mParent = parent;
}

void CauseNode::SetXpath(const std::shared_ptr<CauseNode>& parent)
{
    mXpath = parent->GetPath() + PATH_SEPARATOR + mXpath;
}

std::vector<std::shared_ptr<CauseNode>> CauseNode::GetAllChildNodes()
{
    std::vector<std::shared_ptr<CauseNode>> leaves;
    GetAllNode(leaves);
    return leaves;
}

void CauseNode::GetAllNode(std::vector<std::shared_ptr<CauseNode>>& leaves)
{
    if (!IsHasChildren()) {
        leaves.push_back(shared_from_this());
    }
    for (const auto& child : mChildren) {
        child->GetAllNode(leaves);
    }
}
