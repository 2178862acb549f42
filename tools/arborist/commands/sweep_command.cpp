#include <memory>

#include "diagnosis/drawing/svg_timeline.h"
#include "diagnosis/results/sweep_json.h"
#include "diagnosis/sweep/sweep.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/drawing_options.h"
#include "tools/arborist/commands/seconds.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/render/sweep_text.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

struct SweepCommandOptions {
    std::string bundle;
    SweepOptions sweep;
    CodeRunnerOptions codeRunner;
    LogOptions log;
    std::string picture;
    bool asJson = false;
    bool isStrict = false;
};

ExitStatus StatusOf(const SweepReport& report, bool isStrict)
{
    if (report.failure) {
        return report.failure->status;
    }
    ExitStatus status = ExitStatus::SUCCESS;
    for (const Warning& warning : report.warnings) {
        status = isStrict ? MoreSerious(status, StrictStatus(warning.code)) : status;
    }
    return status;
}

ExitStatus SweepBundle(SweepCommandOptions options)
{
    if (!IsLogOpen(options.log)) {
        return ExitStatus::WRONG_USE;
    }
    options.sweep.codeRunner = MakeCodeRunner(options.codeRunner);
    options.sweep.stopsOnSignal = true;
    const BundlePath target = MakeBundlePath(options.picture);
    const SweepReport report = RunSweep(MakeBundlePath(options.bundle), options.sweep);
    if (options.asJson) {
        SweepJson(report, [](const std::string& line) { PrintResult(line + "\n"); });
    } else {
        PrintProblems(report.bundle, report.warnings, report.failure);
        PrintResult(SweepText(report));
    }
    const ExitStatus status = StatusOf(report, options.isStrict);
    return options.picture.empty() || report.failure
        ? status : MoreSerious(status, WriteTextFile(target, SvgTimelineFile(report)));
}

} // namespace

void AddSweepCommand(Command app, ExitStatus& status)
{
    static constexpr std::size_t MOST_TABLE_MOMENTS = 10'000'000;
    auto options = std::make_shared<SweepCommandOptions>();
    SweepOptions& wanted = options->sweep;
    Command sweep = app.AddCommand("sweep", "Tell what detections find as of every moment of a bundle's event log");
    sweep.Add("BUNDLE", options->bundle, "Folder or zip with a bundle.json").Required();
    AddMomentOption(sweep, "--from", wanted.from, "First moment; the first row of the log unless given");
    AddMomentOption(sweep, "--until", wanted.until, "Last moment; \"now\" of the bundle, or the last row of the log if "
        "that is later, unless given");
    sweep.Add("--tree", wanted.tree, "Only this tree, with its root causes").Takes("ID").NotEmpty();
    sweep.Add("--rule", wanted.rule, "Only the rules of this name").Takes("NAME").NotEmpty();
    sweep.AddFlag("--json", options->asJson, "One JSON object a line for the sweep and for each interval");
    sweep.Add("--svg", options->picture, "Also draw the timelines of trees and root causes into this file")
        .Takes("FILE")
        .NotEmpty();
    sweep.Add("--table-moments", wanted.mostTableMoments, "Build derived tables for at most so many moments; rules on "
        "tables that change more often are not swept")
        .Takes("N")
        .ShowDefault()
        .Within(std::size_t{0}, MOST_TABLE_MOMENTS);
    sweep.AddFlag("--strict", options->isStrict, "Exit with 4 on a warning");
    AddRules(sweep, wanted.overrides);
    AddLive(sweep, wanted.overrides);
    AddTimeZone(sweep, wanted.overrides.tz);
    AddCodeRunnerOptions(sweep, options->codeRunner);
    AddSeconds(sweep, "--time-limit", wanted.overrides.timeLimit, 0, "Seconds after which the sweep stops: it ends before the "
        "moment at which it is; 0 for no limit");
    AddLogOptions(sweep, options->log);
    sweep.Footer("Node files, answers to code rules, external databases, the version and the\n"
                  "dates of repairs have no history: they are taken as captured. Each moment is\n"
                  "\"now\" in its turn: --until stands for the --now and --as-of of other commands.\n"
                  "Examples:\n  arborist sweep examples/laptop\n"
                  "  arborist sweep --json --from 2024-05-01 --tree AUDIO examples/laptop > intervals.jsonl");
    sweep.OnCall([options, &status] { status = SweepBundle(*options); });
}

} // namespace diagnosis::command
