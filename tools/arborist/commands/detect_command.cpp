#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <thread>

#include "diagnosis/bundle/bundle_overlay.h"
#include "diagnosis/process/interruption.h"
#include "diagnosis/results/detection_json.h"
#include "diagnosis/scratch/new_file.h"
#include "diagnosis/scratch/scratch.h"
#include "tools/arborist/batch/batch.h"
#include "tools/arborist/batch/bundle_list.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/device_names.h"
#include "tools/arborist/commands/seconds.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/render/detection_text.h"
#include "tools/arborist/render/explanation_text.h"
#include "tools/arborist/terminal/colour.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

BundleOutcome OutcomeOf(const DetectionReport& report)
{
    return report.IsFault() ? BundleOutcome::FAULT
        : report.IsUndecided() ? BundleOutcome::UNDECIDED : BundleOutcome::NO_FAULT;
}

struct DetectOptions {
    std::vector<std::string> bundles;
    RunOptions run;
    /// A file with bundles, or "-"; empty for none.
    std::string list;
    bool isListNulEnded = false;
    /// "2/8" for one shard of the list; empty for the whole.
    std::string shard;
    /// The file for the lines of a batch; empty for standard output.
    std::string output;
    BatchOptions batch;
    double timeout = 300;
    bool asJson = false;
    bool failsOnFault = false;
};

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

ExitStatus StatusOf(const DetectionReport& report, const DetectOptions& options)
{
    const ExitStatus status = StatusOf(report, options.run);
    return options.failsOnFault && report.IsFault() ? MoreSerious(status, ExitStatus::FAULT_FOUND) : status;
}

std::vector<BundlePath> BundlePaths(const std::vector<std::string>& given)
{
    std::vector<BundlePath> bundles;
    for (const std::string& bundle : given) {
        bundles.push_back(MakeBundlePath(bundle));
    }
    return bundles;
}

BatchWork MakeBatchWork(const DetectOptions& options)
{
    BatchWork work;
    work.run = [&options](const BundlePath& bundle) {
        const DetectionReport report = RunDetection(bundle, options.run.detection);
        return BundleAnswer{StatusOf(report, options), DetectionJson(report), OutcomeOf(report)};
    };
    work.fail = [](const BundlePath& bundle, const Failure& failure, double seconds) {
        DetectionReport report;
        report.bundle = bundle.given;
        report.failure = failure;
        report.seconds = seconds;
        return BundleAnswer{failure.status, DetectionJson(report)};
    };
    work.print = [](const std::string& line) {
        PrintResult(line);
        return std::cout.good();
    };
    return work;
}

ExitStatus WrongUse(const std::string& message)
{
    PrintError(message);
    return ExitStatus::WRONG_USE;
}

// Creates the file under its name only at the end, so that it is complete whenever it exists.
ExitStatus RunBatchIntoFile(const std::vector<BundlePath>& bundles, BatchWork work, const DetectOptions& options)
{
    NewFile output;
    if (const auto problem = output.Make(options.output)) {
        return WrongUse(options.output + ": " + *problem);
    }
    std::ofstream file(output.TemporaryPath(), std::ios::binary);
    work.print = [&file](const std::string& line) { return static_cast<bool>(file << line); };
    const ExitStatus status = RunBatch(bundles, work, options.batch);
    file.close();
    const auto problem = file ? output.PutInPlace() : "could not be written";
    if (problem) {
        PrintError(options.output + ": " + *problem);
        return ExitStatus::INTERNAL;
    }
    return status;
}

ExitStatus DetectBatch(DetectOptions& options)
{
    if (const auto problem = ReadBundleList(options.list, options.isListNulEnded, options.bundles)) {
        return WrongUse(*problem);
    }
    if (options.bundles.empty()) {
        return WrongUse((options.list == "-" ? "standard input" : options.list) + ": names no bundle");
    }
    options.bundles = TakeShard(options.bundles, ParseShard(options.shard).value_or(Shard{}));
    options.batch.timeout = Milliseconds(options.timeout);
    if (!options.run.detection.overrides.rules.empty()) {
        // A rule set from the command line is checked here, and those of foreign bundles in the workers, which may crash.
        options.run.detection.ruleSets->CheckFolder(options.run.detection.overrides.rules);
    }
    const std::vector<BundlePath> bundles = BundlePaths(options.bundles);
    return options.output.empty() ? RunBatch(bundles, MakeBatchWork(options), options.batch)
                                  : RunBatchIntoFile(bundles, MakeBatchWork(options), options);
}

void AddBatchOptions(Command detect, DetectOptions& options)
{
    static constexpr std::size_t MOST_JOBS = 1024;
    options.batch.jobs = std::max(1U, std::thread::hardware_concurrency());
    const Option batch = detect.Add("--batch", options.list, "Diagnose the bundles of this list, one a line; - "
        "for standard input. Prints one JSON object a line for each, whatever happens to it")
        .Takes("LIST")
        .NotEmpty();
    detect.AddFlag("-0,--null", options.isListNulEnded, "The list's entries end in NUL characters, as of find -print0")
        .Needs(batch);
    detect.Add("--jobs,-j", options.batch.jobs, "Worker processes of a batch; as many as there are processors "
        "unless given")
        .Takes("N")
        .Within(std::size_t{1}, MOST_JOBS)
        .Needs(batch);
    detect.Add("--shard", options.shard, "Work on every N-th bundle of the list, from the I-th on: 1/8 to 8/8 "
        "have each bundle once")
        .Takes("I/N")
        .Check([](const std::string& text) {
            return ParseShard(text) ? "" : "is no shard I/N with I from 1 to N: " + text;
        })
        .Needs(batch);
    detect.Add("--output,-o", options.output, "Write the lines of a batch into this file, which appears when "
        "all are in it")
        .Takes("FILE")
        .Needs(batch);
    detect.AddFlag("--ordered", options.batch.isOrdered, "Lines of a batch in the order of the list").Needs(batch);
    AddSeconds(detect, "--timeout", options.timeout, 0, "Seconds that one bundle of a batch may take; 0 for no limit")
        .Needs(batch);
}

ExitStatus Detect(DetectOptions options)
{
    if (!IsLogOpen(options.run.log)) {
        return ExitStatus::WRONG_USE;
    }
    options.run.detection = MakeDetectionOptions(options.run);
    options.run.detection.isForLine = options.asJson || !options.list.empty();
    if (!options.list.empty() || options.bundles.size() > 1) {
        options.run.detection.ruleSets = std::make_shared<RuleSetMemory>();
    }
    if (!options.list.empty()) {
        return DetectBatch(options);
    }
    const std::vector<BundlePath> bundles = BundlePaths(options.bundles);
    options.run.detection.stopsOnSignal = true;
    std::optional<ReusedScratch> reused;
    if (bundles.size() > 1) {
        reused.emplace(FoldersOfOverlay());
    }
    ExitStatus status = ExitStatus::SUCCESS;
    for (const BundlePath& bundle : bundles) {
        if (WasStoppedBySignal()) {
            break;
        }
        const DetectionReport report = RunDetection(bundle, options.run.detection);
        Print(report, options);
        status = MoreSerious(status, StatusOf(report, options));
    }
    return status;
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
