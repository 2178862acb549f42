#ifndef ARBORIST_DIAGNOSIS_WARNING_CODE_H
#define ARBORIST_DIAGNOSIS_WARNING_CODE_H

#include <string>

#include "diagnosis/exit_status.h"

namespace diagnosis {

/// What a warning is about; docs/command.md describes each by its word. In order of the words: lists of warnings are.
enum class WarningCode {
    APP_DATABASE_DIR_EMPTY,
    ATTRIBUTE_EMPTY,
    BAD_EXTRA,
    BAD_NUMBER,
    CAUSES_LEFT_OUT,
    CODE_RUNNER,
    DATABASE_UNAVAILABLE,
    DROPPED,
    DUPLICATE,
    EVENT_LOG_MISSING,
    EVENT_LOG_UNREADABLE,
    EVENTS_AFTER_NOW,
    NEGATIVE_VALUE,
    NO_CODE_RUNNER,
    NO_RULES,
    NO_SUCH_RULE,
    NODE_UNREADABLE,
    NOT_CAPTURED,
    NOT_SWEPT,
    REPAIR_HISTORY_LOST,
    ROWS_UNSEEN,
    RULE_SET_ERROR,
    RULES_OUTSIDE,
    SQL_FAILED,
    STOPPED,
    TRUE_WITHOUT_CAUSE,
    UNKNOWN_CODE,
    UNKNOWN_KEY,
    UNKNOWN_NAME,
    UNKNOWN_REPAIR,
    UNUSED_RULE,
    VERSION_NAME_EMPTY,
    VERSION_NAME_UNKNOWN,
    ZIP_LINK,
    ZONE_DIFFERS,
};

/// The word in JSON and text: "no_rules".
std::string CodeWord(WarningCode code);

/// The exit status of a warning under --strict: RULE_SET if the rule set is at fault, otherwise INPUT.
ExitStatus StrictStatus(WarningCode code);

} // namespace diagnosis

#endif
