#include "arborist/deduction/plain/minimal_cutset_parser.h"

#include <utility>

#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/gate.h"
#include "arborist/utilities/string_util.h"

namespace {

constexpr const char* PATH_SEPARATOR = "/";
constexpr const char* MEMBER_SEPARATOR = "&";

using Combinations = std::vector<std::string>;

// Joins every combination of `left` with every one of `right`; `left` is the outer loop.
Combinations CrossProduct(const Combinations& left, const Combinations& right)
{
    Combinations product;
    product.reserve(left.size() * right.size());
    for (const auto& first : left) {
        for (const auto& second : right) {
            product.push_back(first + MEMBER_SEPARATOR + second);
        }
    }
    return product;
}

void Append(Combinations& result, Combinations more)
{
    for (auto& combination : more) {
        result.push_back(std::move(combination));
    }
}

} // namespace

MinimalCutSet MinimalCutsetParser::GetMcs(const FaultTree& tree)
{
    MinimalCutSet cutSets;
    const auto& top = tree.GetIntermediateEvent();
    if (top == nullptr) {
        return cutSets;
    }
    for (const auto& combination : MakeMinimalCutSetsDetails(top, top->GetId())) {
        // An id that contains a separator is split, too; nothing prevents that.
        cutSets.push_back(StringUtil::Split(combination, MEMBER_SEPARATOR));
    }
    return cutSets;
}

std::vector<std::string> MinimalCutsetParser::MakeMinimalCutSetsDetails(
    const std::shared_ptr<IntermediateEvent>& event, const std::string& eventPath)
{
    Combinations result;
    if (event == nullptr || event->GetGate() == nullptr) {
        return result;
    }
    const bool isOr = event->GetGate()->GetKind() == GateKind::OR;
    for (const auto& child : event->GetGate()->GetEvents()) {
        const std::string path = eventPath + PATH_SEPARATOR + child->GetId();
        Combinations sub = child->GetKind() == EventKind::INTERMEDIATE
            ? MakeMinimalCutSetsDetails(std::static_pointer_cast<IntermediateEvent>(child), path)
            : Combinations{path};
        // In an AND a branch without combinations drops the combinations so far, and the next branch starts anew. Hosts
        // rely on the root causes that result.
        if (isOr || result.empty()) {
            Append(result, std::move(sub));
        } else {
            result = CrossProduct(result, sub);
        }
    }
    return result;
}
