#ifndef ARBORIST_TOOLS_COMMANDS_COMMAND_LINE_H
#define ARBORIST_TOOLS_COMMANDS_COMMAND_LINE_H

#include "diagnosis/exit_status.h"

namespace diagnosis::command {

/// Parses the command line, runs the command that it names and returns the exit status. Throws nothing.
ExitStatus RunCommandLine(int argc, const char* const* argv);

} // namespace diagnosis::command

#endif
