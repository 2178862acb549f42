#ifndef ARBORIST_TOOLS_COMMANDS_DRAWING_OPTIONS_H
#define ARBORIST_TOOLS_COMMANDS_DRAWING_OPTIONS_H

#include <string>

#include "diagnosis/exit_status.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/options/options.h"

namespace diagnosis::command {

/// The options that `graph` and `report` share: a bundle, how it is run, and the target of the drawing.
struct DrawingOptions {
    std::string bundle;
    RunOptions run;
    std::string file;
};

/// Adds the bundle, -o and the options of AddRunOptions.
void AddDrawingOptions(Command app, DrawingOptions& options, const std::string& bundleHelp);

/// Runs a detection that keeps its trees.
DetectionReport RunForDrawing(const BundlePath& bundle, const DrawingOptions& options);

/// Writes a text to the file `target`, or to standard output if it is empty. Prints an error if it can't.
ExitStatus WriteTextFile(const BundlePath& target, const std::string& text);

} // namespace diagnosis::command

#endif
