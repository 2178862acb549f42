#ifndef ARBORIST_DEDUCTION_EVENT_PLACES_H
#define ARBORIST_DEDUCTION_EVENT_PLACES_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class Event;

/// Places of events in a fault tree, each with the place above it. One event may have several places.
///
/// Refers to the fault tree, which must not change.
class EventPlaces {
public:
    using Index = std::uint32_t;
    static constexpr Index NONE = UINT32_MAX;

    Index Count() const { return static_cast<Index>(mPlaces.size()); }
    const std::shared_ptr<Event>& GetSharedEvent(Index place) const { return *mPlaces[place].event; }
    const Event& GetEvent(Index place) const { return *GetSharedEvent(place); }
    const std::string& GetId(Index place) const;
    /// Place of the event above; NONE for the top event.
    Index GetParent(Index place) const { return mPlaces[place].parent; }
    /// The ids from the top down to a place, joined by "/".
    std::string GetPath(Index place) const;

protected:
    EventPlaces() = default;

    /// Refers to the pointer `event` itself, too.
    Index Add(const std::shared_ptr<Event>& event, Index parent);
    /// Removes all places but the first `count`.
    void Shorten(std::size_t count) { mPlaces.resize(count); }

private:
    struct Place {
        const std::shared_ptr<Event>* event;
        Index parent;
    };

    std::vector<Place> mPlaces;
};

#endif
