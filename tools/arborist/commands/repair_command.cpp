#include <memory>

#include "diagnosis/bundle/repairs.h"
#include "diagnosis/results/repair_json.h"
#include "diagnosis/text/printable.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

struct RepairOptions {
    std::string bundle;
    std::string id;
    BundleOverrides overrides;
    LogOptions log;
    bool asJson = false;
};

std::string RecordsText(const std::vector<RepairRecord>& records)
{
    std::string text;
    for (const RepairRecord& record : records) {
        text += Printable(record.date) + "  " + Printable(record.id) + "\n";
    }
    return text;
}

ExitStatus Print(const RepairReport& report, bool asJson)
{
    PrintResult(asJson ? RepairLines(report.records) : RecordsText(report.records));
    PrintProblems(report.bundle, report.warnings, report.failure);
    return report.failure ? report.failure->status : ExitStatus::SUCCESS;
}

ExitStatus Record(const RepairOptions& options)
{
    return IsLogOpen(options.log)
        ? Print(RecordRepair(MakeBundlePath(options.bundle), options.id, options.overrides), options.asJson)
        : ExitStatus::WRONG_USE;
}

ExitStatus List(const RepairOptions& options)
{
    return IsLogOpen(options.log) ? Print(ListRepairs(MakeBundlePath(options.bundle), options.overrides), options.asJson)
                                  : ExitStatus::WRONG_USE;
}

Command AddRecordsCommand(Command repair, const std::string& name, const std::string& description,
    const std::shared_ptr<RepairOptions>& options)
{
    Command command = repair.AddCommand(name, description);
    command.Add("BUNDLE", options->bundle, "Folder with a bundle.json").Required();
    command.AddFlag("--json", options->asJson, "One JSON object a line for each record");
    AddLogOptions(command, options->log);
    return command;
}

} // namespace

void AddRepairCommand(Command app, ExitStatus& status)
{
    Command repair = app.AddCommand("repair", "Repair records of a bundle: what happened before a repair doesn't "
        "count any more");
    repair.RequireCommand();
    repair.Footer("Example:\n  arborist repair list examples/laptop");

    auto recordOptions = std::make_shared<RepairOptions>();
    Command record = AddRecordsCommand(repair, "record", "Record that a repair was carried out", recordOptions);
    record.Add("ID", recordOptions->id, "Repair id").Required().NotEmpty();
    AddOverrides(record, recordOptions->overrides);
    AddRules(record, recordOptions->overrides);
    record.Footer("Example:\n  arborist repair record examples/laptop REPAIR_BATTERY --now \"2024-05-01 10:00:00\"");
    record.OnCall([recordOptions, &status] { status = Record(*recordOptions); });

    auto listOptions = std::make_shared<RepairOptions>();
    Command list = AddRecordsCommand(repair, "list", "Show the records, in the order of their first making",
        listOptions);
    AddLive(list, listOptions->overrides);
    list.Footer("Example:\n  arborist repair list examples/laptop");
    list.OnCall([listOptions, &status] { status = List(*listOptions); });
}

} // namespace diagnosis::command
