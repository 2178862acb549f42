#include "diagnosis/warning_code.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace diagnosis {

namespace {

struct CodeRow {
    WarningCode code;
    std::string_view word;
    ExitStatus strictStatus;
};

constexpr std::array ROWS = {
    CodeRow{WarningCode::APP_DATABASE_DIR_EMPTY, "app_database_dir_empty", ExitStatus::INPUT},
    CodeRow{WarningCode::ATTRIBUTE_EMPTY, "attribute_empty", ExitStatus::INPUT},
    CodeRow{WarningCode::BAD_EXTRA, "bad_extra", ExitStatus::INPUT},
    CodeRow{WarningCode::BAD_NUMBER, "bad_number", ExitStatus::RULE_SET},
    CodeRow{WarningCode::CAUSES_LEFT_OUT, "causes_left_out", ExitStatus::INPUT},
    CodeRow{WarningCode::CODE_RUNNER, "code_runner", ExitStatus::INPUT},
    CodeRow{WarningCode::DATABASE_UNAVAILABLE, "database_unavailable", ExitStatus::INPUT},
    CodeRow{WarningCode::DROPPED, "dropped", ExitStatus::RULE_SET},
    CodeRow{WarningCode::DUPLICATE, "duplicate", ExitStatus::RULE_SET},
    CodeRow{WarningCode::EVENT_LOG_MISSING, "event_log_missing", ExitStatus::INPUT},
    CodeRow{WarningCode::EVENT_LOG_UNREADABLE, "event_log_unreadable", ExitStatus::INPUT},
    CodeRow{WarningCode::EVENTS_AFTER_NOW, "events_after_now", ExitStatus::INPUT},
    CodeRow{WarningCode::NEGATIVE_VALUE, "negative_value", ExitStatus::INPUT},
    CodeRow{WarningCode::NO_CODE_RUNNER, "no_code_runner", ExitStatus::INPUT},
    CodeRow{WarningCode::NO_RULES, "no_rules", ExitStatus::RULE_SET},
    CodeRow{WarningCode::NO_SUCH_RULE, "no_such_rule", ExitStatus::RULE_SET},
    CodeRow{WarningCode::NODE_UNREADABLE, "node_unreadable", ExitStatus::INPUT},
    CodeRow{WarningCode::NOT_CAPTURED, "not_captured", ExitStatus::INPUT},
    CodeRow{WarningCode::NOT_SWEPT, "not_swept", ExitStatus::INPUT},
    CodeRow{WarningCode::REPAIR_HISTORY_LOST, "repair_history_lost", ExitStatus::INPUT},
    CodeRow{WarningCode::ROWS_UNSEEN, "rows_unseen", ExitStatus::INPUT},
    CodeRow{WarningCode::RULE_SET_ERROR, "rule_set_error", ExitStatus::RULE_SET},
    CodeRow{WarningCode::RULES_OUTSIDE, "rules_outside", ExitStatus::INPUT},
    CodeRow{WarningCode::SQL_FAILED, "sql_failed", ExitStatus::RULE_SET},
    CodeRow{WarningCode::STOPPED, "stopped", ExitStatus::INPUT},
    CodeRow{WarningCode::TRUE_WITHOUT_CAUSE, "true_without_cause", ExitStatus::RULE_SET},
    CodeRow{WarningCode::UNKNOWN_CODE, "unknown_code", ExitStatus::INPUT},
    CodeRow{WarningCode::UNKNOWN_KEY, "unknown_key", ExitStatus::INPUT},
    CodeRow{WarningCode::UNKNOWN_NAME, "unknown_name", ExitStatus::RULE_SET},
    CodeRow{WarningCode::UNKNOWN_REPAIR, "unknown_repair", ExitStatus::INPUT},
    CodeRow{WarningCode::UNUSED_RULE, "unused_rule", ExitStatus::RULE_SET},
    CodeRow{WarningCode::VERSION_NAME_EMPTY, "version_name_empty", ExitStatus::INPUT},
    CodeRow{WarningCode::VERSION_NAME_UNKNOWN, "version_name_unknown", ExitStatus::INPUT},
    CodeRow{WarningCode::ZIP_LINK, "zip_link", ExitStatus::INPUT},
    CodeRow{WarningCode::ZONE_DIFFERS, "zone_differs", ExitStatus::INPUT},
};

constexpr bool AreInOrder()
{
    for (std::size_t row = 0; row < ROWS.size(); ++row) {
        const bool isAfterTheLast = row == 0 || ROWS[row - 1].word < ROWS[row].word;
        if (ROWS[row].code != static_cast<WarningCode>(row) || !isAfterTheLast) {
            return false;
        }
    }
    return ROWS.back().code == WarningCode::ZONE_DIFFERS;
}
static_assert(AreInOrder(), "one row for each code, in order of the words");

} // namespace

std::string CodeWord(WarningCode code)
{
    return std::string(ROWS[static_cast<std::size_t>(code)].word);
}

ExitStatus StrictStatus(WarningCode code)
{
    return ROWS[static_cast<std::size_t>(code)].strictStatus;
}

} // namespace diagnosis
