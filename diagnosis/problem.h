#ifndef ARBORIST_DIAGNOSIS_PROBLEM_H
#define ARBORIST_DIAGNOSIS_PROBLEM_H

#include <string>
#include <utility>

#include "diagnosis/exit_status.h"
#include "diagnosis/failure_code.h"
#include "diagnosis/warning_code.h"

namespace diagnosis {

/// What is wrong, and where. All but the message are empty where nothing is known.
struct Remark {
    std::string message;
    /// The check of lint that finds this mistake of the rule set: "A303".
    std::string id = {};
    /// The place in the rule set; the line counts from 1, 0 for the file as a whole.
    std::string file = {};
    int line = 0;
    /// The rule, or the event, that it is about.
    std::string rule = {};
    std::string event = {};
};

/// A problem that makes a result less reliable but doesn't stop the work.
struct Warning : Remark {
    Warning(WarningCode warningCode, Remark remark) : Remark(std::move(remark)), code(warningCode) {}
    Warning(WarningCode warningCode, std::string text) : Warning(warningCode, Remark{std::move(text)}) {}

    WarningCode code;
};

/// The message behind its place: "rules/FaultTreeRules.xml:12: the event ...".
std::string PlacedMessage(const Remark& remark);

/// Why a bundle or a file could not be used. The message names the file and the reason, on one line.
struct Failure {
    FailureCode code;
    std::string message;
    /// Differs from that of the code where the same failure is the user's mistake: a log named by an option of lint.
    ExitStatus status = StatusOf(code);
};

} // namespace diagnosis

#endif
