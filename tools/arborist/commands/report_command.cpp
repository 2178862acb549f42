#include <CLI/CLI.hpp>

#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/drawing_options.h"
#include "tools/arborist/commands/output.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/render/report_page.h"

namespace command {

namespace {

struct ReportOptions {
    DrawingOptions drawing;
    std::string file;
};

ExitStatus Report(const ReportOptions& options)
{
    if (!IsLogOpen(options.drawing.log)) {
        return ExitStatus::WRONG_USE;
    }
    const BundlePath path = MakeBundlePath(options.drawing.bundle);
    const BundlePath target = MakeBundlePath(options.file);
    DrawingOptions drawing = options.drawing;
    drawing.detection.withEvidence = true;
    const DetectionReport report = RunForDrawing(path, drawing);
    PrintProblems(path.given, report.warnings, report.failure ? &*report.failure : nullptr);
    // A bundle that can't be diagnosed has a page too: it tells why.
    const ExitStatus written = WriteDrawing(target, ReportPage(report));
    return report.failure ? MoreSerious(written, report.failure->status) : written;
}

} // namespace

void AddReportCommand(CLI::App& app, ExitStatus& status)
{
    auto options = std::make_shared<ReportOptions>();
    CLI::App* report = app.add_subcommand("report", "Diagnose a bundle and write one HTML page about it");
    AddDrawingOptions(*report, options->drawing, "Bundle to diagnose");
    report->add_option("-o,--output", options->file, "Write into this file instead of standard output")
        ->type_name("FILE");
    report->footer("The page needs neither network nor scripts, and can be printed.\n"
                   "Example:\n  arborist report examples/laptop -o report.html");
    report->callback([options, &status] { status = Report(*options); });
}

} // namespace command
