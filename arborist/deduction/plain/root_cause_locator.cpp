#include "arborist/deduction/plain/root_cause_locator.h"

#include <algorithm>

#include "arborist/deduction/plain/cause_node.h"
#include "arborist/deduction/root_cause.h"
#include "arborist/frame/log.h"
#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/gate.h"
#include "arborist/utilities/string_util.h"

namespace {

constexpr const char* PATH_SEPARATOR = "/";

bool IsHeldByOne(const std::vector<std::string>& paths, const std::string& text)
{
    return std::any_of(paths.begin(), paths.end(),
                       [&text](const std::string& path) { return path.find(text) != std::string::npos; });
}

} // namespace

std::vector<std::shared_ptr<RootCause>> RootCauseLocator::FindRootCause(const FaultTree& tree,
                                                                        const MinimalCutSet& cutSets)
{
    RootCauses result;
    if (tree.GetIntermediateEvent() == nullptr) {
        return result;
    }
    const std::shared_ptr<CauseNode> top = ParseEvent(tree.GetIntermediateEvent());
    int maxDepth = 0;
    DepthOfPath depths;
    std::vector<std::string> usedPaths;
    for (const CutSet& cutSet : cutSets) {
        const auto rootCause = std::make_shared<RootCause>();
        const bool qualifies = std::all_of(cutSet.begin(), cutSet.end(), [&](const std::string& member) {
            const auto node = GetChildNodeByXpath(top, member);
            if (node == nullptr) {
                return false;
            }
            if (!IsRootCause(node)) {
                maxDepth = std::max(maxDepth, IsParentError(member, top, depths));
                return false;
            }
            AddEvent(rootCause, node);
            return true;
        });
        if (qualifies) {
            result.push_back(rootCause);
            usedPaths.insert(usedPaths.end(), cutSet.begin(), cutSet.end());
        }
    }
    if (!depths.empty()) {
        for (int depth = maxDepth; depth >= 1; --depth) {
            FindChildRootCause(top, result, depths, usedPaths, depth);
        }
    }
    return result;
}

std::shared_ptr<CauseNode> RootCauseLocator::ParseEvent(const std::shared_ptr<Event>& event)
{
    return ParseEvent(event, std::make_shared<CauseNode>(event));
}

std::shared_ptr<CauseNode> RootCauseLocator::ParseEvent(const std::shared_ptr<Event>& event,
                                                        const std::shared_ptr<CauseNode>& node)
{
    const IntermediateEvent* intermediate = event->AsIntermediate();
    if (intermediate == nullptr || intermediate->GetGate() == nullptr) {
        return node;
    }
    for (const auto& childEvent : intermediate->GetGate()->GetEvents()) {
        const auto child = std::make_shared<CauseNode>(childEvent);
        node->AddChild(child);
        ParseEvent(childEvent, child);
    }
    return node;
}

std::shared_ptr<CauseNode> RootCauseLocator::GetChildNodeByXpath(const std::shared_ptr<CauseNode>& top,
                                                                 const std::string& path)
{
    if (path.empty() || top == nullptr) {
        return nullptr;
    }
    // Goes from leaf to leaf, and from each leaf up to the top: if several nodes have the same path, the first in this
    // order counts.
    for (const auto& leaf : top->GetAllChildNodes()) {
        for (auto node = leaf; node != nullptr; node = node->GetParent()) {
            if (node->GetPath() == path) {
                return node;
            }
        }
    }
    return nullptr;
}

bool RootCauseLocator::IsRootCause(const std::shared_ptr<CauseNode>& node)
{
    if (node == nullptr) {
        return false;
    }
    for (auto above = node; above != nullptr; above = above->GetParent()) {
        if (!IsError(above->GetEvent()->GetResult())) {
            return false;
        }
    }
    return true;
}

std::shared_ptr<RootCause> RootCauseLocator::AddEvent(const std::shared_ptr<RootCause>& rootCause,
                                                      const std::shared_ptr<CauseNode>& node)
{
    for (auto above = node; above != nullptr && above->GetEvent() != nullptr; above = above->GetParent()) {
        if (rootCause == nullptr) {
            continue;
        }
        const std::string& id = above->GetEvent()->GetId();
        const auto& ids = rootCause->GetPaths();
        if (std::find(ids.begin(), ids.end(), id) == ids.end()) {
            rootCause->AddPath(id);
            rootCause->AddEvent(above->GetEvent());
        }
    }
    return rootCause;
}

int RootCauseLocator::IsParentError(const std::string& path, const std::shared_ptr<CauseNode>& top,
                                    DepthOfPath& depths)
{
    // Always taken: nothing but this function fills the map, so that it is empty here. The search for an ancestor in
    // error below is therefore never reached, and a cut set that fails gives no root cause. Hosts rely on that.
    if (path.empty() || top == nullptr || depths.empty()) {
        return -1;
    }
    const std::size_t separator = path.rfind(PATH_SEPARATOR);
    if (separator == std::string::npos) {
        return -1;
    }
    const std::string parentPath = path.substr(0, separator);
    const auto parent = GetChildNodeByXpath(top, parentPath);
    if (parent == nullptr) {
        return -1;
    }
    if (!IsRootCause(parent)) {
        IsParentError(parentPath, top, depths);
        return -1;
    }
    const int depth = static_cast<int>(StringUtil::Split(parentPath, PATH_SEPARATOR).size());
    FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: parent node is error Xpath: %s , depth: %d ",
                                  "RootCauseLocator::IsParentError", parentPath.c_str(), depth);
    depths.emplace(parentPath, depth);
    return depth;
}

void RootCauseLocator::FindChildRootCause(const std::shared_ptr<CauseNode>& top, RootCauses& result,
                                          const DepthOfPath& depths, std::vector<std::string>& usedPaths, int depth)
{
    for (const auto& [path, depthOfPath] : depths) {
        if (depthOfPath != depth) {
            continue;
        }
        if (IsHeldByOne(usedPaths, path)) {
            FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: child isContains parent node, xpath : %s",
                                          "RootCauseLocator::FindChildRootCause", path.c_str());
            continue;
        }
        result.push_back(AddEvent(std::make_shared<RootCause>(), GetChildNodeByXpath(top, path)));
        usedPaths.push_back(path);
    }
}
