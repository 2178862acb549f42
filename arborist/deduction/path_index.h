#ifndef ARBORIST_DEDUCTION_PATH_INDEX_H
#define ARBORIST_DEDUCTION_PATH_INDEX_H

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "arborist/deduction/flat_tree.h"

/// Finds the places that the path of a leaf names.
///
/// A cut set names its members by path: ids from the top down are joined by "/", members by "&". Ids are not checked:
/// equal ids under one gate, empty ids and "/" in an id can give several events the same path, which then means the
/// first of them in the order of the leaves; "&" in an id splits a path into several members. Time and memory are
/// proportional to the text of all paths. Refers to the tree.
class PathIndex {
public:
    using Index = FlatTree::Index;

    explicit PathIndex(const FlatTree& tree);

    /// The places that the path of `leaf` names, one for each member; NONE for a member that names no place.
    std::vector<Index> FindMembers(Index leaf) const;

    /// True if every place of the tree has a path of its own, so that no index is needed.
    static bool ArePathsUnambiguous(const FlatTree& tree);

private:
    void AddFacts(Index place);
    void IndexPaths();
    void IndexPath(Index place);
    Index Find(std::string_view path) const;
    Index FindOwnPath(Index place) const;

    /// The facts about one place.
    struct Facts {
        std::uint64_t pathHash;
        /// An id of the path contains "&": the path is split, so that no look-up finds it as a whole.
        bool holdsMemberSeparator;
    };

    const FlatTree& mTree;
    std::vector<Facts> mFacts;
    std::unordered_multimap<std::uint64_t, Index> mPlaceOfPath;
};

#endif
