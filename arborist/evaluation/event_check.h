#ifndef ARBORIST_EVALUATION_EVENT_CHECK_H
#define ARBORIST_EVALUATION_EVENT_CHECK_H

#include <cstddef>
#include <optional>
#include <unordered_map>

#include "arborist/frame/evidence.h"

struct OrRuleSingle;

/// Works out what an event's status rests on, from its alternatives as their results land.
///
/// A result is written to the entry that the alternative's name leads to, which may be another alternative's: the last
/// one written counts, and one that leads nowhere doesn't. Once true, an event stays true for all trees of a detection;
/// what that rested on counts along.
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

    /// DECIDED if an answer makes the event true; else the worst open word; else DECIDED if any rule had an answer;
    /// else NOT_SELECTED, else NOT_APPLICABLE.
    Word GetWord() const;
    /// What it rests on that the event is true; NONE where nothing makes it true.
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
