#include "arborist/deduction/event_places.h"

#include "arborist/model/event.h"

EventPlaces::Index EventPlaces::Add(const std::shared_ptr<Event>& event, Index parent)
{
    mPlaces.push_back({&event, parent});
    return Count() - 1;
}

const std::string& EventPlaces::GetId(Index place) const
{
    return GetEvent(place).GetId();
}

std::string EventPlaces::GetPath(Index place) const
{
    std::vector<Index> way;
    for (Index above = place; above != NONE; above = GetParent(above)) {
        way.push_back(above);
    }
    std::string path = GetId(way.back());
    for (auto below = way.rbegin() + 1; below != way.rend(); ++below) {
        path.append("/").append(GetId(*below));
    }
    return path;
}
