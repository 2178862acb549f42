#ifndef ARBORIST_EVALUATION_EVENT_CHECK_H
#define ARBORIST_EVALUATION_EVENT_CHECK_H

#include <cstddef>
#include <optional>
#include <unordered_map>

#include "arborist/frame/evidence.h"

struct OrRuleSingle;

/// Determines the check of an event from the checks of its alternatives.
///
/// Each result is written to the entry that the alternative's name finds, which may belong to another alternative: the
/// last result written to an entry counts; a result without an entry is ignored. An event that was true stays true for
/// all trees of a detection, and its earlier check counts too.
class EventCheck {
public:
    /// A check, and the alternative that gave it where it is one of this event's.
    struct Word {
        Evidence::Check check = Evidence::Check::NONE;
        std::optional<std::size_t> alternative;
    };

    /// The result of an alternative, of that number and with this check, was written to `entry`; null for nowhere.
    void Land(const OrRuleSingle* entry, bool result, Evidence::Check check, std::size_t alternative);
    /// The event was true before its rules were asked, which rested on `check`.
    void KeepTrue(Evidence::Check check);

    /// DECIDED if a decided alternative makes the event true. Otherwise the greatest open check; without open checks
    /// DECIDED, NOT_SELECTED or NOT_APPLICABLE, in this order.
    Word GetWord() const;
    /// The check of the alternative that makes the event true: a decided one if there is one, otherwise the least open
    /// one. NONE if the event is not true.
    Evidence::Check GetTrueCheck() const;

private:
    struct Landed {
        bool result;
        Evidence::Check check;
        std::size_t alternative;
    };

    std::unordered_map<const OrRuleSingle*, Landed> mLanded;
    Evidence::Check mKept = Evidence::Check::NONE;
};

#endif
