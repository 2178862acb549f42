#include "arborist/frame/evidence_words.h"

#include <cstddef>

#include "arborist/frame/check.h"
#include "arborist/frame/tree_verdict.h"

namespace Evidence {

namespace {

// What is said of each reason.
struct ReasonRow {
    Reason reason;
    const char* text;
    Check check;
};

constexpr ReasonRow REASONS[] = {
    {Reason::NONE, "", Check::NONE},
    {Reason::INTERACTION_EVENT, "interaction_event", Check::NOT_SELECTED},
    {Reason::NO_EVENT_RULE, "no_event_rule", Check::NOT_CHECKED},
    {Reason::NO_RULE_NAMES, "no_rule_names", Check::NOT_CHECKED},
    {Reason::NO_SUCH_RULE, "no_such_rule", Check::NOT_CHECKED},
    {Reason::FILTERED_BLACK_PRODUCT, "filtered_black_product", Check::NOT_APPLICABLE},
    {Reason::FILTERED_PRODUCT, "filtered_product", Check::NOT_APPLICABLE},
    {Reason::FILTERED_SCENE, "filtered_scene", Check::NOT_SELECTED},
    {Reason::FILTERED_PLATFORM, "filtered_platform", Check::NOT_APPLICABLE},
    {Reason::FILTERED_DEVICE_TYPE, "filtered_device_type", Check::NOT_APPLICABLE},
    {Reason::NO_CHECKER, "no_checker", Check::RULE_UNUSABLE},
    {Reason::NO_GATE, "no_gate", Check::RULE_UNUSABLE},
    {Reason::STOPPED, "stopped", Check::NOT_CHECKED},
    {Reason::GROUP_ENDED, "group_ended", Check::NONE},
    {Reason::NO_ITEMS, "no_items", Check::RULE_UNUSABLE},
    {Reason::NO_IDS, "no_ids", Check::RULE_UNUSABLE},
    {Reason::WINDOW_ABSENT, "window_absent", Check::RULE_UNUSABLE},
    {Reason::WINDOW_EMPTY, "window_empty", Check::RULE_UNUSABLE},
    {Reason::WINDOW_SHORT, "window_short", Check::DECIDED},
    {Reason::WINDOW_REACHED, "window_reached", Check::DECIDED},
    {Reason::LOG_UNAVAILABLE, "log_unavailable", Check::DATA_MISSING},
    {Reason::LOG_DAMAGED, "log_damaged", Check::DATA_MISSING},
    {Reason::NEGATIVE_WEIGHT, "negative_weight", Check::DATA_MISSING},
    {Reason::ROWS_UNSEEN, "rows_unseen", Check::DATA_MISSING},
    {Reason::ROWS_AFTER_NOW, "rows_after_now", Check::DATA_MISSING},
    {Reason::REPAIR_UNREADABLE, "repair_unreadable", Check::DATA_MISSING},
    {Reason::NO_EVENT_ID, "no_event_id", Check::RULE_UNUSABLE},
    {Reason::NO_COMMON_PART, "no_common_part", Check::RULE_UNUSABLE},
    {Reason::NOT_SQL, "not_sql", Check::RULE_UNUSABLE},
    {Reason::NO_SUCH_DATABASE, "no_such_database", Check::RULE_UNUSABLE},
    {Reason::DATABASE_UNAVAILABLE, "database_unavailable", Check::DATA_MISSING},
    {Reason::TABLE_INCOMPLETE, "table_incomplete", Check::DATA_MISSING},
    {Reason::STATEMENT_FAILED, "statement_failed", Check::DATA_MISSING},
    {Reason::ROW_COUNT, "row_count", Check::DATA_MISSING},
    {Reason::NO_INTERVAL, "no_interval", Check::DATA_MISSING},
    {Reason::NO_THRESHOLD, "no_threshold", Check::RULE_UNUSABLE},
    {Reason::HITS_SHORT, "hits_short", Check::DECIDED},
    {Reason::HITS_REACHED, "hits_reached", Check::DECIDED},
    {Reason::NO_NODES, "no_nodes", Check::RULE_UNUSABLE},
    {Reason::NODE_UNREADABLE, "node_unreadable", Check::DATA_MISSING},
    {Reason::NO_RUNNER, "no_runner", Check::NOT_CHECKED},
    {Reason::RUNNER_ANSWERED, "runner_answered", Check::DECIDED},
    {Reason::RUNNER_FAILED, "runner_failed", Check::DATA_MISSING},
    {Reason::NO_CONDITION, "no_condition", Check::RULE_UNUSABLE},
    {Reason::UNKNOWN_CONDITION, "unknown_condition", Check::RULE_UNUSABLE},
    {Reason::NO_VALUE, "no_value", Check::DATA_MISSING},
    {Reason::CONDITION_MET, "condition_met", Check::DECIDED},
    {Reason::CONDITION_NOT_MET, "condition_not_met", Check::DECIDED},
    {Reason::BAD_FORMULA, "bad_formula", Check::RULE_UNUSABLE},
    {Reason::BAD_NUMBER, "bad_number", Check::RULE_UNUSABLE},
    {Reason::UNKNOWN_NAME, "unknown_name", Check::RULE_UNUSABLE},
    {Reason::DIVISION_BY_ZERO, "division_by_zero", Check::DATA_MISSING},
    {Reason::VERSION_UNKNOWN, "version_unknown", Check::DATA_MISSING},
};

constexpr std::size_t REASON_COUNT = sizeof REASONS / sizeof REASONS[0];

constexpr bool AreInOrder()
{
    for (std::size_t i = 0; i < REASON_COUNT; ++i) {
        if (static_cast<std::size_t>(REASONS[i].reason) != i) {
            return false;
        }
    }
    return true;
}
static_assert(AreInOrder() && REASONS[REASON_COUNT - 1].reason == LAST_REASON, "one row for each reason");

// The row of a reason; that of NONE for a number that is no reason.
const ReasonRow& RowOf(Reason reason)
{
    const auto place = static_cast<std::size_t>(reason);
    return REASONS[place < REASON_COUNT ? place : 0];
}

// The text of an enumerator whose texts are listed in its order.
template <typename Word, std::size_t COUNT>
const char* TextIn(const char* const (&texts)[COUNT], Word word)
{
    const auto place = static_cast<std::size_t>(word);
    return place < COUNT ? texts[place] : "";
}

} // namespace

const char* ReasonText(Reason reason)
{
    return RowOf(reason).text;
}

Check CheckOf(Reason reason)
{
    return RowOf(reason).check;
}

const char* CheckText(Check check)
{
    static constexpr const char* TEXTS[] = {
        "", "not_applicable", "not_selected", "decided", "not_checked", "no_data", "error"};
    return TextIn(TEXTS, check);
}

const char* TreeVerdictText(TreeVerdict::Word word)
{
    static constexpr const char* TEXTS[] = {"fault", "undecided", "no_fault", "not_applicable"};
    return TextIn(TEXTS, word);
}

const char* FamilyText(Family family)
{
    static constexpr const char* TEXTS[] = {"", "alarm", "command", "node", "code"};
    return TextIn(TEXTS, family);
}

const char* VerdictText(Verdict verdict)
{
    static constexpr const char* TEXTS[] = {"TRUE", "FALSE", "SKIP"};
    return TextIn(TEXTS, verdict);
}

const char* FloorText(Floor floor)
{
    static constexpr const char* TEXTS[] = {"period", "reset", "update", "repair"};
    return TextIn(TEXTS, floor);
}

const char* StateText(EventState state)
{
    static constexpr const char* TEXTS[] = {"TRUE", "FALSE", "INTERMEDIATE_TRUE", "UNKNOWN"};
    return TextIn(TEXTS, state);
}

const char* NoCopyText(NoCopy cause)
{
    static constexpr const char* TEXTS[] = {
        "", "folder_missing", "folder_empty", "no_match", "setting_empty", "not_copied", "not_in_archive"};
    return TextIn(TEXTS, cause);
}

const char* MeasureText(Measure measure)
{
    static constexpr const char* TEXTS[] = {"", "rows", "weights", "daily_rows", "daily_weights"};
    return TextIn(TEXTS, measure);
}

const char* TypeText(EventType type)
{
    static constexpr const char* TEXTS[] = {"basic", "intermediate", "undeveloped"};
    return TextIn(TEXTS, type);
}

const char* GateText(GateType gate)
{
    static constexpr const char* TEXTS[] = {"", "or", "and"};
    return TextIn(TEXTS, gate);
}

} // namespace Evidence
