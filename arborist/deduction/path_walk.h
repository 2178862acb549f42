#ifndef ARBORIST_DEDUCTION_PATH_WALK_H
#define ARBORIST_DEDUCTION_PATH_WALK_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "arborist/deduction/surviving_tree.h"

class Event;

/// Cuts a folded tree down to what survives, whatever its ids hold.
///
/// Ids are not guarded: equal ids beside each other, "/" in an id and ids that are empty may give several events one
/// path, of which the first in the order of the leaves is meant; "&" in an id splits a path into several members. So
/// every path is written into an index and every member looked up in it. Time and memory are in proportion to the
/// text of all paths.
class PathWalk {
public:
    static void Walk(const std::shared_ptr<Event>& top, SurvivingTree& tree);

private:
    using Index = SurvivingTree::Index;
    using Outcome = SurvivingTree::Outcome;

    explicit PathWalk(SurvivingTree& tree) : mTree(tree) {}

    void AddPlaces(const std::shared_ptr<Event>& event, Index parent);
    void IndexPaths();
    void IndexPath(Index place);
    Index Find(std::string_view path) const;
    Index FindOwnPath(Index place) const;
    std::vector<Index> FindMembers(Index leaf) const;
    Outcome Enter(Index place, Index& branch);
    Outcome EnterLeaf(Index place, Index& branch);
    Outcome EnterGate(Index place, SurvivingTree::BranchKind kind, Index& branch);

    /// What is known of each place, beside SurvivingTree::Place.
    struct Facts {
        std::uint64_t pathHash;
        /// One past the last place below.
        Index end;
        /// It and all above are in error.
        bool isErrorToTop;
        /// An id on the way holds a "&": the path is split, and nothing is found by it as a whole.
        bool holdsMemberSeparator;
    };

    SurvivingTree& mTree;
    std::vector<Facts> mFacts;
    std::unordered_multimap<std::uint64_t, Index> mPlaceOfPath;
};

#endif
