#ifndef ARBORIST_TOOLS_COMMANDS_COMMANDS_H
#define ARBORIST_TOOLS_COMMANDS_COMMANDS_H

#include "diagnosis/exit_status.h"
#include "tools/arborist/options/options.h"

namespace diagnosis::command {

/// Each adds one command to `app`. If the command line names it, the command runs during the parse and sets `status`,
/// which must outlive the parse.
void AddDetectCommand(Command app, ExitStatus& status);
void AddExplainCommand(Command app, ExitStatus& status);
void AddQueryCommand(Command app, ExitStatus& status);
void AddRepairCommand(Command app, ExitStatus& status);
void AddReportCommand(Command app, ExitStatus& status);
void AddSweepCommand(Command app, ExitStatus& status);
void AddResultsCommand(Command app, ExitStatus& status);
void AddGraphCommand(Command app, ExitStatus& status);
void AddLintCommand(Command app, ExitStatus& status);
void AddRulesCommand(Command app, ExitStatus& status);
void AddTestCommand(Command app, ExitStatus& status);
void AddLogCommand(Command app, ExitStatus& status);
void AddCompareCommand(Command app, ExitStatus& status);
void AddBundleCommand(Command app, ExitStatus& status);
/// Adds "report" to the command "results".
void AddResultsReportCommand(Command results, ExitStatus& status);
/// Adds "help" and "completion", which show all commands of `app`, including those that are added later.
void AddHelpCommand(Command app, ExitStatus& status);

} // namespace diagnosis::command

#endif
