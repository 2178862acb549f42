#ifndef ARBORIST_FRAME_TROUBLE_H
#define ARBORIST_FRAME_TROUBLE_H

#include <string>

namespace Evidence {

/// A problem that makes a result less reliable and belongs to no record of a rule, told to programs. Most problems have a
/// line in the log, too.
struct Trouble {
    /// What went wrong.
    enum class Kind {
        STATEMENT_FAILED, ///< a database statement failed; for command rules see Statement::error instead
        EVENT_LOG_UNREADABLE, ///< a statement on the event log failed, or broke off on its way
        REPAIRS_UNREADABLE, ///< a statement on the database of repair dates failed, or broke off on its way
        BAD_EXTRA, ///< the "extra" of a logged event is no JSON object, or its member `subject` can't be used as a value
        NO_COPY_FOLDER, ///< the databases `subject` were found, and no setting says where to copy them
        NOT_COPIED, ///< the database or archive `subject` matches a pattern of the rule set and can't be copied or unpacked
        TABLE_NOT_BUILT, ///< the derived table `subject` could not be created; no event was selected for it
        REPAIR_HISTORY_LOST, ///< the repair `subject` was recorded after Settings::AS_OF, and an earlier date is not kept
        NO_THRESHOLDS, ///< the entry `subject` of the common part has thresholds, and the device lacks an attribute
        CAUSES_LEFT_OUT, ///< the tree `subject` has more root causes than Settings::CAUSE_LIMIT, `words` in all
    };

    /// What went wrong.
    Kind kind = Kind::STATEMENT_FAILED;
    /// The event whose rules were running, and the rule; empty before the first.
    ///@{
    std::string eventId;
    std::string ruleName;
    ///@}
    /// The object of the problem, if the kind has one.
    std::string subject;
    /// The file of the problem: a database, or the rule file together with the line of the entry's element, from 1. Without
    /// such an element the line is 0.
    ///@{
    std::string file;
    int line = 0;
    ///@}
    /// The message of the database or of the reader; for CAUSES_LEFT_OUT the number of root causes.
    std::string words;
};

} // namespace Evidence

#endif
