#include <thread>

#include <CLI/CLI.hpp>

#include "diagnosis/results/detection_json.h"
#include "tools/arborist/batch/batch.h"
#include "tools/arborist/batch/bundle_list.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/seconds.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/render/detection_text.h"
#include "tools/arborist/render/explanation_text.h"
#include "tools/arborist/terminal/colour.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

struct DetectOptions {
    std::vector<std::string> bundles;
    RunOptions run;
    /// A file with bundles, or "-"; empty for none.
    std::string list;
    bool isListNulEnded = false;
    BatchOptions batch;
    double timeout = 300;
    std::string colour = "auto";
    bool asJson = false;
    bool failsOnFault = false;
};

void Print(const DetectionReport& report, const DetectOptions& options)
{
    if (options.asJson) {
        PrintResult(DetectionJson(report) + "\n");
        return;
    }
    PrintProblems(report.bundle, report.warnings, report.failure ? &*report.failure : nullptr);
    PrintResult(DetectionText(report));
    if (report.explanation != nullptr) {
        PrintResult(ExplanationText(report, {}, IsColoured(options.colour).value_or(false)));
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

ExitStatus DetectBatch(DetectOptions& options)
{
    if (const auto problem = ReadBundleList(options.list, options.isListNulEnded, options.bundles)) {
        PrintError(*problem);
        return ExitStatus::WRONG_USE;
    }
    BatchWork work;
    work.run = [&options](const BundlePath& bundle) {
        const DetectionReport report = RunDetection(bundle, options.run.detection);
        return BundleAnswer{StatusOf(report, options), DetectionJson(report)};
    };
    work.fail = [](const BundlePath& bundle, const Failure& failure) {
        DetectionReport report;
        report.bundle = bundle.given;
        report.failure = failure;
        return BundleAnswer{failure.status, DetectionJson(report)};
    };
    options.batch.timeout = Milliseconds(options.timeout);
    return RunBatch(BundlePaths(options.bundles), work, options.batch);
}

void AddBatchOptions(CLI::App& detect, DetectOptions& options)
{
    static constexpr std::size_t MOST_JOBS = 1024;
    options.batch.jobs = std::max(1U, std::thread::hardware_concurrency());
    CLI::Option* batch = detect.add_option("--batch", options.list, "Diagnose the bundles of this list, one a line; - "
        "for standard input. Prints one JSON object a line for each, whatever happens to it")
        ->type_name("LIST")
        ->check([](const std::string& list) { return std::string(list.empty() ? "must not be empty" : ""); });
    detect.add_flag("-0,--null", options.isListNulEnded, "The list's entries end in NUL characters, as of find -print0")
        ->needs(batch);
    detect.add_option("--jobs,-j", options.batch.jobs, "Worker processes of a batch; as many as there are processors "
        "unless given")
        ->type_name("N")
        ->check(CLI::Range(std::size_t{1}, MOST_JOBS))
        ->needs(batch);
    detect.add_flag("--ordered", options.batch.isOrdered, "Lines of a batch in the order of the list")->needs(batch);
    AddSeconds(detect, "--timeout", options.timeout, 0, "Seconds that one bundle of a batch may take; 0 for no limit")
        ->needs(batch);
}

ExitStatus Detect(DetectOptions options)
{
    if (!IsLogOpen(options.run.log)) {
        return ExitStatus::WRONG_USE;
    }
    options.run.detection = MakeDetectionOptions(options.run);
    if (!options.list.empty()) {
        return DetectBatch(options);
    }
    const std::vector<BundlePath> bundles = BundlePaths(options.bundles);
    ExitStatus status = ExitStatus::SUCCESS;
    for (const BundlePath& bundle : bundles) {
        const DetectionReport report = RunDetection(bundle, options.run.detection);
        Print(report, options);
        status = MoreSerious(status, StatusOf(report, options));
    }
    return status;
}

} // namespace

void AddDetectCommand(CLI::App& app, ExitStatus& status)
{
    auto options = std::make_shared<DetectOptions>();
    CLI::App* detect = app.add_subcommand("detect", "Diagnose bundles: one detection for each, and its root causes");
    detect->add_option("BUNDLE", options->bundles, "Folders or zips with a bundle.json");
    detect->add_flag("--json", options->asJson, "One JSON object a line for each bundle");
    detect->add_flag("--tree", options->run.detection.withTrees, "Show the whole trees with the status of each event");
    detect->add_flag("--explain", options->run.detection.withExplanation, "Tell why as well: what 'arborist explain' tells, "
        "of the same run");
    detect->add_flag("--fail-on-fault", options->failsOnFault, "Exit with 1 when a fault is found");
    AddColour(*detect, options->colour);
    AddRunOptions(*detect, options->run);
    AddBatchOptions(*detect, *options);
    detect->footer("Examples:\n  arborist detect examples/laptop\n"
                   "  arborist detect --json --fail-on-fault devices/* > results.jsonl\n"
                   "  find devices -mindepth 1 -maxdepth 1 -print0 | arborist detect --batch - -0 --jobs 8");
    detect->callback([options, &status] {
        if (options->bundles.empty() && options->list.empty()) {
            throw CLI::RequiredError("BUNDLE");
        }
        if (!options->bundles.empty() && !options->list.empty()) {
            throw CLI::ExcludesError("--batch", "BUNDLE");
        }
        status = Detect(*options);
    });
}

} // namespace diagnosis::command
