#ifndef ARBORIST_TOOLS_COMMANDS_COMMAND_LINE_H
#define ARBORIST_TOOLS_COMMANDS_COMMAND_LINE_H

#include "diagnosis/exit_status.h"

namespace diagnosis::command {

/// Reads the command line, runs the one command that it names and answers the exit status. Nothing is thrown.
ExitStatus RunCommandLine(int argc, const char* const* argv);

} // namespace diagnosis::command

#endif
