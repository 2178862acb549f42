// Runs two commands alternately and prints the median milliseconds of both and the peak kilobytes of the first. usage:
// process_runner RUNS COMMAND... -- COMMAND...
//
// A small program of its own, since a process's peak begins with the size of the one that started it.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "bench/compare.h"

namespace {

using Command = std::vector<char*>;

// Drops the output of the command. Returns its peak in kilobytes; negative if it failed.
long Run(const Command& command)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    const int error = posix_spawnp(&process, command[0], &actions, nullptr, command.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    rusage usage{};
    if (error != 0 || wait4(process, &status, 0, &usage) != process) {
        return -1;
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? usage.ru_maxrss : -1;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    Command commands[2];
    for (int argument = 2, number = 0; argument < argumentCount; ++argument) {
        const bool isSeparator = number == 0 && std::string(arguments[argument]) == "--";
        number += isSeparator ? 1 : 0;
        if (!isSeparator) {
            commands[number].push_back(arguments[argument]);
        }
    }
    if (commands[0].empty() || commands[1].empty()) {
        std::fputs("usage: process_runner RUNS COMMAND... -- COMMAND...\n", stderr);
        return 2;
    }
    commands[0].push_back(nullptr);
    commands[1].push_back(nullptr);
    long peak = 0;
    bool hasFailed = false;
    const bench::Pair times = bench::Alternate(
        std::atoi(arguments[1]),
        [&] {
            const long kilobytes = Run(commands[0]);
            peak = std::max(peak, kilobytes);
            hasFailed = hasFailed || kilobytes < 0;
        },
        [&] { hasFailed = Run(commands[1]) < 0 || hasFailed; });
    if (hasFailed) {
        std::fputs("process_runner: a command failed\n", stderr);
        return 1;
    }
    std::printf("%.6f %.6f %ld\n", times.ours, times.baseline, peak);
    return 0;
}
