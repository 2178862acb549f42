#ifndef ARBORIST_FRAME_CHECK_H
#define ARBORIST_FRAME_CHECK_H

#include <array>
#include <cstddef>

#include "arborist/arborist_export.h"

namespace Evidence {

/// What the answer of a rule, or the status of an event, rests on.
///
/// In ascending order of what weighs when several meet: the word of a whole is the greatest of its parts'. The open
/// checks come last: their answer is not known, whatever stands in the status.
enum class Check : unsigned char {
    /// There is nothing to check: the event follows its gate.
    NONE,
    /// Filtered by product, black list, platform or device type, with a value of the device that is known. Counts as
    /// false.
    NOT_APPLICABLE,
    /// Filtered by the scene, or left to the host. Counts as false.
    NOT_SELECTED,
    /// Compared on data that was there, or answered by the host.
    DECIDED,
    /// Open: nothing says how to check it, or nobody is there to do it.
    NOT_CHECKED,
    /// Open: what was to be compared is missing, unreadable or incomplete. Its text is "no_data".
    DATA_MISSING,
    /// Open: the rule can't work as it is written. Its text is "error".
    RULE_UNUSABLE,
};

/// The word as results print it: "decided", "not_applicable", "not_selected", "not_checked", "no_data", "error"; empty
/// for NONE.
ARBORIST_EXPORT const char* CheckText(Check check);

/// Whether the answer could be another one if all that it needs were there.
constexpr bool IsOpen(Check check)
{
    return check >= Check::NOT_CHECKED;
}

/// The word of a whole with these two parts.
constexpr Check WorseOf(Check one, Check other)
{
    return one < other ? other : one;
}

/// How many checks of a tree came to each word. NONE is not counted.
class ARBORIST_EXPORT CheckCounts {
public:
    void Add(Check check);
    std::size_t Of(Check check) const { return mCounts[static_cast<std::size_t>(check)]; }
    std::size_t Total() const;
    std::size_t Open() const;

private:
    std::array<std::size_t, static_cast<std::size_t>(Check::RULE_UNUSABLE) + 1> mCounts = {};
};

} // namespace Evidence

#endif
