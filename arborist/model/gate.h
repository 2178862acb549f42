#ifndef ARBORIST_MODEL_GATE_H
#define ARBORIST_MODEL_GATE_H

#include <memory>
#include <vector>

#include "arborist/model/event_status.h"

class Event;

/// The kind of a gate.
enum class GateKind : unsigned char { OTHER, OR, AND };

/// Combines the events of one level of a tree into the status of the event above them.
///
/// Shares ownership of its events. Checking writes into them, so one tree is checked by one thread at a time; nothing
/// is locked. No operation fails.
class Gate {
public:
    virtual ~Gate();
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;

    /// Checks every event below, in order, then returns their combined status: TRUE, FALSE or UNKNOWN.
    virtual EventStatus Check() = 0;

    /// Appends `event`. A null event is ignored. The order counts: see AndGate::Check.
    void AddEvent(std::shared_ptr<Event> event);
    /// The events, none of them null. Valid until the next AddEvent.
    const std::vector<std::shared_ptr<Event>>& GetEvents() const { return mEvents; }
    GateKind GetKind() const { return mKind; }

    /// Resets every event below, in order.
    void Reset();

protected:
    explicit Gate(GateKind kind = GateKind::OTHER) : mKind(kind) {}

    /// Checks every event, in order, so that the whole subtree is up to date before any status is read.
    void CheckEvents();

private:
    void TakeBranchesApart();

    GateKind mKind;
    std::vector<std::shared_ptr<Event>> mEvents;
};

/// One event in error is enough.
class OrGate : public Gate {
public:
    OrGate() : Gate(GateKind::OR) {}

    /// TRUE beats UNKNOWN, and UNKNOWN beats FALSE, whatever the order. FALSE without events.
    EventStatus Check() override;
};

/// Every event must be in error.
class AndGate : public Gate {
public:
    AndGate() : Gate(GateKind::AND) {}

    /// The first event that is FALSE or UNKNOWN decides. TRUE without events.
    EventStatus Check() override;
};

#endif
