#ifndef ARBORIST_DEDUCTION_SURVIVING_TREE_H
#define ARBORIST_DEDUCTION_SURVIVING_TREE_H

#include <cstddef>
#include <vector>

#include "arborist/deduction/event_places.h"

/// The part of a fault tree that can be in a root cause: leaves whose members qualify and the gates above them. Every
/// combination of these leaves is a root cause.
class SurvivingTree : public EventPlaces {
public:
    /// Outcome of a branch of the fault tree. EMPTY: it has no combinations, whatever the statuses; in an AND gate it
    /// also drops those of the branches before it. DEAD: it has combinations, but none survives. ALIVE: some survive.
    /// In ascending order: the outcome of an OR gate is the greatest of its branches.
    enum class Outcome { EMPTY, DEAD, ALIVE };

    enum class BranchKind : unsigned char { LEAF, OR, AND };

    /// A gate or a leaf that survived.
    struct Branch {
        BranchKind kind;
        /// For a gate its first branch, for a leaf its first member.
        Index first;
        /// Number of members of a leaf: more than one only if its path contains "&".
        Index memberCount;
        /// The next branch under the same gate.
        Index next;
    };

    /// A state of the growing tree, to return to with Rewind.
    struct Mark {
        std::size_t places;
        std::size_t branches;
        std::size_t members;
    };

    using EventPlaces::Add;
    /// `members` are the places that the leaf's path names.
    Index AddLeaf(const std::vector<Index>& members);
    Index AddLeaf(Index member);
    /// `first` is the first of the gate's branches, which are linked by Branch::next.
    Index AddGate(BranchKind kind, Index first);
    void Chain(Index branch, Index next) { mBranches[branch].next = next; }
    void SetTop(Index branch) { mTop = branch; }

    Mark GetMark() const { return {Count(), mBranches.size(), mMembers.size()}; }
    /// Removes everything that was added since `mark`.
    void Rewind(const Mark& mark);

    /// The branch of the top event; NONE if nothing survived.
    Index GetTop() const { return mTop; }
    const Branch& GetBranch(Index branch) const { return mBranches[branch]; }
    Index GetMember(std::size_t member) const { return mMembers[member]; }

private:
    std::vector<Branch> mBranches;
    std::vector<Index> mMembers;
    Index mTop = NONE;
};

#endif
