#include <algorithm>
#include <memory>

#include "arborist/frame/repair.h"
#include "diagnosis/bundle/bundle_session.h"
#include "diagnosis/bundle/moment.h"
#include "diagnosis/bundle/repair_records.h"
#include "diagnosis/bundle/rule_paths.h"
#include "diagnosis/results/repair_json.h"
#include "diagnosis/text/near_match.h"
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

ExitStatus Fail(const RepairOptions& options, const Failure& failure)
{
    PrintProblems(options.bundle, {}, &failure);
    return failure.status;
}

std::string RecordText(const RepairRecord& record, bool asJson)
{
    return (asJson ? RepairJson(record) : Printable(record.date) + "  " + Printable(record.id)) + "\n";
}

// Warns of an id that the rule set doesn't name: with a misspelt id the repair would have no effect, silently.
void WarnOfUnknownRepair(const BundleSession& session, const RepairOptions& options)
{
    const RuleSetSummary ruleSet = SummariseRuleSet(session.GetBundle());
    const std::vector<std::string>& known = ruleSet.repairIds;
    const bool isWhole = ruleSet.isTreeFileRead && ruleSet.isRuleFileRead;
    if (!isWhole || std::find(known.begin(), known.end(), options.id) != known.end()) {
        return;
    }
    // The operation word behind an id is easily forgotten.
    const auto longer = std::find_if(known.begin(), known.end(),
        [&](const std::string& id) { return id.rfind(options.id + "_", 0) == 0; });
    PrintProblems(options.bundle, {{"unknown_repair", "no event of the rule set names the repair \"" + options.id + "\""
        + (longer == known.end() ? DidYouMean(options.id, known) : "; did you mean \"" + *longer + "\"?")}}, nullptr);
}

// UpdateRepairDb returns nothing, so read the record back and compare its date: an old record may have remained.
std::optional<Failure> Record(const BundleSession& session, const RepairOptions& options)
{
    const std::string path = session.ProgramDataPath(REPAIR_RECORDS);
    const std::string earliest = FormatMoment(session.Now()).value_or("");
    UpdateRepairDb(options.id);
    std::vector<RepairRecord> records;
    if (auto failure = ReadRepairRecords(path, records)) {
        return failure;
    }
    const auto record = std::find_if(records.begin(), records.end(),
        [&](const RepairRecord& candidate) { return candidate.id == options.id && candidate.date >= earliest; });
    if (record == records.end()) {
        return Failure{"repair_not_recorded", path + ": the repair was not recorded; the library's log tells why"};
    }
    PrintResult(RecordText(*record, options.asJson));
    WarnOfUnknownRepair(session, options);
    return std::nullopt;
}

std::optional<Failure> List(const BundleSession& session, const RepairOptions& options)
{
    std::vector<RepairRecord> records;
    if (auto failure = ReadRepairRecords(session.ProgramDataPath(REPAIR_RECORDS), records)) {
        return failure;
    }
    for (const RepairRecord& record : records) {
        PrintResult(RecordText(record, options.asJson));
    }
    return std::nullopt;
}

using Work = std::optional<Failure> (*)(const BundleSession& session, const RepairOptions& options);

ExitStatus WithRecords(const RepairOptions& options, BundleUse use, Work work)
{
    if (!IsLogOpen(options.log)) {
        return ExitStatus::WRONG_USE;
    }
    BundleSession session;
    if (const auto failure = session.Enter(MakeBundlePath(options.bundle), options.overrides, use)) {
        return Fail(options, *failure);
    }
    PrintProblems(options.bundle, session.GetWarnings(), nullptr);
    auto failure = work(session, options);
    if (failure) {
        failure->message = session.Shown(failure->message);
    }
    return failure ? Fail(options, *failure) : ExitStatus::SUCCESS;
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
    record.OnCall([recordOptions, &status] { status = WithRecords(*recordOptions, BundleUse::RECORD, Record); });

    auto listOptions = std::make_shared<RepairOptions>();
    Command list = AddRecordsCommand(repair, "list", "Show the records, in the order of their first making",
        listOptions);
    AddLive(list, listOptions->overrides);
    list.Footer("Example:\n  arborist repair list examples/laptop");
    list.OnCall([listOptions, &status] { status = WithRecords(*listOptions, BundleUse::RUN, List); });
}

} // namespace diagnosis::command
