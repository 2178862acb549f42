#ifndef ARBORIST_MODEL_EVENT_H
#define ARBORIST_MODEL_EVENT_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "arborist/model/event_status.h"

class Gate;
class IntermediateEvent;

/// The kind of an event. A field, as walks over a million events read it and a cast costs more.
enum class EventKind : unsigned char { PLAIN, BASIC, INTERMEDIATE, UNDEVELOPED };

/// One event of a fault tree: its texts and its status.
///
/// Lives under shared ownership (std::make_shared). One tree is checked, reset and read by one thread at a time.
class Event : public std::enable_shared_from_this<Event> {
public:
    static constexpr std::string_view INFO_ID = "mID=";
    static constexpr std::string_view INFO_NAME = ",mName=";
    static constexpr std::string_view INFO_VALUE = ",mValue=";
    static constexpr std::string_view INFO_OBSERVABLE = ",mObservable=";
    static constexpr std::string_view INFO_RESULT = ",result=";

    Event() = default;
    virtual ~Event() = default;
    Event(const Event&) = default;
    Event& operator=(const Event&) = default;

    /// Updates the status from the events below. Does nothing for an event without a gate.
    virtual void Check();
    /// Gives this event and all below it the status of a fresh event. The observable mark stays.
    virtual void Reset();

    EventKind GetKind() const { return mKind; }
    /// Returns this event as an intermediate event; null if it is of another kind.
    const IntermediateEvent* AsIntermediate() const;

    const std::string& GetId() const { return mId; }
    /// A hash of the id: different hashes mean different ids; equal hashes nearly always mean equal ids.
    std::uint32_t GetIdSketch() const { return mIdSketch; }
    bool HasSameIdAs(const Event& other) const { return mIdSketch == other.mIdSketch && mId == other.mId; }
    /// True if the id contains "/" or "&", the separators of paths and of cut sets.
    bool HasSeparatorInId() const { return mHasSeparatorInId; }
    const std::string& GetValue() const { return mValue; }
    const std::string& GetName() const { return mName; }
    const std::string& GetUserDefined() const { return mUserDefined; }
    const std::string& GetDetectMode() const { return mDetectMode; }
    EventStatus GetResult() const { return mResult; }
    /// True if the event is decided by rules of its own. An intermediate event that is not observable follows its gate.
    bool IsObservable() const { return mObservable; }

    /// Stores the id without leading and trailing spaces; tabs and line ends stay.
    void SetId(const std::string& id);
    void SetValue(std::string value);
    void SetName(std::string name);
    void SetUserDefined(std::string userDefined);
    void SetDetectMode(std::string detectMode);
    void SetResult(const EventStatus& result) { mResult = result; }
    void SetObservable(const bool& observable) { mObservable = observable; }

    /// Sets all texts and returns the event itself. Throws std::bad_weak_ptr, after setting the texts, if the event is
    /// not under shared ownership.
    std::shared_ptr<Event> FillEventInfo(std::string value, const std::string& id, std::string name,
                                         std::string userDefined, std::string detectMode);

    /// "mID=...,mName=...,mValue=...,mObservable=true,result=FALSE". Kept for debugging.
    std::string ToString() const;

protected:
    Event(EventKind kind, EventStatus result) : mKind(kind), mResult(result) {}

private:
    // The fields that walks read come first, close together, so that a walk touches one cache line for each event.
    EventKind mKind = EventKind::PLAIN;
    bool mObservable = true;
    EventStatus mResult = EventStatus::UNKNOWN;
    bool mHasSeparatorInId = false;
    std::uint32_t mIdSketch = 0;
    std::string mId;
    std::string mValue;
    std::string mName;
    std::string mUserDefined;
    std::string mDetectMode;
};

/// A leaf of the tree. FALSE until a rule that decides it fires.
class BasicEvent : public Event {
public:
    BasicEvent() : Event(EventKind::BASIC, EventStatus::FALSE) {}

    /// Does nothing. Final, so that a gate can skip the call for its leaves.
    void Check() final {}
    void Reset() override;
};

/// A leaf that the rule author did not analyse further. UNKNOWN unless a rule that decides it fires.
class UndevelopedEvent : public Event {
public:
    UndevelopedEvent() : Event(EventKind::UNDEVELOPED, EventStatus::UNKNOWN) {}

    /// Does nothing. Final, as for a basic event.
    void Check() final {}
    void Reset() override;
};

/// An event whose gate combines the events below it.
///
/// Without a gate, Check leaves the status unchanged and Reset touches this event alone.
class IntermediateEvent : public Event {
public:
    IntermediateEvent() : Event(EventKind::INTERMEDIATE, EventStatus::FALSE) {}

    /// Checks the gate, and with it everything below. An observable event keeps its own status and logs a line if the
    /// gate disagrees; any other event takes the status of its gate.
    void Check() override;
    void Reset() override;

    /// Null until SetGate.
    const std::shared_ptr<Gate>& GetGate() const { return mGate; }
    void SetGate(std::shared_ptr<Gate> gate);

    /// Returns a copy of the first basic event below with this id, depth first; nothing for the empty id.
    /// Throws std::bad_weak_ptr if this event is not under shared ownership. Kept for the tests.
    std::optional<BasicEvent> FindBasicEventById(const std::string& id);

private:
    bool IsCareObservable() const;
    void CheckByObservable(EventStatus gateResult);
    void CheckIgnoreObservable(EventStatus gateResult);
    void LogDetails(EventStatus gateResult) const;
    static std::optional<BasicEvent> FindBasicEvent(const std::string& id,
                                                    const std::shared_ptr<IntermediateEvent>& event);

    std::shared_ptr<Gate> mGate;
};

inline const IntermediateEvent* Event::AsIntermediate() const
{
    return mKind == EventKind::INTERMEDIATE ? static_cast<const IntermediateEvent*>(this) : nullptr;
}

#endif
