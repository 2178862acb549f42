#include "diagnosis/failure_code.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace diagnosis {

namespace {

struct CodeRow {
    FailureCode code;
    const char* word;
    ExitStatus status;
    bool isWorthARetry = false;
};

constexpr bool MAY_PASS = true;

constexpr std::array ROWS = {
    CodeRow{FailureCode::BAD_BASELINE, "bad_baseline", ExitStatus::WRONG_USE},
    CodeRow{FailureCode::BAD_BUNDLE, "bad_bundle", ExitStatus::INPUT},
    CodeRow{FailureCode::BAD_CASE, "bad_case", ExitStatus::INPUT},
    CodeRow{FailureCode::BAD_CONFIG, "bad_config", ExitStatus::WRONG_USE},
    CodeRow{FailureCode::BAD_DEVICE, "bad_device", ExitStatus::WRONG_USE},
    CodeRow{FailureCode::BAD_JSON, "bad_json", ExitStatus::INPUT},
    CodeRow{FailureCode::BAD_LINE, "bad_line", ExitStatus::INPUT},
    CodeRow{FailureCode::BAD_LOG, "bad_log", ExitStatus::INPUT},
    CodeRow{FailureCode::BAD_MODEL, "bad_model", ExitStatus::INPUT},
    CodeRow{FailureCode::BAD_MOMENT, "bad_moment", ExitStatus::WRONG_USE},
    CodeRow{FailureCode::BAD_PATTERN, "bad_pattern", ExitStatus::RULE_SET},
    CodeRow{FailureCode::BAD_REDACTION, "bad_redaction", ExitStatus::WRONG_USE},
    CodeRow{FailureCode::BAD_REPAIR_RECORDS, "bad_repair_records", ExitStatus::INPUT},
    CodeRow{FailureCode::BAD_REQUEST, "bad_request", ExitStatus::WRONG_USE},
    CodeRow{FailureCode::BAD_RESULTS, "bad_results", ExitStatus::INPUT},
    CodeRow{FailureCode::BAD_ZIP, "bad_zip", ExitStatus::INPUT},
    CodeRow{FailureCode::BUNDLE_IS_ZIP, "bundle_is_zip", ExitStatus::INPUT},
    CodeRow{FailureCode::BUSY, "busy", ExitStatus::WRONG_USE},
    CodeRow{FailureCode::CRASHED, "crashed", ExitStatus::INTERNAL, MAY_PASS},
    CodeRow{FailureCode::GRAPHVIZ, "graphviz", ExitStatus::INTERNAL},
    CodeRow{FailureCode::INTERNAL, "internal", ExitStatus::INTERNAL},
    CodeRow{FailureCode::LOG_NOT_WRITTEN, "log_not_written", ExitStatus::INPUT},
    CodeRow{FailureCode::MIXED_RULES, "mixed_rules", ExitStatus::INPUT},
    CodeRow{FailureCode::NO_BUNDLE, "no_bundle", ExitStatus::INPUT},
    CodeRow{FailureCode::NO_BUNDLE_JSON, "no_bundle_json", ExitStatus::INPUT},
    CodeRow{FailureCode::NO_CASE_FILE, "no_case_file", ExitStatus::INPUT},
    CodeRow{FailureCode::NO_EVENTS, "no_events", ExitStatus::INPUT},
    CodeRow{FailureCode::NO_GRAPHVIZ, "no_graphviz", ExitStatus::WRONG_USE},
    CodeRow{FailureCode::NO_LOG, "no_log", ExitStatus::INPUT},
    CodeRow{FailureCode::NO_RESULTS, "no_results", ExitStatus::INPUT},
    CodeRow{FailureCode::NO_SCRATCH, "no_scratch", ExitStatus::INTERNAL, MAY_PASS},
    CodeRow{FailureCode::NO_SUCH_RULE, "no_such_rule", ExitStatus::WRONG_USE},
    CodeRow{FailureCode::NO_SUCH_TREE, "no_such_tree", ExitStatus::WRONG_USE},
    CodeRow{FailureCode::NO_TREE, "no_tree", ExitStatus::RULE_SET},
    CodeRow{FailureCode::NOT_COPIED, "not_copied", ExitStatus::INPUT, MAY_PASS},
    CodeRow{FailureCode::NOT_PACKED, "not_packed", ExitStatus::INPUT},
    CodeRow{FailureCode::NOT_RECORDED, "not_recorded", ExitStatus::INPUT},
    CodeRow{FailureCode::NOT_WRITTEN, "not_written", ExitStatus::WRONG_USE},
    CodeRow{FailureCode::OUT_OF_MEMORY, "out_of_memory", ExitStatus::INTERNAL, MAY_PASS},
    CodeRow{FailureCode::OUTSIDE_BUNDLE, "outside_bundle", ExitStatus::INPUT},
    CodeRow{FailureCode::REPAIR_NOT_RECORDED, "repair_not_recorded", ExitStatus::INPUT},
    CodeRow{FailureCode::RESULTS_NOT_WRITTEN, "results_not_written", ExitStatus::INTERNAL},
    CodeRow{FailureCode::RULE_FILE_MALFORMED, "rule_file_malformed", ExitStatus::RULE_SET},
    CodeRow{FailureCode::RULE_FILE_MISSING, "rule_file_missing", ExitStatus::RULE_SET},
    CodeRow{FailureCode::TIMEOUT, "timeout", ExitStatus::INTERNAL, MAY_PASS},
    CodeRow{FailureCode::TOO_LARGE, "too_large", ExitStatus::INTERNAL},
    CodeRow{FailureCode::UNKNOWN_CAUSE, "unknown_cause", ExitStatus::WRONG_USE},
    CodeRow{FailureCode::UNKNOWN_CHECK, "unknown_check", ExitStatus::WRONG_USE},
    CodeRow{FailureCode::UNKNOWN_EVENT, "unknown_event", ExitStatus::WRONG_USE},
    CodeRow{FailureCode::UNKNOWN_RULE, "unknown_rule", ExitStatus::WRONG_USE},
};

constexpr bool AreInOrder()
{
    for (std::size_t row = 0; row < ROWS.size(); ++row) {
        const bool isAfterTheLast = row == 0 || std::string_view(ROWS[row - 1].word) < ROWS[row].word;
        if (ROWS[row].code != static_cast<FailureCode>(row) || !isAfterTheLast) {
            return false;
        }
    }
    return ROWS.back().code == FailureCode::UNKNOWN_RULE;
}
static_assert(AreInOrder(), "one row for each code, in order of the words");

const CodeRow& RowOf(FailureCode code)
{
    return ROWS[static_cast<std::size_t>(code)];
}

} // namespace

const char* CodeWord(FailureCode code)
{
    return RowOf(code).word;
}

std::optional<FailureCode> FailureCodeOf(std::string_view word)
{
    const auto row = std::find_if(ROWS.begin(), ROWS.end(), [word](const CodeRow& each) { return each.word == word; });
    return row == ROWS.end() ? std::nullopt : std::optional(row->code);
}

ExitStatus StatusOf(FailureCode code)
{
    return RowOf(code).status;
}

bool IsWorthARetry(FailureCode code)
{
    return RowOf(code).isWorthARetry;
}

} // namespace diagnosis
