#ifndef ARBORIST_FRAME_TREE_VERDICT_H
#define ARBORIST_FRAME_TREE_VERDICT_H

#include <cstddef>
#include <string>
#include <vector>

#include "arborist/arborist_export.h"
#include "arborist/frame/check.h"
#include "arborist/frame/comparable.h"

namespace Evidence {

/// A check without a reliable answer, and the reason.
struct OpenCheck {
    /// Id of the event that the check belongs to.
    std::string eventId;
    /// The first rule of the event with this check; empty if the check comes from no rule.
    std::string ruleName;
    /// The value of the check. It is an open one, except in the case that TreeVerdict::open describes.
    Check check = Check::NONE;
    /// Why there is no reliable answer.
    Reason reason = Reason::NONE;
    /// What the reason is about: a file, a name, a database's message. May be empty.
    std::string detail;
    /// True if the event is TRUE although its check is open: another answer could take the event, and with it a fault,
    /// away.
    bool restsOnDefault = false;

    ARBORIST_COMPARABLE(OpenCheck)
};

/// The result of a detection for one tree, and how reliable it is.
///
/// FaultTreeResult::mIsFault is no proof while checks are open. The verdict considers every combination of their answers,
/// but an event that is TRUE stays TRUE (OpenCheck::restsOnDefault). Where two open checks depend on one missing source
/// some combinations can't occur: the verdict may then be UNDECIDED although no possible answer changes it.
struct TreeVerdict {
    /// The verdict itself.
    enum class Word : unsigned char {
        /// A root cause was found.
        FAULT,
        /// Open checks could make it a fault, or nothing was decided at all.
        UNDECIDED,
        /// At least one check was decided, and no answer of the open ones makes it a fault.
        NO_FAULT,
        /// No check applies to this device.
        NOT_APPLICABLE,
    };

    /// A cut set that answers of open checks would add to the root causes.
    struct PossibleCause {
        /// Id of its first member, the leaf event of the root cause.
        std::string id;
        /// The path of each member, ids from the top down joined by "/".
        std::vector<std::string> cutSet;

        ARBORIST_COMPARABLE(PossibleCause)
    };

    /// The verdict.
    Word word = Word::UNDECIDED;
    /// False if answers to open checks could add a root cause or end UNDECIDED; events that are TRUE stay TRUE, as above.
    bool isComplete = true;
    /// True if the top event is TRUE and no cut set explains it.
    bool isTrueWithoutCause = false;
    /// The number of checks of the tree, by their value.
    CheckCounts checks;
    /// The first possible causes, in the order in which a detection would find them.
    std::vector<PossibleCause> possibleCauses;
    /// True if there are more than `possibleCauses` has.
    bool arePossibleCausesTruncated = false;
    /// One entry for each open check, in pre-order. If no check was decided and none is open, the entries are the checks
    /// that were not selected, or the top event of a tree without checks.
    std::vector<OpenCheck> open;

    ARBORIST_COMPARABLE(TreeVerdict)
};

/// "fault", "undecided", "no_fault", "not_applicable".
ARBORIST_EXPORT const char* TreeVerdictText(TreeVerdict::Word word);

} // namespace Evidence

#endif
