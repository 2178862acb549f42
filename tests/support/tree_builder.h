#ifndef ARBORIST_TESTS_SUPPORT_TREE_BUILDER_H
#define ARBORIST_TESTS_SUPPORT_TREE_BUILDER_H

#include <memory>
#include <string>
#include <vector>

#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/gate.h"

/// Builds fault trees by nested calls: `TreeOf(Inner("T", Or({Leaf("A"), Inner("G", And({Leaf("B"), Leaf("C")}))})))`.
/// Inner events are not observable, so they follow their gates, as most events of real trees do.
using EventList = std::vector<std::shared_ptr<Event>>;

/// Two ids with the same sketch, which only differ in their letters.
inline constexpr const char* IDS_WITH_ONE_SKETCH[] = {"pump3022leaks", "E252360"};

std::shared_ptr<BasicEvent> Leaf(const std::string& id, EventStatus status = EventStatus::FALSE);
std::shared_ptr<UndevelopedEvent> Undeveloped(const std::string& id);
std::shared_ptr<OrGate> Or(const EventList& events);
std::shared_ptr<AndGate> And(const EventList& events);
std::shared_ptr<IntermediateEvent> Inner(const std::string& id, std::shared_ptr<Gate> gate);
/// An event with a rule of its own, whose result is `status`.
std::shared_ptr<IntermediateEvent> Observable(const std::string& id, EventStatus status, std::shared_ptr<Gate> gate);
std::shared_ptr<FaultTree> TreeOf(std::shared_ptr<IntermediateEvent> top);

#endif
