#include "diagnosis/drawing/drawn_tree.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <unordered_set>

#include "diagnosis/text/running_hash.h"

namespace diagnosis {

namespace {

// A hash of the path of each place. The texts of all paths would grow with the square of the depth of the tree.
std::vector<RunningHash> PathHashes(const DrawnTree& tree)
{
    std::vector<RunningHash> hashes;
    hashes.reserve(tree.events.size());
    for (std::size_t place = 0; place < tree.events.size(); ++place) {
        const DrawnEvent& drawn = tree.events[place];
        const RunningHash above = place == 0 ? RunningHash() : hashes[drawn.parent].Extended("/");
        hashes.push_back(above.Extended(drawn.event->id));
    }
    return hashes;
}

// Ids from the top event down to the place, joined by "/": how a cut set names its members.
std::string PathOf(const DrawnTree& tree, std::size_t place)
{
    std::vector<std::size_t> way = {place};
    while (tree.events[way.back()].parent != way.back()) {
        way.push_back(tree.events[way.back()].parent);
    }
    std::string path;
    for (auto step = way.rbegin(); step != way.rend(); ++step) {
        path += (step == way.rbegin() ? "" : "/") + tree.events[*step].event->id;
    }
    return path;
}

void Connect(DrawnTree& drawn)
{
    // The place at each depth of the branch that is being read.
    std::vector<std::size_t> branch;
    for (const Evidence::FoldedEvent& event : drawn.tree->events) {
        const std::size_t place = drawn.events.size();
        branch.resize(std::min(branch.size(), event.depth));
        const std::size_t parent = branch.empty() ? place : branch.back();
        if (parent != place) {
            drawn.events[parent].children.push_back(place);
        }
        drawn.events.push_back({&event, parent});
        branch.push_back(place);
    }
}

void MarkCauses(DrawnTree& drawn)
{
    std::vector<std::string> members;
    std::unordered_set<std::string_view> causes;
    for (const RecordedCause& cause : drawn.tree->causes) {
        causes.insert(cause.id);
        members.insert(members.end(), cause.cutSet.begin(), cause.cutSet.end());
    }
    for (const std::size_t place : PlacesOf(drawn, members)) {
        drawn.events[place].isInCutSet = true;
        drawn.events[place].isRootCause = causes.count(drawn.events[place].event->id) != 0;
        for (std::size_t above = place; !drawn.events[above].isOnCausePath; above = drawn.events[above].parent) {
            drawn.events[above].isOnCausePath = true;
        }
    }
}

} // namespace

std::vector<std::size_t> PlacesOf(const DrawnTree& tree, const std::vector<std::string>& members)
{
    if (members.empty()) {
        return {};
    }
    const std::unordered_set<std::string_view> paths(members.begin(), members.end());
    std::unordered_set<std::uint64_t> wanted;
    for (const std::string_view path : paths) {
        wanted.insert(RunningHash().Extended(path).Value());
    }
    std::vector<std::size_t> places;
    const std::vector<RunningHash> hashes = PathHashes(tree);
    for (std::size_t place = 0; place < hashes.size(); ++place) {
        const bool isInError = Evidence::IsInError(tree.events[place].event->status);
        if (isInError && wanted.count(hashes[place].Value()) != 0 && paths.count(PathOf(tree, place)) != 0) {
            places.push_back(place);
        }
    }
    return places;
}

std::vector<DrawnTree> DrawTrees(const DetectionReport& report, bool hasStatuses, const std::string& treeId)
{
    std::vector<DrawnTree> trees;
    for (const RecordedTree& tree : report.trees) {
        if (treeId.empty() || tree.id == treeId) {
            trees.push_back({&tree, hasStatuses, {}, {}});
            Connect(trees.back());
            MarkCauses(trees.back());
        }
    }
    return trees;
}

} // namespace diagnosis
