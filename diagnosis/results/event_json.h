#ifndef ARBORIST_DIAGNOSIS_RESULTS_EVENT_JSON_H
#define ARBORIST_DIAGNOSIS_RESULTS_EVENT_JSON_H

#include <cstddef>
#include <vector>

#include "diagnosis/evidence/recorded_tree.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

/// Writes the members that every report has of an event of a tree.
void WriteFoldedEvent(JsonWriter& json, const Evidence::FoldedEvent& event);

/// Writes events in pre-order as an object for the top event, in which each object has those below it in "children".
/// `writeMembers(place)` writes the other members of the event at a place. There must be an event.
template <typename WriteMembers>
void WritePreOrder(JsonWriter& json, const std::vector<RecordedEvent>& events, WriteMembers writeMembers)
{
    std::size_t open = 0;
    const auto closeTo = [&json, &open](std::size_t depth) {
        for (; open > depth; --open) {
            json.EndArray().EndObject();
        }
    };
    for (std::size_t place = 0; place < events.size(); ++place, ++open) {
        closeTo(events[place].depth);
        json.BeginObject();
        writeMembers(place);
        json.Key("children").BeginArray();
    }
    closeTo(0);
}

} // namespace diagnosis

#endif
