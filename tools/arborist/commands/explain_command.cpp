#include <CLI/CLI.hpp>

#include "diagnosis/analysis/explanation_view.h"
#include "diagnosis/results/explanation_json.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/render/explanation_text.h"
#include "tools/arborist/terminal/colour.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

struct ExplainOptions {
    std::vector<std::string> bundles;
    RunOptions run;
    ExplanationView view;
    bool asJson = false;
};

void Narrow(DetectionReport& report, const ExplanationView& view)
{
    if (!report.failure && report.explanation != nullptr) {
        report.failure = UnknownWord(*report.explanation, view);
    }
    if (report.failure) {
        report.explanation.reset();
    }
}

ExitStatus Explain(const ExplainOptions& options)
{
    if (!IsLogOpen(options.run.log)) {
        return ExitStatus::WRONG_USE;
    }
    DetectionOptions detection = MakeDetectionOptions(options.run);
    detection.withExplanation = true;
    std::vector<BundlePath> bundles;
    for (const std::string& bundle : options.bundles) {
        bundles.push_back(MakeBundlePath(bundle));
    }
    ExitStatus status = ExitStatus::SUCCESS;
    for (const BundlePath& bundle : bundles) {
        DetectionReport report = RunDetection(bundle, detection);
        Narrow(report, options.view);
        if (options.asJson) {
            PrintResult(ExplanationJson(report, options.view) + "\n");
        } else {
            PrintProblems(report.bundle, report.warnings, report.failure ? &*report.failure : nullptr);
            PrintResult(ExplanationText(report, options.view, AreResultsColoured()));
        }
        status = MoreSerious(status, StatusOf(report, options.run));
    }
    return status;
}

void AddViewOptions(CLI::App& explain, ExplanationView& view)
{
    static constexpr std::size_t MOST_MISSING = 100;
    static constexpr std::size_t MOST_SHOWN = 100000;
    explain.add_option("--event", view.event, "Only events with this id, and root causes on whose way they stand")
        ->type_name("ID");
    explain.add_option("--rule", view.rule, "Only this rule, and the events that ask it")->type_name("NAME");
    explain.add_option("--cause", view.cause, "Only root causes with this event in their cut set")->type_name("ID");
    explain.add_option("--near-misses", view.nearMisses, "What cut sets lack that are up to N events short of a root cause")
        ->type_name("N")
        ->check(CLI::Range(std::size_t{1}, MOST_MISSING));
    explain.add_option("--limit", view.limit, "Near misses shown of each tree")
        ->type_name("COUNT")
        ->check(CLI::Range(std::size_t{1}, MOST_SHOWN))
        ->capture_default_str();
    explain.add_flag("--minimal", view.minimal, "The minimal cut sets in evidence, the events by their share of them, "
        "and a smallest set of repairs");
    explain.add_flag("--brief", view.brief, "One line a distinct root cause");
}

} // namespace

void AddExplainCommand(CLI::App& app, ExitStatus& status)
{
    auto options = std::make_shared<ExplainOptions>();
    CLI::App* explain = app.add_subcommand("explain", "Diagnose bundles and tell why: every rule with all that it "
        "looked at, every root cause with its evidence");
    explain->add_option("BUNDLE", options->bundles, "Folders or zips with a bundle.json")->required();
    explain->add_flag("--json", options->asJson, "One JSON object a line for each bundle");
    AddViewOptions(*explain, options->view);
    AddRunOptions(*explain, options->run);
    explain->footer("Examples:\n  arborist explain examples/laptop\n"
                    "  arborist explain --event BATTERY_WORN examples/laptop\n"
                    "  arborist explain --near-misses 1 --minimal --json devices/* > explained.jsonl");
    explain->callback([options, &status] { status = Explain(*options); });
}

} // namespace diagnosis::command
