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
    /// The value of the check: mostly an open one; see TreeVerdict::open.
    Check check = Check::NONE;
    /// Why there is no reliable answer.
    Reason reason = Reason::NONE;
    /// What the reason is about: a file, a name, a database's message. May be empty.
    std::string detail;
    /// True if the event is TRUE although its check is open.
    bool restsOnDefault = false;

    ARBORIST_COMPARABLE(OpenCheck)
};

/// The result of a detection for one tree, and how reliable it is.
///
/// `isFault` says whether a root cause was found; if none was found, that is no proof as long as checks are open. The
/// verdict is exact over all answers of the open checks, taken as independent of each other. If two of them depend on
/// one missing source, some combinations may be impossible: the verdict then errs towards UNDECIDED.
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
    /// True if no answer of an open check could change the verdict or add a root cause.
    bool isComplete = true;
    /// The top event is true and no cut set explains it.
    bool isTrueWithoutCause = false;
    /// The number of checks of the tree, by their value.
    CheckCounts checks;
    /// The first possible causes, in the order in which a detection would find them.
    std::vector<PossibleCause> possibleCauses;
    /// True if there are more than `possibleCauses` has.
    bool arePossibleCausesTruncated = false;
    /// One for each open check, in pre-order. Where nothing was decided and nothing is open: what was not selected, or
    /// the top event of a tree without checks.
    std::vector<OpenCheck> open;

    ARBORIST_COMPARABLE(TreeVerdict)
};

/// "fault", "undecided", "no_fault", "not_applicable".
ARBORIST_EXPORT const char* TreeVerdictText(TreeVerdict::Word word);

} // namespace Evidence

#endif
