#ifndef ARBORIST_TOOLS_COMMANDS_SHARED_OPTIONS_H
#define ARBORIST_TOOLS_COMMANDS_SHARED_OPTIONS_H

#include <optional>
#include <string>

#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/detection/detection.h"
#include "tools/arborist/options/options.h"
#include "tools/arborist/terminal/library_log.h"

namespace diagnosis::command {

/// --now, --as-of and --tz.
void AddMoments(Command app, BundleOverrides& overrides);
/// The same and --live.
void AddOverrides(Command app, BundleOverrides& overrides);
/// --live alone.
void AddLive(Command app, BundleOverrides& overrides);
/// --rules: another rule set than the bundle's.
void AddRules(Command app, BundleOverrides& overrides);
/// An option for a moment or a date.
void AddMomentOption(Command app, const std::string& name, std::string& moment, const std::string& description);
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
/// The exit status for a report: that of its failure; with --strict also of its warnings and checks, with
/// --fail-on-undecided also of undecided trees.
ExitStatus StatusOf(const DetectionReport& report, const RunOptions& options);

/// --color, which every command has.
void AddColour(Command app);

/// Opens the target of the library's log. On failure prints the reason and returns false; exit with WRONG_USE.
bool IsLogOpen(const LogOptions& options);

} // namespace diagnosis::command

#endif
