#ifndef ARBORIST_DEDUCTION_FLAT_TREE_H
#define ARBORIST_DEDUCTION_FLAT_TREE_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class Event;
class Gate;

/// The places of a fault tree in pre-order, so that walks over it are loops, however deep the tree is.
///
/// One event may stand in several places. Refers to the tree, which must stay as it is.
class FlatTree {
public:
    using Index = std::uint32_t;
    static constexpr Index NONE = UINT32_MAX;

    struct Place {
        const std::shared_ptr<Event>* event;
        /// NONE at the top.
        Index parent;
        /// One past the last place below. The next place under the same gate stands there, if there is one.
        Index end;
    };

    /// Without places when `top` is null. Refers to `top` itself as well.
    explicit FlatTree(const std::shared_ptr<Event>& top);

    Index Count() const { return static_cast<Index>(mPlaces.size()); }
    const Place& At(Index place) const { return mPlaces[place]; }
    const Event& GetEvent(Index place) const { return **mPlaces[place].event; }
    const std::string& GetId(Index place) const;
    Index GetParent(Index place) const { return mPlaces[place].parent; }
    /// Null for an event that is not intermediate, and for one without a gate.
    const Gate* GetGate(Index place) const;
    /// The ids from the top down to a place, joined by "/".
    std::string GetPath(Index place) const;

private:
    void Add(const std::shared_ptr<Event>& event, Index parent);

    std::vector<Place> mPlaces;
};

#endif
