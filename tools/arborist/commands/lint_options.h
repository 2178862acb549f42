#ifndef ARBORIST_TOOLS_COMMANDS_LINT_OPTIONS_H
#define ARBORIST_TOOLS_COMMANDS_LINT_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "diagnosis/lint/base/event_counts.h"
#include "diagnosis/lint/lint.h"
#include "diagnosis/problem.h"
#include "tools/arborist/options/options.h"

namespace diagnosis::command {

/// The options of `arborist lint` as the command line gives them.
struct LintCommandOptions {
    std::vector<std::string> folders;
    std::vector<std::string> tags;
    std::string prefix;
    std::vector<std::string> disable;
    std::vector<std::string> only;
    std::vector<std::string> devices;
    std::string log;
    std::string deviceRoot;
    std::string config;
    std::string failLevel;
    std::string baseline;
    std::string newBaseline;
    bool withoutBaseline = false;
    bool isFixed = false;
    bool asDiff = false;
    bool withUnsafeFixes = false;
    std::vector<std::string> tests;
    std::string format = "text";
    bool asJson = false;
    std::string stdinFile;
    bool asList = false;
    std::string explained;
};

/// A failure with the status WRONG_USE.
Failure WrongUse(FailureCode code, const std::string& message);

/// Adds all options but those that only print what checks there are.
void AddLintOptions(Command lint, LintCommandOptions& options);

/// Takes options that the command line leaves out from the configuration, and joins lists of both.
std::optional<Failure> TakeConfig(LintCommandOptions& options);

/// What the options mean for the checks. The rows of the log are counted in `counts`, to which `options` refers afterwards.
std::optional<Failure> MakeLintOptions(
    const LintCommandOptions& given, lint::EventCounts& counts, lint::LintOptions& options);

} // namespace diagnosis::command

#endif
