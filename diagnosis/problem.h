#ifndef ARBORIST_DIAGNOSIS_PROBLEM_H
#define ARBORIST_DIAGNOSIS_PROBLEM_H

#include <string>

#include "diagnosis/exit_status.h"

namespace diagnosis {

/// A problem that makes a result less reliable but doesn't stop the work. `code` is one of the codes of
/// docs/command.md.
struct Warning {
    std::string code;
    std::string message;
};

/// Why a bundle or a file could not be used. The message names the file and the reason, on one line.
struct Failure {
    std::string code;
    std::string message;
    ExitStatus status = ExitStatus::INPUT;
};

} // namespace diagnosis

#endif
