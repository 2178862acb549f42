#ifndef ARBORIST_LOADING_TREE_WALK_H
#define ARBORIST_LOADING_TREE_WALK_H

#include <vector>

#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/gate.h"

/// Calls `visit` with each event of a tree, in the order in which a detection decides them: an event before those below it,
/// these in the order of the gate.
template <typename Visit>
void ForEachEvent(const FaultTree& tree, Visit visit)
{
    std::vector<Event*> open{tree.GetIntermediateEvent().get()};
    while (!open.empty()) {
        Event* const event = open.back();
        open.pop_back();
        if (event == nullptr) {
            continue;
        }
        visit(*event);
        const IntermediateEvent* const above = event->AsIntermediate();
        if (above != nullptr && above->GetGate() != nullptr) {
            const auto& below = above->GetGate()->GetEvents();
            for (auto last = below.rbegin(); last != below.rend(); ++last) {
                open.push_back(last->get());
            }
        }
    }
}

#endif
