#ifndef ARBORIST_DEDUCTION_SURVIVING_TREE_H
#define ARBORIST_DEDUCTION_SURVIVING_TREE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class Event;

/// What is left of a fault tree when all that no root cause can hold is cut away: the gates, and below them the leaves
/// whose members qualify. Every combination of what is left is a root cause.
///
/// Holds references into the tree, which must stay as it is.
class SurvivingTree {
public:
    using Index = std::uint32_t;
    static constexpr Index NONE = UINT32_MAX;

    /// An event where it stands in the tree. One event may stand in several places.
    struct Place {
        const std::shared_ptr<Event>* event;
        /// NONE at the top.
        Index parent;
    };

    /// What a branch of the fault tree comes to. EMPTY has no combination at all, whatever the statuses, which decides
    /// how an AND gate takes what stands before and behind it; DEAD has some, and none of them survives. In ascending
    /// order: an OR gate comes to the greatest of its branches.
    enum class Outcome { EMPTY, DEAD, ALIVE };

    enum class BranchKind : unsigned char { LEAF, OR, AND };

    /// A gate or a leaf that survived.
    struct Branch {
        BranchKind kind;
        /// Of a gate its first branch, of a leaf its first member.
        Index first;
        /// Members of a leaf: one, but for paths that hold a separator of members.
        Index memberCount;
        /// The branch behind it under the same gate.
        Index next;
    };

    /// How far the tree has grown.
    struct Mark {
        std::size_t places;
        std::size_t branches;
        std::size_t members;
    };

    Index AddPlace(const std::shared_ptr<Event>& event, Index parent);
    /// `members` are the places that the leaf's path leads to.
    Index AddLeaf(const std::vector<Index>& members);
    Index AddLeaf(Index member);
    /// Branches are chained through Branch::next, starting at `first`.
    Index AddGate(BranchKind kind, Index first);
    void Chain(Index branch, Index next) { mBranches[branch].next = next; }
    void SetTop(Index branch) { mTop = branch; }

    Mark GetMark() const { return {mPlaces.size(), mBranches.size(), mMembers.size()}; }
    /// Forgets all that was added since.
    void Rewind(const Mark& mark);

    /// The branch of the top event; NONE when nothing survived.
    Index GetTop() const { return mTop; }
    const std::vector<Place>& GetPlaces() const { return mPlaces; }
    const Branch& GetBranch(Index branch) const { return mBranches[branch]; }
    Index GetMember(std::size_t member) const { return mMembers[member]; }
    const std::string& GetId(Index place) const;
    Index GetParent(Index place) const { return mPlaces[place].parent; }
    /// The ids from the top down to a place, joined by "/".
    std::string GetPath(Index place) const;

private:
    std::vector<Place> mPlaces;
    std::vector<Branch> mBranches;
    std::vector<Index> mMembers;
    Index mTop = NONE;
};

#endif
