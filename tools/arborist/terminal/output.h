#ifndef ARBORIST_TOOLS_TERMINAL_OUTPUT_H
#define ARBORIST_TOOLS_TERMINAL_OUTPUT_H

#include <optional>
#include <string>
#include <vector>

#include "diagnosis/exit_status.h"
#include "diagnosis/problem.h"

namespace diagnosis::command {

/// Prints a result to standard output, where nothing else goes. Flushes, so that readers can follow a long run.
void PrintResult(const std::string& text);

/// Prints one line on standard error: "arborist: message".
void PrintError(const std::string& message);

/// Prints warnings and failure on standard error, as text results don't contain them; each with its bundle or file.
void PrintProblems(const std::string& about, const std::vector<Warning>& warnings, const std::optional<Failure>& failure);

/// Returns the final exit status: INTERNAL, with a message, if results or the library's log could not be written.
ExitStatus FinishOutput(ExitStatus status);

} // namespace diagnosis::command

#endif
