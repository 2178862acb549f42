#ifndef ARBORIST_EVALUATION_RULE_ENGINE_HELPER_H
#define ARBORIST_EVALUATION_RULE_ENGINE_HELPER_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

class Event;
class EventRule;

/// The event store: a flat list of the events of the current tree. Shares ownership of them.
class RuleEngineHelper {
public:
    using EventList = std::vector<std::shared_ptr<Event>>;
    using EventMap = std::map<std::string, std::shared_ptr<Event>>;
    using EventRuleMap = std::map<std::string, std::shared_ptr<EventRule>>;

    /// Appends the event and all events below it in pre-order; keeps earlier ones.
    void FetchEvent(const std::shared_ptr<Event>& event);
    /// In the order of FetchEvent; an event with two places in a tree is listed twice. Valid until the next FetchEvent
    /// or Reset.
    const EventList& GetAllEventList() const { return mAllEventList; }
    /// By id, the first of several events with one id. Built by the first call. Valid until the next FetchEvent or
    /// Reset. Kept for the tests, as RuleEngine::GetEventMap is.
    const EventMap& GetEventMap();

    /// Sets for each event whether it has a check of its own: all events do, except for intermediate events without an
    /// entry for their id.
    void MarkObservable(const EventRuleMap& eventRules) const;
    void Reset();

    /// A number that every FetchEvent and Reset changes.
    std::uint64_t GetRevision() const { return mRevision; }

private:
    EventList mAllEventList;
    EventMap mEventMap;
    std::size_t mMappedEvents = 0; // number of listed events that are in the map
    std::uint64_t mRevision = 0;
};

#endif
