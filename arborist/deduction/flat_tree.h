#ifndef ARBORIST_DEDUCTION_FLAT_TREE_H
#define ARBORIST_DEDUCTION_FLAT_TREE_H

#include <memory>
#include <vector>

#include "arborist/deduction/event_places.h"

class Gate;

/// The places of a whole fault tree in pre-order: algorithms over them are loops instead of recursions, however deep
/// the tree.
class FlatTree : public EventPlaces {
public:
    /// Has no places if `top` is null. Refers to the pointer `top` itself, too.
    explicit FlatTree(const std::shared_ptr<Event>& top);
    /// A temporary pointer, such as one that is converted on the way, would be gone before the first use.
    explicit FlatTree(const std::shared_ptr<Event>&& top) = delete;

    /// One past the last place below: the place of the next event under the same gate, if there is one.
    Index GetEnd(Index place) const { return mEnds[place]; }
    /// Null for an event that is no intermediate event or has no gate.
    const Gate* GetGate(Index place) const;

private:
    std::vector<Index> mEnds;
};

#endif
