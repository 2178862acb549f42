#include "diagnosis/analysis/distinct_causes.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace diagnosis {

namespace {

using Numbers = std::vector<std::uint32_t>;

// Numbers the ids: one number for each event, equal for equal ids.
Numbers NumberIds(const RecordedTree& tree)
{
    std::unordered_map<std::string_view, std::uint32_t> numbers;
    Numbers numberOfEvent;
    numberOfEvent.reserve(tree.events.size());
    for (const RecordedEvent& event : tree.events) {
        numberOfEvent.push_back(
            numbers.try_emplace(event.id, static_cast<std::uint32_t>(numbers.size())).first->second);
    }
    return numberOfEvent;
}

std::string KeyOf(Numbers members)
{
    std::sort(members.begin(), members.end());
    members.erase(std::unique(members.begin(), members.end()), members.end());
    return {reinterpret_cast<const char*>(members.data()), members.size() * sizeof(Numbers::value_type)};
}

std::vector<std::string> IdsOf(const RecordedTree& tree, const RecordedCause& cause)
{
    std::vector<std::string> ids;
    for (const std::size_t member : cause.members) {
        if (member != RecordedEvent::NONE
            && std::find(ids.begin(), ids.end(), tree.events[member].id) == ids.end()) {
            ids.push_back(tree.events[member].id);
        }
    }
    return ids.empty() ? std::vector<std::string>{cause.id} : ids;
}

} // namespace

std::vector<DistinctCause> DistinctCausesOf(const RecordedTree& tree)
{
    const Numbers numberOfEvent = NumberIds(tree);
    std::unordered_map<std::string, std::size_t> causes;
    std::vector<DistinctCause> distinct;
    Numbers members;
    for (std::size_t place = 0; place < tree.causes.size(); ++place) {
        const RecordedCause& cause = tree.causes[place];
        members.clear();
        for (const std::size_t member : cause.members) {
            if (member != RecordedEvent::NONE) {
                members.push_back(numberOfEvent[member]);
            }
        }
        // If no path of the cut set names an event, causes are distinguished by their name.
        const std::string key = members.empty() ? "/" + cause.id : KeyOf(members);
        const auto [entry, isNew] = causes.try_emplace(key, distinct.size());
        if (isNew) {
            distinct.push_back({IdsOf(tree, cause), place, 0});
        }
        ++distinct[entry->second].times;
    }
    return distinct;
}

} // namespace diagnosis
