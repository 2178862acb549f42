#include "arborist/deduction/flat_tree.h"

#include <cstddef>

#include "arborist/model/event.h"
#include "arborist/model/gate.h"

namespace {

// A gate whose events are being visited.
struct OpenGate {
    const std::vector<std::shared_ptr<Event>>* events;
    std::size_t next;
    FlatTree::Index place;
};

} // namespace

FlatTree::FlatTree(const std::shared_ptr<Event>& top)
{
    if (top == nullptr) {
        return;
    }
    std::vector<OpenGate> open;
    const auto enter = [&](const std::shared_ptr<Event>& event, Index parent) {
        const Index place = Add(event, parent);
        mEnds.push_back(place + 1);
        if (const Gate* gate = GetGate(place)) {
            open.push_back({&gate->GetEvents(), 0, place});
        }
    };
    enter(top, NONE);
    while (!open.empty()) {
        OpenGate& gate = open.back();
        if (gate.next < gate.events->size()) {
            enter((*gate.events)[gate.next++], gate.place); // may invalidate `gate`
        } else {
            mEnds[gate.place] = Count();
            open.pop_back();
        }
    }
}

const Gate* FlatTree::GetGate(Index place) const
{
    const IntermediateEvent* intermediate = GetEvent(place).AsIntermediate();
    return intermediate == nullptr ? nullptr : intermediate->GetGate().get();
}
