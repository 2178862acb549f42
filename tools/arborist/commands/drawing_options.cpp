#include "tools/arborist/commands/drawing_options.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include <CLI/CLI.hpp>

#include "tools/arborist/code_rules/code_program.h"
#include "tools/arborist/commands/output.h"
#include "tools/arborist/commands/shared_options.h"

namespace command {

void AddDrawingOptions(CLI::App& app, DrawingOptions& options, const std::string& bundleHelp)
{
    static constexpr double LONGEST_TIMEOUT = 86400;
    app.add_option("BUNDLE", options.bundle, bundleHelp)->required();
    AddOverrides(app, options.detection.overrides);
    AddRules(app, options.detection.overrides);
    app.add_option("--code-runner", options.detection.codeRunner.path, "Program that answers code rules, as for detect")
        ->type_name("PROGRAM");
    app.add_option("--code-timeout", options.codeTimeout, "Seconds that the program may take for one answer")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.001, LONGEST_TIMEOUT))
        ->capture_default_str();
    AddLogOptions(app, options.log);
}

DetectionReport RunForDrawing(const BundlePath& bundle, const DrawingOptions& options)
{
    DetectionOptions detection = options.detection;
    detection.withTrees = true;
    detection.codeRunner.timeout = std::chrono::milliseconds(static_cast<std::int64_t>(options.codeTimeout * 1000));
    if (!detection.codeRunner.path.empty()) {
        detection.codeRunner.path = FindProgram(detection.codeRunner.path);
    }
    return RunDetection(bundle, detection);
}

ExitStatus WriteDrawing(const BundlePath& target, const std::string& drawing)
{
    if (target.given.empty()) {
        PrintResult(drawing);
        return ExitStatus::SUCCESS;
    }
    std::ofstream file(target.absolute, std::ios::binary);
    file << drawing;
    file.close();
    if (file.good()) {
        return ExitStatus::SUCCESS;
    }
    PrintError(target.given + ": can't be written: " + std::strerror(errno));
    return ExitStatus::INTERNAL;
}

} // namespace command
