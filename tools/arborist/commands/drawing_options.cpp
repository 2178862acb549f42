#include "tools/arborist/commands/drawing_options.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

void AddDrawingOptions(Command app, DrawingOptions& options, const std::string& bundleHelp)
{
    app.Add("BUNDLE", options.bundle, bundleHelp).Required();
    app.Add("-o,--output", options.file, "Write into this file instead of standard output").Takes("FILE");
    AddRunOptions(app, options.run);
}

DetectionReport RunForDrawing(const BundlePath& bundle, const DrawingOptions& options)
{
    DetectionOptions detection = MakeDetectionOptions(options.run);
    detection.withTrees = true;
    return RunDetection(bundle, detection);
}

ExitStatus WriteTextFile(const BundlePath& target, const std::string& text)
{
    if (target.given.empty()) {
        PrintResult(text);
        return ExitStatus::SUCCESS;
    }
    std::ofstream file(target.absolute, std::ios::binary);
    file << text;
    file.close();
    if (file.good()) {
        return ExitStatus::SUCCESS;
    }
    PrintError(target.given + ": can't be written: " + std::strerror(errno));
    return ExitStatus::INTERNAL;
}

} // namespace diagnosis::command
