#ifndef ARBORIST_TOOLS_COMMANDS_SHARED_OPTIONS_H
#define ARBORIST_TOOLS_COMMANDS_SHARED_OPTIONS_H

#include <optional>
#include <string>

#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/detection/detection.h"
#include "tools/arborist/options/options.h"
#include "tools/arborist/terminal/library_log.h"

namespace diagnosis::command {

/// --now, --tz and --live.
void AddOverrides(Command app, BundleOverrides& overrides);
/// --live alone.
void AddLive(Command app, BundleOverrides& overrides);
/// --rules: another rule set than the bundle's.
void AddRules(Command app, BundleOverrides& overrides);
/// --tz alone.
void AddTimeZone(Command app, std::string& zone);
/// --log-level and --log-file.
void AddLogOptions(Command app, LogOptions& options);

/// The program of --code-runner as it was given.
struct CodeRunnerOptions {
    std::string program;
    double timeout = 30;
};

/// --code-runner and --code-timeout.
void AddCodeRunnerOptions(Command app, CodeRunnerOptions& options);
/// Looks for the program: like bundles before any bundle becomes the working directory.
CodeRunner MakeCodeRunner(const CodeRunnerOptions& options);

/// What all commands that run detections take.
struct RunOptions {
    DetectionOptions detection;
    CodeRunnerOptions codeRunner;
    LogOptions log;
    bool isStrict = false;
    bool failsOnUndecided = false;
};

/// --strict, --fail-on-undecided, --now, --tz, --rules, --code-runner, --code-timeout, --time-limit, --log-level and
/// --log-file.
void AddRunOptions(Command app, RunOptions& options);
/// How the detections are to be run, with the program of --code-runner found.
DetectionOptions MakeDetectionOptions(const RunOptions& options);
/// What a detection makes the process answer: its failure, or under --strict its warnings and checks.
ExitStatus StatusOf(const DetectionReport& report, const RunOptions& options);

/// --color, which every command has.
void AddColour(Command app);

/// The place is worked out before any bundle becomes the working directory.
BundlePath MakeBundlePath(const std::string& given);

/// Opens the library's log. False, with a message, if it can't be opened, which is wrong use of the command.
bool IsLogOpen(const LogOptions& options);

} // namespace diagnosis::command

#endif
