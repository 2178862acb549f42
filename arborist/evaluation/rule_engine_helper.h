#ifndef ARBORIST_EVALUATION_RULE_ENGINE_HELPER_H
#define ARBORIST_EVALUATION_RULE_ENGINE_HELPER_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

class Event;
class EventRule;

/// The events of the tree that is being run, flattened. Shares ownership of them.
class RuleEngineHelper {
public:
    using EventList = std::vector<std::shared_ptr<Event>>;
    using EventMap = std::map<std::string, std::shared_ptr<Event>>;
    using EventRuleMap = std::map<std::string, std::shared_ptr<EventRule>>;

    /// Appends the event and all below it, each before what lies under it. What was there stays.
    void FetchEvent(const std::shared_ptr<Event>& event);
    /// In the order of FetchEvent; an event that stands at two places of a tree is listed twice. Valid until the next
    /// FetchEvent or Reset.
    const EventList& GetAllEventList() const { return mAllEventList; }
    /// By id; of several events with one id the first. Made when it is asked for. Valid until the next FetchEvent or
    /// Reset.
    const EventMap& GetEventMap() const;

    /// Says for each event whether it has a check of its own: all but intermediate events do, and those for whose id
    /// there is an entry.
    void MarkObservable(const EventRuleMap& eventRules) const;
    void Reset();

    /// Changes with every FetchEvent and Reset.
    std::uint64_t GetRevision() const { return mRevision; }

private:
    EventList mAllEventList;
    mutable EventMap mEventMap;
    mutable std::size_t mMappedEvents = 0; // how many of the list are in the map
    std::uint64_t mRevision = 0;
};

#endif
