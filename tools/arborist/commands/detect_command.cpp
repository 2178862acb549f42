#include <memory>

#include "diagnosis/results/detection_json.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/detect_batch.h"
#include "tools/arborist/commands/device_names.h"
#include "tools/arborist/commands/each_bundle.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/render/detection_text.h"
#include "tools/arborist/render/explanation_text.h"
#include "tools/arborist/terminal/colour.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

void Print(const DetectionReport& report, const DetectOptions& options)
{
    if (options.asJson) {
        PrintResult(DetectionJson(report) + "\n");
        return;
    }
    PrintProblems(report.bundle, report.warnings, report.failure);
    PrintResult(DetectionText(report, Colour(AreResultsColoured())));
    if (options.run.detection.withExplanation) {
        PrintResult(ExplanationText(report, {}, AreResultsColoured()));
    }
}

ExitStatus Detect(DetectOptions options)
{
    if (!IsLogOpen(options.run.log)) {
        return ExitStatus::WRONG_USE;
    }
    options.run.detection = MakeDetectionOptions(options.run);
    options.run.detection.isForLine = options.asJson || !options.list.empty();
    if (!options.list.empty()) {
        options.run.detection.ruleSets = std::make_shared<RuleSetMemory>();
        return DetectBatch(options);
    }
    return RunEach(options.bundles, options.run.detection, [&](const BundlePath& bundle, const DetectionOptions& detection) {
        const DetectionReport report = RunDetection(bundle, detection);
        Print(report, options);
        return StatusOf(report, options);
    });
}

} // namespace

void AddDetectCommand(Command app, ExitStatus& status)
{
    auto options = std::make_shared<DetectOptions>();
    Command detect = app.AddCommand("detect", "Diagnose bundles: one detection for each, and its root causes");
    detect.Add("BUNDLE", options->bundles, "Folders or zips with a bundle.json");
    detect.AddFlag("--json", options->asJson, "One JSON object a line for each bundle");
    detect.AddFlag("--tree", options->run.detection.withTrees, "Show the whole trees with the status of each event");
    detect.AddFlag("--explain", options->run.detection.withExplanation, "Tell why as well: what 'arborist explain' tells, "
        "of the same run");
    detect.AddFlag("--fail-on-fault", options->failsOnFault, "Exit with 1 when a fault is found");
    AddDeviceNames(detect, options->run.detection.deviceNames);
    AddRunOptions(detect, options->run);
    AddBatchOptions(detect, *options);
    detect.Footer("Examples:\n  arborist detect examples/laptop\n"
                   "  arborist detect --json --fail-on-fault devices/* > results.jsonl\n"
                   "  find devices -mindepth 1 -maxdepth 1 -print0 | arborist detect --batch - -0 --jobs 8");
    detect.OnCall([options, &status] {
        if (options->bundles.empty() && options->list.empty()) {
            FailMissing("BUNDLE");
        }
        if (!options->bundles.empty() && !options->list.empty()) {
            FailExcluded("--batch", "BUNDLE");
        }
        if (options->run.detection.overrides.isLive && !options->list.empty()) {
            FailExcluded("--batch", "--live");
        }
        status = Detect(*options);
    });
}

} // namespace diagnosis::command
