#ifndef ARBORIST_TOOLS_MANUAL_EXIT_STATUSES_H
#define ARBORIST_TOOLS_MANUAL_EXIT_STATUSES_H

#include "diagnosis/exit_status.h"

namespace diagnosis::command {

struct ExitStatusMeaning {
    ExitStatus status;
    const char* meaning;
};

/// The text about each exit status in the help and the man pages.
inline constexpr ExitStatusMeaning EXIT_STATUSES[] = {
    {ExitStatus::SUCCESS, "everything was done, fault or not"},
    {ExitStatus::FAULT_FOUND, "a fault was found and --fail-on-fault was given; lint, test or rules found something"},
    {ExitStatus::WRONG_USE, "wrong use"},
    {ExitStatus::RULE_SET, "a rule set could not be used"},
    {ExitStatus::INPUT, "other input could not be used"},
    {ExitStatus::INTERNAL, "an internal error or a limit"},
    {ExitStatus::UNDECIDED, "a tree is undecided and --fail-on-undecided or --strict was given"},
};

} // namespace diagnosis::command

#endif
