#ifndef ARBORIST_FRAME_CHECK_H
#define ARBORIST_FRAME_CHECK_H

#include <array>
#include <cstddef>

#include "arborist/arborist_export.h"
#include "arborist/frame/comparable.h"
#include "arborist/frame/evidence_words.h"

namespace Evidence {

/// How reliable the answer of a rule, or the status of an event, is.
///
/// The values ascend in precedence: the check of a whole is the greatest of the checks of its parts. The open checks come
/// last: an open check has no known answer, whatever the status of its event is.
enum class Check : unsigned char {
    /// There is nothing to check: the event follows its gate.
    NONE,
    /// Filtered by product, black list, platform or device type, with a value of the device that is known. Counts as
    /// false.
    NOT_APPLICABLE,
    /// Filtered by the scene, or left to the host. Counts as false.
    NOT_SELECTED,
    /// Decided on existing data, or answered by the host.
    DECIDED,
    /// Open: the event has no rules, or nothing can check it.
    NOT_CHECKED,
    /// Open: the data is missing, unreadable or incomplete. Its text is "no_data".
    DATA_MISSING,
    /// Open: the rule can't work as written. Its text is "error".
    RULE_UNUSABLE,
};

/// The word as results print it: "decided", "not_applicable", "not_selected", "not_checked", "no_data", "error"; empty
/// for NONE.
ARBORIST_EXPORT const char* CheckText(Check check);

/// The check that follows from a reason alone: NONE for Reason::NONE, and for Reason::GROUP_ENDED, which a rule has if it
/// was not run.
ARBORIST_EXPORT Check CheckOf(Reason reason);

/// True if the answer is unknown: with complete data and a usable rule the answer could be different.
constexpr bool IsOpen(Check check)
{
    return check >= Check::NOT_CHECKED;
}

/// The check that takes precedence; see Check.
constexpr Check WorseOf(Check one, Check other)
{
    return one < other ? other : one;
}

/// Counts the checks of a tree by their value, without NONE.
class ARBORIST_EXPORT CheckCounts {
public:
    /// Counts one more check; NONE counts nothing.
    void Add(Check check);
    /// The number of checks with this value.
    std::size_t Of(Check check) const { return mCounts[static_cast<std::size_t>(check)]; }
    /// The number of all checks.
    std::size_t Total() const;
    /// The number of open checks; see IsOpen.
    std::size_t Open() const;

    ARBORIST_COMPARABLE(CheckCounts)

private:
    std::array<std::size_t, static_cast<std::size_t>(Check::RULE_UNUSABLE) + 1> mCounts = {};
};

} // namespace Evidence

#endif
