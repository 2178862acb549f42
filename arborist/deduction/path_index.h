#ifndef ARBORIST_DEDUCTION_PATH_INDEX_H
#define ARBORIST_DEDUCTION_PATH_INDEX_H

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "arborist/deduction/flat_tree.h"

/// Finds the places that the path of a leaf leads to.
///
/// A member of a cut set is told by its path: the ids from the top down, joined by "/", and members by "&". Ids are not
/// guarded: equal ids beside each other, "/" in an id and empty ids may give several events one path, of which the
/// first in the order of the leaves is meant; "&" in an id splits a path into several members. Time and memory are in
/// proportion to the text of all paths. Refers to the tree.
class PathIndex {
public:
    using Index = FlatTree::Index;

    explicit PathIndex(const FlatTree& tree);

    /// The places that the path of `leaf` leads to; NONE among them where it leads nowhere.
    std::vector<Index> FindMembers(Index leaf) const;

    /// Whether every path of the tree leads to its own place alone, so that no index is needed.
    static bool ArePathsUnambiguous(const FlatTree& tree);

private:
    void AddFacts(Index place);
    void IndexPaths();
    void IndexPath(Index place);
    Index Find(std::string_view path) const;
    Index FindOwnPath(Index place) const;

    /// What is known of each place.
    struct Facts {
        std::uint64_t pathHash;
        /// An id on the way holds a "&": the path is split, and nothing is found by it as a whole.
        bool holdsMemberSeparator;
    };

    const FlatTree& mTree;
    std::vector<Facts> mFacts;
    std::unordered_multimap<std::uint64_t, Index> mPlaceOfPath;
};

#endif
