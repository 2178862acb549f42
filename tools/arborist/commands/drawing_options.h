#ifndef ARBORIST_TOOLS_COMMANDS_DRAWING_OPTIONS_H
#define ARBORIST_TOOLS_COMMANDS_DRAWING_OPTIONS_H

#include <string>

#include "tools/arborist/bundle/bundle_session.h"
#include "tools/arborist/detection/detection.h"
#include "tools/arborist/exit_status.h"
#include "tools/arborist/library_log/library_log.h"

namespace CLI {
class App;
}

namespace command {

/// What `graph` and `report` share: a bundle and how it is run.
struct DrawingOptions {
    std::string bundle;
    DetectionOptions detection;
    LogOptions log;
    /// Seconds.
    double codeTimeout = 30;
};

/// The bundle, --now, --tz, --rules, --code-runner, --code-timeout, --log-level and --log-file.
void AddDrawingOptions(CLI::App& app, DrawingOptions& options, const std::string& bundleHelp);

/// A detection that keeps its trees.
DetectionReport RunForDrawing(const BundlePath& bundle, const DrawingOptions& options);

/// Writes a drawing to the file, or to standard output when `target` names none. Tells why it could not.
ExitStatus WriteDrawing(const BundlePath& target, const std::string& drawing);

} // namespace command

#endif
