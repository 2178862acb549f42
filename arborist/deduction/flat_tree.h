#ifndef ARBORIST_DEDUCTION_FLAT_TREE_H
#define ARBORIST_DEDUCTION_FLAT_TREE_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class Event;
class Gate;

/// The places of a fault tree in pre-order: algorithms over them are loops instead of recursions, however deep the
/// tree.
///
/// An event may have several places. Refers to the tree, which must not change.
class FlatTree {
public:
    using Index = std::uint32_t;
    static constexpr Index NONE = UINT32_MAX;

    struct Place {
        const std::shared_ptr<Event>* event;
        /// Place of the event above; NONE for the top event.
        Index parent;
        /// One past the last place below: the place of the next event under the same gate, if there is one.
        Index end;
    };

    /// Has no places if `top` is null. Refers to the pointer `top` itself, too.
    explicit FlatTree(const std::shared_ptr<Event>& top);
    /// A temporary pointer, such as one that is converted on the way, would be gone before the first use.
    explicit FlatTree(const std::shared_ptr<Event>&& top) = delete;

    Index Count() const { return static_cast<Index>(mPlaces.size()); }
    const Place& At(Index place) const { return mPlaces[place]; }
    const Event& GetEvent(Index place) const { return **mPlaces[place].event; }
    const std::string& GetId(Index place) const;
    Index GetParent(Index place) const { return mPlaces[place].parent; }
    /// Null for an event that is no intermediate event or has no gate.
    const Gate* GetGate(Index place) const;
    /// The ids from the top down to a place, joined by "/".
    std::string GetPath(Index place) const;

private:
    void Add(const std::shared_ptr<Event>& event, Index parent);

    std::vector<Place> mPlaces;
};

#endif
