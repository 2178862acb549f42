#ifndef ARBORIST_FRAME_EVIDENCE_WORDS_H
#define ARBORIST_FRAME_EVIDENCE_WORDS_H

#include "arborist/arborist_export.h"

/// The words of evidence, with their texts as explanations print them. No enumerator is a word that the headers of an
/// operating system define as a macro.
namespace Evidence {

/// The family of a rule, which is also the kind of its checker.
enum class Family { NONE, ALARM, COMMAND, NODE, CODE };

/// The answer of a rule. A skipped rule was not run and counts as false.
enum class Verdict { FIRED, NOT_FIRED, SKIPPED };

/// Why a rule, a window or a condition ended as it did.
enum class Reason {
    NONE,
    // Before a checker is asked.
    INTERACTION_EVENT, ///< the event is left to the host (detect mode "2")
    NO_EVENT_RULE, ///< no entry in the event rules: the event is never evaluated, and OnEventDecided isn't called
    NO_RULE_NAMES, ///< the event's entry names no rule
    NO_SUCH_RULE, ///< no rule of the rule set has this name
    FILTERED_BLACK_PRODUCT, ///< the product is on the rule's black list
    FILTERED_PRODUCT, ///< the product is not among the rule's
    FILTERED_SCENE, ///< the scene is not among the rule's, or the rule names none
    FILTERED_PLATFORM, ///< the platform is not among the rule's
    FILTERED_DEVICE_TYPE, ///< the device type is not among the rule's
    NO_CHECKER, ///< no checker for this class of rule
    NO_GATE, ///< an intermediate event has no gate that could be read: the events that should lie below are not known
    STOPPED, ///< the detection was stopped before the rule was asked
    GROUP_ENDED, ///< an earlier rule of the same "multipleRule" was false
    // Alarm rules.
    NO_ITEMS, ///< the rule has no "alarmId"
    NO_IDS, ///< an item's id range is empty, which ends the rule
    WINDOW_ABSENT, ///< the item has no window of this kind
    WINDOW_EMPTY, ///< period and threshold are both 0
    WINDOW_SHORT, ///< less than the threshold was found
    WINDOW_REACHED, ///< the threshold was reached
    LOG_UNAVAILABLE, ///< the event log is missing or can't be opened
    LOG_DAMAGED, ///< reading the event log failed before its end: rows may be missing
    NEGATIVE_WEIGHT, ///< a negative weight was counted: the sum is no measure of what happened
    ROWS_UNSEEN, ///< rows of the log lack their time or version, so that no rule finds them
    ROWS_AFTER_NOW, ///< the threshold was reached only with rows later than now
    REPAIR_UNREADABLE, ///< a repair date or id could not be read: rows from before a repair may count
    // Command rules.
    NO_EVENT_ID, ///< the event has the empty id
    NO_COMMON_PART, ///< the named common part entry doesn't exist
    NOT_SQL, ///< the analysis method is not "SQL"
    NO_SUCH_DATABASE, ///< the referenced "defDBTable" doesn't exist
    DATABASE_UNAVAILABLE, ///< a database can't be opened or copied, or there is none
    TABLE_INCOMPLETE, ///< a table was not built, or was built from a log that is not whole, or one of its rows lacks a value
    STATEMENT_FAILED, ///< the database refused the statement, or broke it off
    ROW_COUNT, ///< the statement gave no row, or more than one
    NO_INTERVAL, ///< values can't be scaled: the two time columns are missing or give no interval
    NO_THRESHOLD, ///< the value to compare with is empty, in the rule or in the common part
    HITS_SHORT, ///< too few of the referenced databases hit
    HITS_REACHED, ///< enough of the referenced databases hit
    // Node rules.
    NO_NODES, ///< the rule names no node file or no parameter
    NODE_UNREADABLE, ///< a node file is missing, unreadable or over the limit
    // Code rules.
    NO_RUNNER, ///< the host gave no runner
    RUNNER_ANSWERED, ///< the host's runner decided
    RUNNER_FAILED, ///< the host's runner has no answer
    // Conditions, of any family.
    NO_CONDITION, ///< no condition of a known kind
    UNKNOWN_CONDITION, ///< a condition of an unknown kind
    NO_VALUE, ///< a value to compare is missing or empty, or the "extra" of a row can't be used
    CONDITION_MET, ///< a condition held
    CONDITION_NOT_MET, ///< no condition held
    BAD_FORMULA, ///< a formula of blanks, with an operator that lacks a value, or with an unmatched parenthesis
    BAD_NUMBER, ///< a text that is not a number was read as 0
    UNKNOWN_NAME, ///< an unknown name in a formula, an unknown comparison, or an unknown type
    DIVISION_BY_ZERO, ///< a formula divided by 0, which gives 0
    VERSION_UNKNOWN, ///< rows of a version were passed over, and the version of the device is not known
};

/// The last reason.
constexpr Reason LAST_REASON = Reason::VERSION_UNKNOWN;

/// What determined the moment from which a rule looks at the log.
enum class Floor { PERIOD, RESET, UPDATE, REPAIR };

/// The status of an event. PRESENT means that the fault is there.
enum class EventState {
    PRESENT,
    ABSENT,
    INTERMEDIATE_PRESENT, ///< counts as PRESENT wherever a status is tested; nothing sets it today
    UNKNOWN,
};

/// The unit of an alarm window's count for one id: number of rows or sum of their weights, over the whole period or on
/// the day with the most.
enum class Measure { NONE, ROWS, WEIGHTS, DAILY_ROWS, DAILY_WEIGHTS };

/// Why there is no copy of an external database for a rule to query.
enum class NoCopy {
    NONE, ///< there are copies, or no search was made
    FOLDER_MISSING, ///< the rule set names no folder to search, or none of them exists
    FOLDER_EMPTY, ///< no file lies below the folder
    NO_MATCH, ///< there are files, and the pattern matches none of them
    SETTING_EMPTY, ///< files match, and the setting for the folder of the copies is empty
    NOT_COPIED, ///< files match, and one of them could not be copied or unpacked
    NOT_IN_ARCHIVE, ///< only archives match, and they contain no file that matches
};

/// The kind of an event of a tree.
enum class EventType { BASIC, INTERMEDIATE, UNDEVELOPED };
/// The gate below an event; NONE for a leaf.
enum class GateType { NONE, OR, AND };
/// The file with the trees or the file with the rules.
enum class RuleSetFileType { TREES, RULES };
/// The result of reading a file.
enum class RuleSetFileState { LOADED, MISSING, MALFORMED };

/// "filtered_scene"; empty for NONE and for a number that is no reason.
ARBORIST_EXPORT const char* ReasonText(Reason reason);
/// "alarm", "command", "node", "code"; empty for NONE.
ARBORIST_EXPORT const char* FamilyText(Family family);
/// "TRUE", "FALSE" or "SKIP".
ARBORIST_EXPORT const char* VerdictText(Verdict verdict);
/// "period", "reset", "update" or "repair".
ARBORIST_EXPORT const char* FloorText(Floor floor);
/// "rows", "weights", "daily_rows", "daily_weights"; empty for NONE.
ARBORIST_EXPORT const char* MeasureText(Measure measure);
/// "folder_missing", "folder_empty", "no_match", "setting_empty", "not_copied", "not_in_archive"; empty for NONE.
ARBORIST_EXPORT const char* NoCopyText(NoCopy cause);
/// "TRUE", "FALSE", "INTERMEDIATE_TRUE" or "UNKNOWN".
ARBORIST_EXPORT const char* StateText(EventState state);

/// "basic", "intermediate" or "undeveloped".
ARBORIST_EXPORT const char* TypeText(EventType type);
/// "or", "and"; empty for NONE.
ARBORIST_EXPORT const char* GateText(GateType gate);

/// Returns true if a status counts as a present fault.
constexpr bool IsInError(EventState state)
{
    return state == EventState::PRESENT || state == EventState::INTERMEDIATE_PRESENT;
}

} // namespace Evidence

#endif
