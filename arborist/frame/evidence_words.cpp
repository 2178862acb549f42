#include "arborist/frame/evidence_words.h"

const char* Evidence::ReasonText(Reason reason)
{
    switch (reason) {
    case Reason::NONE:
        return "";
    case Reason::INTERACTION_EVENT:
        return "interaction_event";
    case Reason::NO_EVENT_RULE:
        return "no_event_rule";
    case Reason::NO_RULE_NAMES:
        return "no_rule_names";
    case Reason::NO_SUCH_RULE:
        return "no_such_rule";
    case Reason::FILTERED_BLACK_PRODUCT:
        return "filtered_black_product";
    case Reason::FILTERED_PRODUCT:
        return "filtered_product";
    case Reason::FILTERED_SCENE:
        return "filtered_scene";
    case Reason::FILTERED_PLATFORM:
        return "filtered_platform";
    case Reason::FILTERED_DEVICE_TYPE:
        return "filtered_device_type";
    case Reason::NO_CHECKER:
        return "no_checker";
    case Reason::NO_GATE:
        return "no_gate";
    case Reason::STOPPED:
        return "stopped";
    case Reason::GROUP_ENDED:
        return "group_ended";
    case Reason::NO_ITEMS:
        return "no_items";
    case Reason::NO_IDS:
        return "no_ids";
    case Reason::WINDOW_ABSENT:
        return "window_absent";
    case Reason::WINDOW_EMPTY:
        return "window_empty";
    case Reason::WINDOW_SHORT:
        return "window_short";
    case Reason::WINDOW_REACHED:
        return "window_reached";
    case Reason::LOG_UNAVAILABLE:
        return "log_unavailable";
    case Reason::LOG_DAMAGED:
        return "log_damaged";
    case Reason::NEGATIVE_WEIGHT:
        return "negative_weight";
    case Reason::ROWS_UNSEEN:
        return "rows_unseen";
    case Reason::ROWS_AFTER_NOW:
        return "rows_after_now";
    case Reason::REPAIR_UNREADABLE:
        return "repair_unreadable";
    case Reason::NO_EVENT_ID:
        return "no_event_id";
    case Reason::NO_COMMON_PART:
        return "no_common_part";
    case Reason::NOT_SQL:
        return "not_sql";
    case Reason::NO_SUCH_DATABASE:
        return "no_such_database";
    case Reason::DATABASE_UNAVAILABLE:
        return "database_unavailable";
    case Reason::TABLE_INCOMPLETE:
        return "table_incomplete";
    case Reason::STATEMENT_FAILED:
        return "statement_failed";
    case Reason::ROW_COUNT:
        return "row_count";
    case Reason::NO_INTERVAL:
        return "no_interval";
    case Reason::NO_THRESHOLD:
        return "no_threshold";
    case Reason::HITS_SHORT:
        return "hits_short";
    case Reason::HITS_REACHED:
        return "hits_reached";
    case Reason::NO_NODES:
        return "no_nodes";
    case Reason::NODE_UNREADABLE:
        return "node_unreadable";
    case Reason::NO_RUNNER:
        return "no_runner";
    case Reason::RUNNER_ANSWERED:
        return "runner_answered";
    case Reason::RUNNER_FAILED:
        return "runner_failed";
    case Reason::NO_CONDITION:
        return "no_condition";
    case Reason::UNKNOWN_CONDITION:
        return "unknown_condition";
    case Reason::NO_VALUE:
        return "no_value";
    case Reason::CONDITION_MET:
        return "condition_met";
    case Reason::CONDITION_NOT_MET:
        return "condition_not_met";
    case Reason::BAD_FORMULA:
        return "bad_formula";
    case Reason::BAD_NUMBER:
        return "bad_number";
    case Reason::UNKNOWN_NAME:
        return "unknown_name";
    case Reason::DIVISION_BY_ZERO:
        return "division_by_zero";
    case Reason::VERSION_UNKNOWN:
        return "version_unknown";
    }
    return "";
}

const char* Evidence::FamilyText(Family family)
{
    switch (family) {
    case Family::NONE:
        return "";
    case Family::ALARM:
        return "alarm";
    case Family::COMMAND:
        return "command";
    case Family::NODE:
        return "node";
    case Family::CODE:
        return "code";
    }
    return "";
}

const char* Evidence::VerdictText(Verdict verdict)
{
    switch (verdict) {
    case Verdict::FIRED:
        return "TRUE";
    case Verdict::NOT_FIRED:
        return "FALSE";
    case Verdict::SKIPPED:
        return "SKIP";
    }
    return "";
}

const char* Evidence::FloorText(Floor floor)
{
    switch (floor) {
    case Floor::PERIOD:
        return "period";
    case Floor::RESET:
        return "reset";
    case Floor::UPDATE:
        return "update";
    case Floor::REPAIR:
        return "repair";
    }
    return "";
}

const char* Evidence::StateText(EventState state)
{
    switch (state) {
    case EventState::PRESENT:
        return "TRUE";
    case EventState::ABSENT:
        return "FALSE";
    case EventState::INTERMEDIATE_PRESENT:
        return "INTERMEDIATE_TRUE";
    case EventState::UNKNOWN:
        return "UNKNOWN";
    }
    return "";
}

const char* Evidence::NoCopyText(NoCopy cause)
{
    switch (cause) {
    case NoCopy::NONE:
        return "";
    case NoCopy::FOLDER_MISSING:
        return "folder_missing";
    case NoCopy::FOLDER_EMPTY:
        return "folder_empty";
    case NoCopy::NO_MATCH:
        return "no_match";
    case NoCopy::SETTING_EMPTY:
        return "setting_empty";
    case NoCopy::NOT_COPIED:
        return "not_copied";
    }
    return "";
}

const char* Evidence::MeasureText(Measure measure)
{
    switch (measure) {
    case Measure::NONE:
        return "";
    case Measure::ROWS:
        return "rows";
    case Measure::WEIGHTS:
        return "weights";
    case Measure::DAILY_ROWS:
        return "daily_rows";
    case Measure::DAILY_WEIGHTS:
        return "daily_weights";
    }
    return "";
}

const char* Evidence::TypeText(EventType type)
{
    switch (type) {
    case EventType::BASIC:
        return "basic";
    case EventType::INTERMEDIATE:
        return "intermediate";
    case EventType::UNDEVELOPED:
        return "undeveloped";
    }
    return "";
}

const char* Evidence::GateText(GateType gate)
{
    return gate == GateType::OR ? "or" : gate == GateType::AND ? "and" : "";
}
