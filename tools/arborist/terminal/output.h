#ifndef ARBORIST_TOOLS_TERMINAL_OUTPUT_H
#define ARBORIST_TOOLS_TERMINAL_OUTPUT_H

#include <string>
#include <vector>

#include "diagnosis/exit_status.h"
#include "diagnosis/problem.h"

namespace diagnosis::command {

/// Takes the places of those standard streams that are closed, so that no file of ours gets one of their numbers and
/// with it what is written for them. Reading and writing them go on failing.
void KeepStandardStreams();

/// Results go to standard output, and nothing else does. `text` goes out at once: readers follow a long run.
void PrintResult(const std::string& text);

/// One line on standard error: "arborist: message".
void PrintError(const std::string& message);

/// What a text result can't carry, on standard error, each with the bundle or file that it is about.
void PrintProblems(const std::string& about, const std::vector<Warning>& warnings, const Failure* failure);

/// The exit status at the end: INTERNAL, with a message, when results or the library's log could not be written.
ExitStatus FinishOutput(ExitStatus status);

} // namespace diagnosis::command

#endif
