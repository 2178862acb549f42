#ifndef ARBORIST_DIAGNOSIS_FAILURE_CODE_H
#define ARBORIST_DIAGNOSIS_FAILURE_CODE_H

#include <optional>
#include <string_view>

#include "diagnosis/exit_status.h"

namespace diagnosis {

/// Why something could not be used; docs/command.md describes each by its word. In the order of the words.
enum class FailureCode {
    BAD_BASELINE,
    BAD_BUNDLE,
    BAD_CASE,
    BAD_CONFIG,
    BAD_DEVICE,
    BAD_JSON,
    BAD_LINE,
    BAD_LOG,
    BAD_MODEL,
    BAD_MOMENT,
    BAD_PATTERN,
    BAD_REDACTION,
    BAD_REPAIR_RECORDS,
    BAD_REQUEST,
    BAD_RESULTS,
    BAD_ZIP,
    BUNDLE_IS_ZIP,
    BUSY,
    CRASHED,
    GRAPHVIZ,
    INTERNAL,
    LOG_NOT_WRITTEN,
    MIXED_RULES,
    NO_BUNDLE,
    NO_BUNDLE_JSON,
    NO_CASE_FILE,
    NO_EVENTS,
    NO_GRAPHVIZ,
    NO_LOG,
    NO_RESULTS,
    NO_SCRATCH,
    NO_SUCH_RULE,
    NO_SUCH_TREE,
    NO_TREE,
    NOT_COPIED,
    NOT_PACKED,
    NOT_RECORDED,
    NOT_WRITTEN,
    OUT_OF_MEMORY,
    OUTSIDE_BUNDLE,
    REPAIR_NOT_RECORDED,
    RESULTS_NOT_WRITTEN,
    RULE_FILE_MALFORMED,
    RULE_FILE_MISSING,
    TIMEOUT,
    TOO_LARGE,
    UNKNOWN_CAUSE,
    UNKNOWN_CHECK,
    UNKNOWN_EVENT,
    UNKNOWN_RULE,
};

/// The word in JSON and text: "no_tree".
const char* CodeWord(FailureCode code);

/// The code of a word, or nullopt for one that a later version may have written.
std::optional<FailureCode> FailureCodeOf(std::string_view word);

/// The exit status of a command that ends with such a failure, unless the failure has another.
ExitStatus StatusOf(FailureCode code);

/// True if the reason may be gone at another try, as it lies in the machine and not in the input.
bool IsWorthARetry(FailureCode code);

} // namespace diagnosis

#endif
