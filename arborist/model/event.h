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

/// What an event is, told without asking the type system: walks over a million events ask it of each.
enum class EventKind : unsigned char { PLAIN, BASIC, INTERMEDIATE, UNDEVELOPED };

/// One event of a fault tree: its texts and what is known of it.
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

    /// Brings the status up to date with what lies below. Does nothing for an event without a gate.
    virtual void Check();
    /// Brings the status back to that of a fresh event, here and below. Whether it is observable stays.
    virtual void Reset();

    EventKind GetKind() const { return mKind; }
    /// This event as an intermediate one; null when it is of another kind.
    const IntermediateEvent* AsIntermediate() const;

    const std::string& GetId() const { return mId; }
    /// A number made of the id's letters. Ids are different where it differs, and rarely where it doesn't.
    std::uint32_t GetIdSketch() const { return mIdSketch; }
    bool HasSameIdAs(const Event& other) const { return mIdSketch == other.mIdSketch && mId == other.mId; }
    /// Whether the id holds a "/" or "&", which join ids to paths and paths to cut sets.
    bool HasSeparatorInId() const { return mHasSeparatorInId; }
    const std::string& GetValue() const { return mValue; }
    const std::string& GetName() const { return mName; }
    const std::string& GetUserDefined() const { return mUserDefined; }
    const std::string& GetDetectMode() const { return mDetectMode; }
    EventStatus GetResult() const { return mResult; }
    /// Whether the event has a check of its own. An intermediate one without it follows its gate.
    bool IsObservable() const { return mObservable; }

    /// Stores the id without the spaces at its ends; other blanks stay.
    void SetId(const std::string& id);
    void SetValue(std::string value);
    void SetName(std::string name);
    void SetUserDefined(std::string userDefined);
    void SetDetectMode(std::string detectMode);
    void SetResult(const EventStatus& result) { mResult = result; }
    void SetObservable(const bool& observable) { mObservable = observable; }

    /// Sets all texts and returns the event itself. Throws std::bad_weak_ptr, with the texts set, when it is not under
    /// shared ownership.
    std::shared_ptr<Event> FillEventInfo(std::string value, const std::string& id, std::string name,
                                         std::string userDefined, std::string detectMode);

    /// "mID=...,mName=...,mValue=...,mObservable=true,result=FALSE".
    std::string ToString() const;

protected:
    Event(EventKind kind, EventStatus result) : mKind(kind), mResult(result) {}

private:
    // What a walk asks of each event stands side by side, so that it need not go as far as the texts.
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

/// A leaf of the tree. Its status comes from outside: FALSE until a rule fires.
class BasicEvent : public Event {
public:
    BasicEvent() : Event(EventKind::BASIC, EventStatus::FALSE) {}

    /// Does nothing, and final: a gate spares its leaves the call.
    void Check() final {}
    void Reset() override;
};

/// A leaf that nobody analyses further: UNKNOWN, unless something outside sets it.
class UndevelopedEvent : public Event {
public:
    UndevelopedEvent() : Event(EventKind::UNDEVELOPED, EventStatus::UNKNOWN) {}

    /// Does nothing, and final, as for a basic event.
    void Check() final {}
    void Reset() override;
};

/// An event that a gate explains by the events below it.
///
/// Without a gate its status is left as it is by Check, and Reset sets its own status only.
class IntermediateEvent : public Event {
public:
    IntermediateEvent() : Event(EventKind::INTERMEDIATE, EventStatus::FALSE) {}

    /// Checks the gate, and with it everything below. An observable event keeps its own status, and logs where the
    /// gate disagrees; any other takes the status of its gate.
    void Check() override;
    void Reset() override;

    /// Null until SetGate.
    const std::shared_ptr<Gate>& GetGate() const { return mGate; }
    void SetGate(std::shared_ptr<Gate> gate);

    /// A copy of the first basic event below with this id, depth first; nothing for the empty id.
    /// Throws std::bad_weak_ptr when this event is not under shared ownership.
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
