#include "diagnosis/evidence/recorded_path_index.h"

#include "diagnosis/text/running_hash.h"

namespace diagnosis {

RecordedPathIndex::RecordedPathIndex(const std::vector<RecordedEvent>& events) : mEvents(events)
{
    // Hashes instead of texts: the texts of all paths would grow with the square of the depth of the tree.
    std::vector<RunningHash> hashes;
    std::vector<bool> isInErrorToTheTop;
    hashes.reserve(events.size());
    isInErrorToTheTop.reserve(events.size());
    for (std::size_t place = 0; place < events.size(); ++place) {
        const RecordedEvent& event = events[place];
        const bool isTop = event.parent == RecordedEvent::NONE;
        hashes.push_back((isTop ? RunningHash() : hashes[event.parent].Extended("/")).Extended(event.id));
        isInErrorToTheTop.push_back(event.IsInError() && (isTop || isInErrorToTheTop[event.parent]));
        const auto [entry, isNew] = mPlaces.try_emplace(hashes.back().Value(), place);
        if (!isNew && isInErrorToTheTop[place] && !isInErrorToTheTop[entry->second]) {
            entry->second = place;
        }
    }
}

std::size_t RecordedPathIndex::Find(std::string_view path) const
{
    const auto found = mPlaces.find(RunningHash().Extended(path).Value());
    return found != mPlaces.end() && IsPathOf(found->second, path) ? found->second : RecordedEvent::NONE;
}

bool RecordedPathIndex::IsPathOf(std::size_t event, std::string_view path) const
{
    for (; event != RecordedEvent::NONE; event = mEvents[event].parent) {
        const bool isTop = mEvents[event].parent == RecordedEvent::NONE;
        const std::string& id = mEvents[event].id;
        if (!path.ends_with(id)) {
            return false;
        }
        path.remove_suffix(id.size());
        if (!isTop && !path.ends_with('/')) {
            return false;
        }
        path.remove_suffix(isTop ? 0 : 1);
    }
    return path.empty();
}

} // namespace diagnosis
