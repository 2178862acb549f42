#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "diagnosis/report/report_page.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/drawing_options.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

struct ReportOptions : DrawingOptions {
    bool withSweep = false;
};

// Those of the detection are told already.
void LeaveOwnWarnings(const DetectionReport& report, SweepReport& sweep)
{
    std::set<std::pair<WarningCode, std::string>> told;
    for (const Warning& warning : report.warnings) {
        told.emplace(warning.code, warning.message.substr(0, warning.message.rfind(" (")));
        told.emplace(warning.code, warning.message);
    }
    std::erase_if(sweep.warnings,
        [&told](const Warning& warning) { return told.count({warning.code, warning.message}) != 0; });
}

ExitStatus Report(ReportOptions options)
{
    if (!IsLogOpen(options.run.log)) {
        return ExitStatus::WRONG_USE;
    }
    const BundlePath path = MakeBundlePath(options.bundle);
    const BundlePath target = MakeBundlePath(options.file);
    options.run.detection.withExplanation = true;
    const DetectionReport report = RunForDrawing(path, options);
    PrintProblems(path.given, report.warnings, report.failure);
    // A bundle that can't be diagnosed gets a page, too, which says why.
    std::optional<SweepReport> sweep;
    if (options.withSweep && !report.failure) {
        SweepOptions asked;
        asked.overrides = options.run.detection.overrides;
        asked.until = asked.overrides.asOf;
        asked.codeRunner = MakeCodeRunner(options.run.codeRunner);
        sweep = RunSweep(path, asked);
        LeaveOwnWarnings(report, *sweep);
        PrintProblems(path.given, sweep->warnings, sweep->failure);
    }
    const ExitStatus written = WriteTextFile(target, ReportPage(report, sweep ? &*sweep : nullptr));
    const ExitStatus swept = sweep && sweep->failure ? sweep->failure->status : ExitStatus::SUCCESS;
    return MoreSerious(MoreSerious(written, swept), StatusOf(report, options.run));
}

} // namespace

void AddReportCommand(Command app, ExitStatus& status)
{
    auto options = std::make_shared<ReportOptions>();
    Command report = app.AddCommand("report", "Diagnose a bundle and write one HTML page about it");
    AddDrawingOptions(report, *options, "Bundle to diagnose");
    report.AddFlag("--sweep", options->withSweep, "Show also when each tree and root cause was there before, as 'arborist "
        "sweep' tells");
    report.Footer("The page needs neither network nor scripts, and can be printed.\n"
                   "Example:\n  arborist report examples/laptop -o report.html");
    report.OnCall([options, &status] { status = Report(*options); });
}

} // namespace diagnosis::command
