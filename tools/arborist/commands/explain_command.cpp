#include <memory>

#include "diagnosis/analysis/explanation_view.h"
#include "diagnosis/results/explained_report.h"
#include "diagnosis/results/explanation_json.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/each_bundle.h"
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

ExitStatus Explain(const ExplainOptions& options)
{
    if (!IsLogOpen(options.run.log)) {
        return ExitStatus::WRONG_USE;
    }
    return RunEach(options.bundles, MakeDetectionOptions(options.run),
        [&](const BundlePath& bundle, const DetectionOptions& detection) {
            const DetectionReport report = RunExplanation(bundle, detection, options.view);
            if (options.asJson) {
                PrintResult(ExplanationJson(report, options.view) + "\n");
            } else {
                PrintProblems(report.bundle, report.warnings, report.failure);
                PrintResult(ExplanationText(report, options.view, AreResultsColoured()));
            }
            return StatusOf(report, options.run);
        });
}

void AddViewOptions(Command explain, ExplanationView& view)
{
    static constexpr std::size_t MOST_MISSING = 100;
    static constexpr std::size_t MOST_SHOWN = 100000;
    static constexpr std::size_t MOST_NEXT = 100;
    explain.Add("--event", view.event, "Only events with this id, and root causes on whose way they stand")
        .Takes("ID");
    explain.Add("--rule", view.rule, "Only this rule, and the events that ask it").Takes("NAME");
    explain.Add("--cause", view.cause, "Only root causes with this event in their cut set").Takes("ID");
    explain.Add("--near-misses", view.nearMisses, "What cut sets lack that are up to N events short of a root cause")
        .Takes("N")
        .Within(std::size_t{1}, MOST_MISSING);
    explain.Add("--limit", view.limit, "Near misses shown of each tree")
        .Takes("COUNT")
        .Within(std::size_t{1}, MOST_SHOWN)
        .ShowDefault();
    explain.AddFlag("--minimal", view.minimal, "The minimal cut sets in evidence, the events by their share of them, "
        "and a smallest set of repairs");
    explain.Add("--next", view.next, "Up to N open checks to close next of each undecided tree, and what is missing that "
        "would decide most trees: the fewest checks, not the likeliest cause")
        .Takes("N")
        .Within(std::size_t{1}, MOST_NEXT);
    explain.AddFlag("--brief", view.brief, "One line a distinct root cause");
}

} // namespace

void AddExplainCommand(Command app, ExitStatus& status)
{
    auto options = std::make_shared<ExplainOptions>();
    Command explain = app.AddCommand("explain", "Diagnose bundles and tell why: every rule with all that it "
        "looked at, every root cause with its evidence");
    explain.Add("BUNDLE", options->bundles, "Folders or zips with a bundle.json").Required();
    explain.AddFlag("--json", options->asJson, "One JSON object a line for each bundle");
    AddViewOptions(explain, options->view);
    AddRunOptions(explain, options->run);
    explain.Footer("Examples:\n  arborist explain examples/laptop\n"
                    "  arborist explain --event BATTERY_WORN examples/laptop\n"
                    "  arborist explain --brief --next 3 examples/laptop\n"
                    "  arborist explain --near-misses 1 --minimal --json devices/* > explained.jsonl");
    explain.OnCall([options, &status] { status = Explain(*options); });
}

} // namespace diagnosis::command
