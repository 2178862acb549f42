#ifndef ARBORIST_TOOLS_COMMANDS_RULES_MAKING_H
#define ARBORIST_TOOLS_COMMANDS_RULES_MAKING_H

#include "diagnosis/problem.h"
#include "tools/arborist/options/options.h"

namespace diagnosis::command {

/// Adds those commands of "rules" that make files for authors: "new", "import" and "schema".
void AddRulesMakingCommands(Command rules, ExitStatus& status);

/// Prints why a command of "rules" can't be carried out, and returns its exit status.
ExitStatus FailureStatus(const Failure& failure);

} // namespace diagnosis::command

#endif
