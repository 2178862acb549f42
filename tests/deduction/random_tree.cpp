#include "tests/deduction/random_tree.h"

#include <algorithm>
#include <ostream>

void PrintTo(const TreeStyle& style, std::ostream* out)
{
    *out << style.name;
}

std::shared_ptr<FaultTree> RandomTree::Make()
{
    mEvents = 0;
    return TreeOf(Intermediate(0));
}

std::string RandomTree::Id()
{
    ++mEvents;
    return mStyle.ids.empty() ? "E" + std::to_string(mEvents)
                              : mStyle.ids[Below(static_cast<unsigned>(mStyle.ids.size()))];
}

EventStatus RandomTree::Status()
{
    if (Chance(mStyle.inError)) {
        return Chance(90) ? EventStatus::TRUE : EventStatus::INTERMEDIATE_TRUE;
    }
    return Chance(80) ? EventStatus::FALSE : EventStatus::UNKNOWN;
}

std::shared_ptr<IntermediateEvent> RandomTree::Intermediate(unsigned depth)
{
    auto event = Chance(40) ? Observable(Id(), Status(), nullptr) : Inner(Id(), nullptr);
    if (depth == 0 || !Chance(mStyle.withoutGate)) {
        event->SetGate(AnyGate(depth));
    }
    return event;
}

std::shared_ptr<Gate> RandomTree::AnyGate(unsigned depth)
{
    EventList events;
    const unsigned count = Chance(mStyle.withoutEvents) ? 0 : 1 + Below(4);
    for (unsigned event = 0; event < count; ++event) {
        events.push_back(AnyEvent(depth + 1));
    }
    return Chance(50) ? std::shared_ptr<Gate>(Or(events)) : And(events);
}

std::shared_ptr<Event> RandomTree::AnyEvent(unsigned depth)
{
    if (depth < 4 && Chance(50)) {
        return Remembered(Intermediate(depth));
    }
    if (Chance(mStyle.withoutEvents / 2)) {
        return nullptr;
    }
    if (!mMade.empty() && Chance(mStyle.shared)) {
        return mMade[Below(static_cast<unsigned>(mMade.size()))];
    }
    if (Chance(10)) {
        const auto event = Undeveloped(Id());
        event->SetResult(Status());
        return Remembered(event);
    }
    return Remembered(Leaf(Id(), Status()));
}

std::shared_ptr<Event> RandomTree::Remembered(const std::shared_ptr<Event>& event)
{
    mMade.push_back(event);
    return event;
}

double ExpansionOf(const Event& event)
{
    const IntermediateEvent* intermediate = event.AsIntermediate();
    if (intermediate == nullptr) {
        return 1;
    }
    if (intermediate->GetGate() == nullptr) {
        return 0;
    }
    const bool isOr = intermediate->GetGate()->GetKind() == GateKind::OR;
    double count = isOr ? 0 : 1;
    for (const auto& child : intermediate->GetGate()->GetEvents()) {
        count = isOr ? count + ExpansionOf(*child) : count * std::max(1.0, ExpansionOf(*child));
    }
    return count;
}
