#include "tests/support/tree_builder.h"

#include <utility>

namespace {

template <typename GateType>
std::shared_ptr<GateType> GateOver(const EventList& events)
{
    auto gate = std::make_shared<GateType>();
    for (const auto& event : events) {
        gate->AddEvent(event);
    }
    return gate;
}

} // namespace

std::shared_ptr<BasicEvent> Leaf(const std::string& id, EventStatus status)
{
    auto event = std::make_shared<BasicEvent>();
    event->SetId(id);
    event->SetResult(status);
    return event;
}

std::shared_ptr<UndevelopedEvent> Undeveloped(const std::string& id)
{
    auto event = std::make_shared<UndevelopedEvent>();
    event->SetId(id);
    return event;
}

std::shared_ptr<OrGate> Or(const EventList& events)
{
    return GateOver<OrGate>(events);
}

std::shared_ptr<AndGate> And(const EventList& events)
{
    return GateOver<AndGate>(events);
}

std::shared_ptr<IntermediateEvent> Inner(const std::string& id, std::shared_ptr<Gate> gate)
{
    auto event = std::make_shared<IntermediateEvent>();
    event->SetId(id);
    event->SetObservable(false);
    event->SetGate(std::move(gate));
    return event;
}

std::shared_ptr<IntermediateEvent> Observable(const std::string& id, EventStatus status, std::shared_ptr<Gate> gate)
{
    auto event = Inner(id, std::move(gate));
    event->SetObservable(true);
    event->SetResult(status);
    return event;
}

std::shared_ptr<FaultTree> TreeOf(std::shared_ptr<IntermediateEvent> top)
{
    auto tree = std::make_shared<FaultTree>("Tree", "1", "type");
    tree->SetIntermediateEvent(std::move(top));
    return tree;
}
