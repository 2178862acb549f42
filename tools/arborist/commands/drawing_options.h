#ifndef ARBORIST_TOOLS_COMMANDS_DRAWING_OPTIONS_H
#define ARBORIST_TOOLS_COMMANDS_DRAWING_OPTIONS_H

#include <string>

#include "diagnosis/exit_status.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/options/options.h"

namespace diagnosis::command {

/// What `graph` and `report` share: a bundle, how it is run, and where the drawing goes.
struct DrawingOptions {
    std::string bundle;
    RunOptions run;
    std::string file;
};

/// The bundle, -o and what AddRunOptions adds.
void AddDrawingOptions(Command app, DrawingOptions& options, const std::string& bundleHelp);

/// A detection that keeps its trees.
DetectionReport RunForDrawing(const BundlePath& bundle, const DrawingOptions& options);

/// Writes a drawing to the file, or to standard output when `target` names none. Tells why it could not.
ExitStatus WriteDrawing(const BundlePath& target, const std::string& drawing);

} // namespace diagnosis::command

#endif
