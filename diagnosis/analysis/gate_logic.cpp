#include "diagnosis/analysis/gate_logic.h"

#include <string_view>
#include <unordered_set>

namespace diagnosis {

namespace {

std::vector<std::size_t> LeavesInError(const RecordedTree& tree, std::size_t event)
{
    std::vector<std::size_t> leaves;
    std::unordered_set<std::string_view> ids;
    for (std::size_t below = event + 1; below < tree.events[event].end; ++below) {
        const RecordedEvent& leaf = tree.events[below];
        if (leaf.IsLeaf() && leaf.IsInError() && ids.insert(leaf.id).second) {
            leaves.push_back(below);
        }
    }
    return leaves;
}

} // namespace

GateLogic GateLogicOf(const RecordedTree& tree, std::size_t event)
{
    const bool isOr = tree.events[event].gate == Evidence::GateType::OR;
    GateLogic logic;
    bool hasUnknown = false;
    for (std::size_t child = event + 1; child < tree.events[event].end; child = tree.events[child].end) {
        const RecordedEvent& below = tree.events[child];
        ++logic.below;
        logic.inError += below.IsInError() ? 1U : 0U;
        hasUnknown = hasUnknown || below.status == Evidence::EventState::UNKNOWN;
        if (logic.decider == RecordedEvent::NONE && below.IsInError() == isOr) {
            logic.decider = child;
        }
    }
    if (isOr) {
        const Evidence::EventState otherwise = hasUnknown ? Evidence::EventState::UNKNOWN : Evidence::EventState::ABSENT;
        logic.outcome = logic.inError > 0 ? Evidence::EventState::PRESENT : otherwise;
    } else {
        logic.outcome =
            logic.decider == RecordedEvent::NONE ? Evidence::EventState::PRESENT : tree.events[logic.decider].status;
    }
    return logic;
}

std::vector<CutOff> CutOffsOf(const RecordedTree& tree)
{
    std::vector<CutOff> cutOffs;
    for (std::size_t event = 0; event < tree.events.size(); ++event) {
        const RecordedEvent& explained = tree.events[event];
        if (explained.IsLeaf() || !explained.observable || explained.IsInError()) {
            continue;
        }
        std::vector<std::size_t> leaves = LeavesInError(tree, event);
        if (!leaves.empty()) {
            cutOffs.push_back({event, std::move(leaves)});
        }
    }
    return cutOffs;
}

} // namespace diagnosis
