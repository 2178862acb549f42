#include "diagnosis/drawing/drawn_tree.h"

#include <map>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace diagnosis {

namespace {

// A number for each place, equal for places with equal ids from the top down.
std::vector<std::size_t> PathNumbers(const RecordedTree& tree)
{
    std::map<std::pair<std::size_t, std::string_view>, std::size_t> known;
    std::vector<std::size_t> numbers;
    numbers.reserve(tree.events.size());
    for (const RecordedEvent& event : tree.events) {
        const std::size_t above = event.parent == RecordedEvent::NONE ? RecordedEvent::NONE : numbers[event.parent];
        numbers.push_back(known.try_emplace({above, event.id}, known.size()).first->second);
    }
    return numbers;
}

// A cut set names its members by their paths: of siblings with one id it means all that are in error.
void MarkCauses(const RecordedTree& tree, DrawnTree& drawn)
{
    const std::vector<std::size_t> numbers = PathNumbers(tree);
    std::unordered_set<std::size_t> members;
    std::unordered_set<std::string_view> causes;
    for (const RecordedCause& cause : tree.causes) {
        causes.insert(cause.id);
        for (const std::size_t member : cause.members) {
            members.insert(member == RecordedEvent::NONE ? RecordedEvent::NONE : numbers[member]);
        }
    }
    for (std::size_t place = 0; place < tree.events.size(); ++place) {
        if (!tree.events[place].IsInError() || members.count(numbers[place]) == 0) {
            continue;
        }
        drawn.events[place].isInCutSet = true;
        drawn.events[place].isRootCause = causes.count(tree.events[place].id) != 0;
        for (std::size_t above = place; above != RecordedEvent::NONE && !drawn.events[above].isOnCausePath;
             above = tree.events[above].parent) {
            drawn.events[above].isOnCausePath = true;
        }
    }
}

DrawnTree Draw(const TreeReport& report, bool hasStatuses)
{
    DrawnTree drawn{&report, hasStatuses};
    drawn.events.reserve(report.tree.events.size());
    for (const RecordedEvent& event : report.tree.events) {
        drawn.events.push_back({&event, report.tree.ChildrenOf(drawn.events.size())});
    }
    MarkCauses(report.tree, drawn);
    return drawn;
}

} // namespace

std::vector<DrawnTree> DrawTrees(const DetectionReport& report, bool hasStatuses, const std::string& treeId)
{
    std::vector<DrawnTree> trees;
    for (const TreeReport& tree : report.trees) {
        if (treeId.empty() || tree.Id() == treeId) {
            trees.push_back(Draw(tree, hasStatuses));
        }
    }
    return trees;
}

} // namespace diagnosis
