#include "arborist/model/gate.h"

#include <iterator>
#include <new>
#include <utility>

#include "arborist/model/event.h"

namespace {

using Events = std::vector<std::shared_ptr<Event>>;

// True if dropping this reference destroys the event and everything below it.
bool OwnsAllBelow(const std::shared_ptr<Event>& event)
{
    const IntermediateEvent* intermediate = event.use_count() == 1 ? event->AsIntermediate() : nullptr;
    return intermediate != nullptr && intermediate->GetGate() != nullptr && intermediate->GetGate().use_count() == 1;
}

} // namespace

// Left to themselves the destructors would nest as deep as the tree, and a tree made by hand may be deeper than a
// stack is long. So the branches that die with this gate hand over their gates first, level by level.
Gate::~Gate()
{
    try {
        TakeBranchesApart();
    } catch (const std::bad_alloc&) {
        // The destructors nest then, which all but trees made by hand survive.
    }
}

void Gate::TakeBranchesApart()
{
    std::vector<std::shared_ptr<Gate>> dying;
    const auto collect = [&dying](const Events& events) {
        for (const auto& event : events) {
            if (OwnsAllBelow(event)) {
                dying.push_back(static_cast<const IntermediateEvent&>(*event).GetGate());
            }
        }
    };
    collect(mEvents);
    while (!dying.empty()) {
        const std::shared_ptr<Gate> gate = std::move(dying.back());
        dying.pop_back();
        collect(gate->mEvents);
        // An event destroyed here has already moved its gate to `dying`, so no destructor nests.
        gate->mEvents.clear();
    }
}

void Gate::AddEvent(std::shared_ptr<Event> event)
{
    if (event != nullptr) {
        mEvents.push_back(std::move(event));
    }
}

void Gate::CheckEvents()
{
    for (const auto& event : mEvents) {
        // Most events are leaves, whose Check does nothing: skip the call.
        const EventKind kind = event->GetKind();
        if (kind != EventKind::BASIC && kind != EventKind::UNDEVELOPED) {
            event->Check();
        }
    }
}

void Gate::Reset()
{
    for (const auto& event : mEvents) {
        event->Reset();
    }
}

EventStatus OrGate::Check()
{
    CheckEvents();
    EventStatus result = EventStatus::FALSE;
    for (const auto& event : GetEvents()) {
        if (IsError(event->GetResult())) {
            return EventStatus::TRUE;
        }
        if (event->GetResult() == EventStatus::UNKNOWN) {
            result = EventStatus::UNKNOWN;
        }
    }
    return result;
}

EventStatus AndGate::Check()
{
    CheckEvents();
    for (const auto& event : GetEvents()) {
        // The first child that is not true decides: UNKNOWN before FALSE answers UNKNOWN, FALSE before UNKNOWN answers
        // FALSE. Rule files rely on it.
        if (event->GetResult() == EventStatus::FALSE || event->GetResult() == EventStatus::UNKNOWN) {
            return event->GetResult();
        }
    }
    return EventStatus::TRUE;
}
