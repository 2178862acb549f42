#ifndef ARBORIST_TOOLS_COMMANDS_SHARED_OPTIONS_H
#define ARBORIST_TOOLS_COMMANDS_SHARED_OPTIONS_H

#include <optional>
#include <string>

#include "tools/arborist/bundle/bundle_session.h"
#include "tools/arborist/detection/detection.h"
#include "tools/arborist/library_log/library_log.h"

namespace CLI {
class App;
}

namespace command {

/// --now and --tz.
void AddOverrides(CLI::App& app, BundleOverrides& overrides);
/// --rules: another rule set than the bundle's.
void AddRules(CLI::App& app, BundleOverrides& overrides);
/// --tz alone.
void AddTimeZone(CLI::App& app, std::string& zone);
/// --log-level and --log-file.
void AddLogOptions(CLI::App& app, LogOptions& options);

/// The program of --code-runner as it was given.
struct CodeRunnerOptions {
    std::string program;
    double timeout = 30;
};

/// --code-runner and --code-timeout.
void AddCodeRunnerOptions(CLI::App& app, CodeRunnerOptions& options);
/// Looks for the program: like bundles before any bundle becomes the working directory.
CodeRunner MakeCodeRunner(const CodeRunnerOptions& options);

/// The place is worked out before any bundle becomes the working directory.
BundlePath MakeBundlePath(const std::string& given);

/// Opens the library's log; false after telling why not, which is wrong use.
bool IsLogOpen(const LogOptions& options);

} // namespace command

#endif
