#ifndef ARBORIST_DIAGNOSIS_DETECTION_CODE_PROGRAM_H
#define ARBORIST_DIAGNOSIS_DETECTION_CODE_PROGRAM_H

#include <atomic>
#include <chrono>
#include <optional>
#include <string>

#include <sys/types.h>

namespace diagnosis {

/// How a program's run ended.
struct ProgramOutcome {
    enum class Kind { EXITED, TROUBLE };
    Kind kind = Kind::TROUBLE;
    int exitStatus = 0;
    /// Why there is no exit status: it could not be started, ran past its time or was killed.
    std::string trouble;
};

/// The absolute path of a program: a name without "/" is looked up in PATH, then in the working directory. Call it
/// before a bundle becomes the working directory: a bundle must not choose what is run.
std::string FindProgram(const std::string& name);

/// The reason why the program at `path` can't be started; nothing if it is an executable file and, for a script, its
/// interpreter is one.
std::optional<std::string> ProgramProblem(const std::string& path);

/// Runs the program at `path` without a shell and without arguments, with `input` on its standard input; its output
/// goes to standard error. It runs in a process group of its own, which is killed after `timeout`.
ProgramOutcome RunProgram(const std::string& path, const std::string& input, std::chrono::milliseconds timeout);

/// From now on `place` has the process group of the running program, 0 if none runs, so that whoever ends this process
/// can end the program, too. Null for no place.
void NoteProgramGroup(std::atomic<pid_t>* place);

} // namespace diagnosis

#endif
