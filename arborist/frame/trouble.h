#ifndef ARBORIST_FRAME_TROUBLE_H
#define ARBORIST_FRAME_TROUBLE_H

#include <string>

namespace Evidence {

/// Something that makes a result less than it looks, and that the record of no rule has a place for. The log has a line
/// for most of these, too; this is for programs.
struct Trouble {
    enum class Kind {
        STATEMENT_FAILED, ///< a database refused a statement other than a command rule's own, which has a record
        EVENT_LOG_UNREADABLE, ///< a statement on the event log failed, or broke off on its way
        REPAIRS_UNREADABLE, ///< the same on the database of repair dates
        BAD_EXTRA, ///< what an event of the log says of itself is no JSON
        NO_COPY_FOLDER, ///< external databases were found, and no setting says where to copy them
        TABLE_NOT_BUILT, ///< the derived table `subject` could not be made, and no event was asked for it
        REPAIR_HISTORY_LOST, ///< the repair `subject` was recorded after Settings::AS_OF, and an earlier date is not kept
        NO_THRESHOLDS, ///< the entry `subject` of the common part has thresholds, and the device lacks an attribute
    };

    Kind kind = Kind::STATEMENT_FAILED;
    /// The event whose rules were being asked, and the rule; empty before the first.
    std::string eventId;
    std::string ruleName;
    /// What is in trouble, where the kind says so.
    std::string subject;
    /// Where in the rule set, as far as known: path, and line from 1, 0 for none.
    std::string file;
    int line = 0;
    /// What the database or the reader says.
    std::string words;
};

} // namespace Evidence

#endif
