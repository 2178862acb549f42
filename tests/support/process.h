#ifndef ARBORIST_TESTS_SUPPORT_PROCESS_H
#define ARBORIST_TESTS_SUPPORT_PROCESS_H

#ifdef _WIN32
#include <functional>
#endif
#include <map>
#include <string>
#include <vector>

/// The result of a program.
struct ProcessResult {
    /// The exit status, or 128 plus the number of the signal that ended it.
    int status = -1;
    std::string out;
    std::string err;
};

/// Environment and directory in which a program runs.
struct ProcessSetup {
    std::string input = {};
    /// Added to the environment of the test.
    std::map<std::string, std::string> environment = {};
    /// Empty for the current directory.
    std::string directory = {};
};

/// Runs a program (a path, or a name in PATH) and waits for its end. Throws std::runtime_error if it can't be run.
ProcessResult RunProcess(const std::vector<std::string>& command, const ProcessSetup& setup = {});

/// The same with standard output on a terminal of its own. Line ends are as the program wrote them.
ProcessResult RunOnTerminal(const std::vector<std::string>& command, const ProcessSetup& setup = {});

#ifdef _WIN32
/// The same on a console of its own, and `meanwhile` with the number of the process.
ProcessResult RunOnConsole(const std::vector<std::string>& command, const std::function<void(unsigned long)>& meanwhile,
    const ProcessSetup& setup = {});
#endif

#endif
