#include <CLI/CLI.hpp>

#include "tools/arborist/code_rules/code_program.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/output.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/render/detection_json.h"
#include "tools/arborist/render/detection_text.h"

namespace command {

namespace {

struct DetectOptions {
    std::vector<std::string> bundles;
    DetectionOptions detection;
    LogOptions log;
    double codeTimeout = 30;
    bool asJson = false;
    bool failsOnFault = false;
    bool isStrict = false;
};

void Print(const DetectionReport& report, bool asJson)
{
    if (asJson) {
        PrintResult(DetectionJson(report) + "\n");
        return;
    }
    PrintProblems(report.bundle, report.warnings, report.failure ? &*report.failure : nullptr);
    PrintResult(DetectionText(report));
}

ExitStatus StatusOf(const DetectionReport& report, const DetectOptions& options)
{
    if (report.failure) {
        return report.failure->status;
    }
    ExitStatus status = options.failsOnFault && report.IsFault() ? ExitStatus::FAULT_FOUND : ExitStatus::SUCCESS;
    for (const Warning& warning : report.warnings) {
        status = options.isStrict ? MoreSerious(status, StrictStatus(warning)) : status;
    }
    return status;
}

ExitStatus Detect(DetectOptions options)
{
    if (!IsLogOpen(options.log)) {
        return ExitStatus::WRONG_USE;
    }
    CodeRunner& runner = options.detection.codeRunner;
    runner.timeout = std::chrono::milliseconds(static_cast<std::int64_t>(options.codeTimeout * 1000));
    if (!runner.path.empty()) {
        runner.path = FindProgram(runner.path);
    }
    std::vector<BundlePath> bundles;
    for (const std::string& bundle : options.bundles) {
        bundles.push_back(MakeBundlePath(bundle));
    }
    ExitStatus status = ExitStatus::SUCCESS;
    for (const BundlePath& bundle : bundles) {
        const DetectionReport report = RunDetection(bundle, options.detection);
        Print(report, options.asJson);
        status = MoreSerious(status, StatusOf(report, options));
    }
    return status;
}

} // namespace

void AddDetectCommand(CLI::App& app, ExitStatus& status)
{
    static constexpr double LONGEST_TIMEOUT = 86400;
    auto options = std::make_shared<DetectOptions>();
    CLI::App* detect = app.add_subcommand("detect", "Diagnose bundles: one detection for each, and its root causes");
    detect->add_option("BUNDLE", options->bundles, "Folders or zips with a bundle.json")->required();
    detect->add_flag("--json", options->asJson, "One JSON object a line for each bundle");
    detect->add_flag("--tree", options->detection.withTrees, "Show the whole trees with the status of each event");
    detect->add_flag("--fail-on-fault", options->failsOnFault, "Exit with 1 when a fault is found");
    detect->add_flag("--strict", options->isStrict, "Exit with 3 on a warning about a rule set, with 4 on any other");
    AddOverrides(*detect, options->detection.overrides);
    AddRules(*detect, options->detection.overrides);
    detect->add_option("--code-runner", options->detection.codeRunner.path, "Program that answers code rules: one JSON "
        "object on its standard input, exit status 0 for present, 1 for not present")
        ->type_name("PROGRAM");
    detect->add_option("--code-timeout", options->codeTimeout, "Seconds that the program may take for one answer")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.001, LONGEST_TIMEOUT))
        ->capture_default_str();
    AddLogOptions(*detect, options->log);
    detect->footer("Examples:\n  arborist detect examples/laptop\n"
                   "  arborist detect --json --fail-on-fault devices/* > results.jsonl");
    detect->callback([options, &status] { status = Detect(*options); });
}

} // namespace command
