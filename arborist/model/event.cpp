#include "arborist/model/event.h"

#include <utility>

#include "arborist/frame/log.h"
#include "arborist/model/gate.h"
#include "arborist/utilities/string_util.h"

namespace {

// A prime factor, so that each letter of the id changes the whole hash.
constexpr std::uint32_t SKETCH_FACTOR = 16777619;

} // namespace

void Event::Check() {}

void Event::Reset() {}

void Event::SetId(const std::string& id)
{
    mId = StringUtil::TrimSP(id);
    mIdSketch = 0;
    mHasSeparatorInId = false;
    for (const char letter : mId) {
        mIdSketch = (mIdSketch ^ static_cast<unsigned char>(letter)) * SKETCH_FACTOR;
        mHasSeparatorInId = mHasSeparatorInId || letter == '/' || letter == '&';
    }
}

void Event::SetValue(std::string value)
{
    mValue = std::move(value);
}

void Event::SetName(std::string name)
{
    mName = std::move(name);
}

void Event::SetUserDefined(std::string userDefined)
{
    mUserDefined = std::move(userDefined);
}

void Event::SetDetectMode(std::string detectMode)
{
    mDetectMode = std::move(detectMode);
}

std::shared_ptr<Event> Event::FillEventInfo(std::string value, const std::string& id, std::string name,
                                            std::string userDefined, std::string detectMode)
{
    SetValue(std::move(value));
    SetId(id);
    SetName(std::move(name));
    SetUserDefined(std::move(userDefined));
    SetDetectMode(std::move(detectMode));
    return shared_from_this();
}

std::string Event::ToString() const
{
    std::string text;
    text.append(INFO_ID).append(mId);
    text.append(INFO_NAME).append(mName);
    text.append(INFO_VALUE).append(mValue);
    text.append(INFO_OBSERVABLE).append(mObservable ? "true" : "false");
    text.append(INFO_RESULT).append(GetElemTypeName(mResult));
    return text;
}

void BasicEvent::Reset()
{
    SetResult(EventStatus::FALSE);
}

void UndevelopedEvent::Reset()
{
    SetResult(EventStatus::UNKNOWN);
}

void IntermediateEvent::SetGate(std::shared_ptr<Gate> gate)
{
    mGate = std::move(gate);
}

void IntermediateEvent::Check()
{
    if (mGate == nullptr) {
        return;
    }
    const EventStatus gateResult = mGate->Check();
    if (IsCareObservable()) {
        CheckIgnoreObservable(gateResult);
    } else {
        CheckByObservable(gateResult);
    }
}

void IntermediateEvent::Reset()
{
    SetResult(EventStatus::FALSE);
    if (mGate != nullptr) {
        mGate->Reset();
    }
}

// Always false, on purpose: an observable event doesn't follow its gate. With true it would, unless it is in error.
bool IntermediateEvent::IsCareObservable() const
{
    return false;
}

void IntermediateEvent::CheckByObservable(EventStatus gateResult)
{
    if (IsObservable()) {
        LogDetails(gateResult);
    } else {
        SetResult(gateResult);
    }
}

void IntermediateEvent::CheckIgnoreObservable(EventStatus gateResult)
{
    if (!IsError(GetResult())) {
        SetResult(gateResult);
    }
}

void IntermediateEvent::LogDetails(EventStatus gateResult) const
{
    if (gateResult == EventStatus::FALSE && GetResult() == EventStatus::TRUE) {
        FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: id: %s is checked as true individually.",
                                      "IntermediateEvent::LogDetails", GetId().c_str());
    } else if (gateResult == EventStatus::TRUE && GetResult() == EventStatus::FALSE) {
        FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: id: %s is false, its children result is true.",
                                      "IntermediateEvent::LogDetails", GetId().c_str());
    }
}

std::optional<BasicEvent> IntermediateEvent::FindBasicEventById(const std::string& id)
{
    return FindBasicEvent(id, std::static_pointer_cast<IntermediateEvent>(shared_from_this()));
}

std::optional<BasicEvent> IntermediateEvent::FindBasicEvent(const std::string& id,
                                                            const std::shared_ptr<IntermediateEvent>& event)
{
    if (id.empty() || event == nullptr || event->mGate == nullptr) {
        return std::nullopt;
    }
    for (const auto& child : event->mGate->GetEvents()) {
        if (child->GetKind() == EventKind::BASIC && child->GetId() == id) {
            return static_cast<const BasicEvent&>(*child);
        }
        if (child->GetKind() == EventKind::INTERMEDIATE) {
            auto found = FindBasicEvent(id, std::static_pointer_cast<IntermediateEvent>(child));
            if (found) {
                return found;
            }
        }
    }
    return std::nullopt;
}
