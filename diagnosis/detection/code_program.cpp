#include "diagnosis/detection/code_program.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#if defined(__linux__)
#include <sys/prctl.h>
#endif

#include "diagnosis/process/interruption.h"
#include "diagnosis/process/process_group.h"
#include "diagnosis/process/signals.h"
#include "diagnosis/text/in_seconds.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

using Clock = std::chrono::steady_clock;

std::atomic<pid_t>* programGroup = nullptr;

void Note(pid_t group)
{
    if (programGroup != nullptr) {
        programGroup->store(group);
    }
}

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, FileCloser>;

// A file instead of a pipe: a program that never reads its input can neither block us nor raise SIGPIPE.
File FileWith(const std::string& input)
{
    File file(std::tmpfile());
    if (file == nullptr || std::fwrite(input.data(), 1, input.size(), file.get()) != input.size()
        || std::fflush(file.get()) != 0 || lseek(fileno(file.get()), 0, SEEK_SET) != 0) {
        return nullptr;
    }
    return file;
}

/// As long as it exists, a child's end can be waited for with a time limit.
class ChildSignal {
public:
    ChildSignal() : mHeldBack({SIGCHLD})
    {
        // If a process ignores the signal, its children leave no exit status.
        mActions.Handle(SIGCHLD, SIG_DFL);
    }

    void WaitUntil(Clock::time_point end) const
    {
        const auto left = std::max(Clock::duration::zero(), end - Clock::now());
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
        timespec time = {};
        time.tv_sec = seconds.count();
        time.tv_nsec = std::chrono::duration_cast<std::chrono::nanoseconds>(left - seconds).count();
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGCHLD);
        sigtimedwait(&signals, nullptr, &time);
    }
    const SignalsHeldBack& HeldBack() const { return mHeldBack; }

private:
    SignalsHeldBack mHeldBack;
    SignalActions mActions;
};

/// What a child needs to become the program: its file, its standard input, the pipe for a failure to start, and the
/// signals that it is to receive.
struct Child {
    const char* path;
    int input;
    int report;
    const SignalsHeldBack& signals;
};

// Runs between fork and exec, so it must neither lock nor allocate.
[[noreturn]] void BecomeProgram(const Child& child)
{
    setpgid(0, 0);
#if defined(__linux__)
    prctl(PR_SET_PDEATHSIG, SIGKILL); // keys of the terminal don't reach its own group: it must not outlive us
#endif
    signal(SIGPIPE, SIG_DFL);
    child.signals.LetIn();
    if (dup2(child.input, STDIN_FILENO) >= 0 && dup2(STDERR_FILENO, STDOUT_FILENO) >= 0) {
        char* const arguments[] = {const_cast<char*>(child.path), nullptr};
        execv(child.path, arguments);
    }
    const int reason = errno;
    [[maybe_unused]] const auto written = write(child.report, &reason, sizeof reason);
    _exit(127);
}

// Returns the process group of the program, or -1. A signal that ends this process also kills the group.
pid_t Start(const Child& start, Interruption& interruption)
{
    const SignalsHeldBack heldBack;
    const pid_t child = fork();
    if (child == 0) {
        BecomeProgram(start);
    }
    if (child > 0) {
        setpgid(child, child); // called by both, so that the group exists whichever runs first
        interruption.Kill(child);
    }
    return child;
}

ProgramOutcome Trouble(const std::string& trouble)
{
    ProgramOutcome outcome;
    outcome.trouble = trouble;
    return outcome;
}

ProgramOutcome CannotBeStarted(int reason)
{
    return Trouble(std::string("can't be started: ") + std::strerror(reason));
}

ProgramOutcome OutcomeOf(int status)
{
    if (WIFSIGNALED(status)) {
        return Trouble(std::string("was killed by the signal ") + strsignal(WTERMSIG(status)));
    }
    ProgramOutcome outcome;
    outcome.kind = ProgramOutcome::Kind::EXITED;
    outcome.exitStatus = WEXITSTATUS(status);
    return outcome;
}

ProgramOutcome WaitFor(pid_t child, const ChildSignal& signal, std::chrono::milliseconds timeout)
{
    const auto end = Clock::now() + timeout;
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (Clock::now() >= end) {
            KillGroup(child);
            waitpid(child, &status, 0);
            return Trouble("ran longer than " + InSeconds(timeout) + " and was killed");
        }
        signal.WaitUntil(end);
    }
    return OutcomeOf(status);
}

// The program that runs a script, from its first line; empty for any other file.
std::string InterpreterOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::string line;
    if (file.get() != '#' || file.get() != '!' || !std::getline(file, line)) {
        return "";
    }
    std::string interpreter;
    std::istringstream(line) >> interpreter;
    return interpreter;
}

} // namespace

void NoteProgramGroup(std::atomic<pid_t>* place)
{
    programGroup = place;
}

std::string FindProgram(const std::string& name)
{
    std::error_code error;
    if (name.find('/') == std::string::npos) {
        const char* path = std::getenv("PATH");
        std::istringstream folders(path == nullptr ? "" : path);
        for (std::string folder; std::getline(folders, folder, ':');) {
            const fs::path candidate = fs::absolute(fs::path(folder.empty() ? "." : folder) / name, error);
            if (access(candidate.c_str(), X_OK) == 0 && fs::is_regular_file(candidate, error)) {
                return candidate.generic_string();
            }
        }
    }
    return fs::absolute(name, error).generic_string();
}

std::optional<std::string> ProgramProblem(const std::string& path)
{
    std::error_code error;
    if (access(path.c_str(), X_OK) != 0) {
        return std::strerror(errno);
    }
    if (!fs::is_regular_file(path, error)) {
        return "is no file";
    }
    const std::string interpreter = InterpreterOf(path);
    if (!interpreter.empty() && access(interpreter.c_str(), X_OK) != 0) {
        return "its interpreter " + interpreter + ": " + std::strerror(errno);
    }
    return std::nullopt;
}

ProgramOutcome RunProgram(const std::string& path, const std::string& input, std::chrono::milliseconds timeout)
{
    const File file = FileWith(input);
    int report[2];
    if (file == nullptr || pipe2(report, O_CLOEXEC) != 0) {
        return CannotBeStarted(errno);
    }
    const ChildSignal signal;
    Interruption interruption;
    const pid_t child = Start({path.c_str(), fileno(file.get()), report[1], signal.HeldBack()}, interruption);
    const int forkReason = errno;
    close(report[1]);
    if (child < 0) {
        close(report[0]);
        return CannotBeStarted(forkReason);
    }
    Note(child);
    int reason = 0;
    ssize_t length = 0;
    do {
        length = read(report[0], &reason, sizeof reason); // returns when the exec succeeds or fails
    } while (length < 0 && errno == EINTR);
    close(report[0]);
    const ProgramOutcome outcome = WaitFor(child, signal, timeout);
    Note(0);
    return length == sizeof reason ? CannotBeStarted(reason) : outcome;
}

} // namespace diagnosis
