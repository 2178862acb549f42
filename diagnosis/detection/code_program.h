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

/// Where a program lies, as an absolute path: a name without "/" is looked for in PATH, then here. Done once, before
/// any bundle becomes the working directory: a bundle must not choose what is run.
std::string FindProgram(const std::string& name);

/// Why the program at `path` can't be started; nothing if it is an executable file.
std::optional<std::string> ProgramProblem(const std::string& path);

/// Runs the program at `path`, without a shell and without arguments, with `input` on its standard input. What it
/// prints goes to standard error. It runs in a process group of its own, which is killed when the time is over.
ProgramOutcome RunProgram(const std::string& path, const std::string& input, std::chrono::milliseconds timeout);

/// While a program runs, `place` has its process group, else 0: whoever ends this process can end the program, too.
/// Null for nobody.
void NoteProgramGroup(std::atomic<pid_t>* place);

} // namespace diagnosis

#endif
