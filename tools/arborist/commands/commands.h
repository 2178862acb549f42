#ifndef ARBORIST_TOOLS_COMMANDS_COMMANDS_H
#define ARBORIST_TOOLS_COMMANDS_COMMANDS_H

#include "diagnosis/exit_status.h"

namespace CLI {
class App;
}

namespace diagnosis::command {

/// Each adds one command to `app`. When the command line names it, it runs while the line is parsed and leaves its
/// answer in `status`, which must outlive the parse.
void AddDetectCommand(CLI::App& app, ExitStatus& status);
void AddExplainCommand(CLI::App& app, ExitStatus& status);
void AddQueryCommand(CLI::App& app, ExitStatus& status);
void AddRepairCommand(CLI::App& app, ExitStatus& status);
void AddReportCommand(CLI::App& app, ExitStatus& status);
void AddGraphCommand(CLI::App& app, ExitStatus& status);
void AddLintCommand(CLI::App& app, ExitStatus& status);
void AddLogCommand(CLI::App& app, ExitStatus& status);
void AddBundleCommand(CLI::App& app, ExitStatus& status);
/// "help" and "completion", which show all commands of `app`, those that are added later, too.
void AddHelpCommand(CLI::App& app, ExitStatus& status);

} // namespace diagnosis::command

#endif
