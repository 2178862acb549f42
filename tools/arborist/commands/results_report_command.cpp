#include <memory>

#include "diagnosis/results_report/fleet_json.h"
#include "diagnosis/results_report/fleet_page.h"
#include "diagnosis/results_report/fleet_reader.h"
#include "diagnosis/scratch/new_file.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/drawing_options.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

constexpr std::int64_t MOST_DAYS = 36500;

struct ResultsReportOptions {
    std::string database;
    std::string page;
    std::int64_t withinDays = 30;
    bool asJson = false;
};

ExitStatus ReportResults(const ResultsReportOptions& options)
{
    if (options.page.empty() && !options.asJson) {
        FailMissing("--html or --json");
    }
    if (!options.page.empty() && IsOneFile(options.page, options.database)) {
        PrintError(options.page + ": is a file that is read");
        return ExitStatus::WRONG_USE;
    }
    Fleet fleet;
    if (const auto failure = ReadFleet(options.database, options.withinDays, fleet)) {
        PrintError(failure->message);
        return failure->status;
    }
    if (options.asJson) {
        PrintResult(FleetJson(fleet) + "\n");
    }
    return options.page.empty() ? ExitStatus::SUCCESS : WriteTextFile(MakeBundlePath(options.page), FleetPage(fleet));
}

} // namespace

void AddResultsReportCommand(Command results, ExitStatus& status)
{
    auto options = std::make_shared<ResultsReportOptions>();
    Command report = results.AddCommand("report", "Write one HTML page about all results of a database");
    report.Add("R.DB", options->database, "Results database that 'arborist results import' made").Required().NotEmpty();
    report.Add("--html", options->page, "File to write the page to").Takes("FILE").NotEmpty();
    report.AddFlag("--json", options->asJson, "Print the figures as one JSON object");
    report.Add("--within", options->withinDays, "Follow devices for so many days after a repair")
        .Takes("DAYS")
        .Within(std::int64_t{1}, MOST_DAYS)
        .ShowDefault();
    report.Footer("The page needs neither network nor scripts, and can be printed. It tells what repairs came to where\n"
                  "bundles have a device and repairs on record.\n"
                  "Example:\n  arborist results report results.db --html results.html");
    report.OnCall([options, &status] { status = ReportResults(*options); });
}

} // namespace diagnosis::command
