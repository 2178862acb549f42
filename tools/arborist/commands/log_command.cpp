#include <fstream>
#include <iostream>

#include <CLI/CLI.hpp>

#include "diagnosis/bundle/moment.h"
#include "diagnosis/log_db/import_log.h"
#include "diagnosis/log_db/slice_log.h"
#include "diagnosis/process/process_state.h"
#include "diagnosis/results/log_json.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/render/log_text.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

struct LogFileOptions {
    std::string file;
    std::string target;
    std::string zone;
    bool asSeconds = false;
};

ExitStatus Finish(const std::vector<Failure>& failures)
{
    ExitStatus status = ExitStatus::SUCCESS;
    for (const Failure& failure : failures) {
        PrintError(failure.message);
        status = MoreSerious(status, failure.status);
    }
    return status;
}

ExitStatus Import(const LogFileOptions& options)
{
    const TimeZoneGuard zone(options.zone);
    return Finish(ImportEventLog(options.file, options.target));
}

ExitStatus Show(const LogFileOptions& options)
{
    const TimeZoneGuard zone(options.zone);
    const auto failure = ShowEventLog(options.file, options.asSeconds, [](const ShownEvent& event) {
        std::cout << "{\"time\": " << event.time << ", \"event\": " << event.event << ", \"version\": "
                  << event.version << ", \"extra\": " << event.extra << "}\n";
    });
    return Finish(failure ? std::vector<Failure>{*failure} : std::vector<Failure>{});
}

struct InspectOptions {
    std::string file;
    std::string zone;
    bool asJson = false;
};

ExitStatus Inspect(const InspectOptions& options)
{
    const TimeZoneGuard zone(options.zone);
    LogInspection inspection;
    if (const auto failure = InspectEventLog(options.file, inspection)) {
        return Finish({*failure});
    }
    PrintResult(options.asJson ? LogJson(options.file, inspection) + "\n" : LogText(options.file, inspection));
    return ExitStatus::SUCCESS;
}

struct SliceOptions {
    std::string file;
    std::string target;
    std::string from;
    std::string until;
    std::string ids;
    std::int64_t lastDays = -1;
    std::string zone;
};

// A date, "2024-05-19", is a moment without its time of day.
bool IsDate(const std::string& text)
{
    return text.size() == std::string_view("2024-05-19").size() && IsMomentText(text + " 00:00:00");
}

ExitStatus Slice(const SliceOptions& options)
{
    const TimeZoneGuard zone(options.zone);
    LogSlice slice;
    slice.from = ParseMoment(IsDate(options.from) ? options.from + " 00:00:00" : options.from);
    slice.until = ParseMoment(IsDate(options.until) ? options.until + " 23:59:59" : options.until);
    for (const auto& [text, moment] : {std::pair(&options.from, &slice.from), std::pair(&options.until, &slice.until)}) {
        if (!text->empty() && !*moment) {
            PrintError("the moment \"" + *text + "\" does not exist in the time zone");
            return ExitStatus::WRONG_USE;
        }
    }
    slice.ids = ParseIdRanges(options.ids).value_or(slice.ids);
    if (options.lastDays >= 0) {
        slice.lastDays = options.lastDays;
    }
    const auto failure = SliceEventLog(options.file, options.target, slice);
    return Finish(failure ? std::vector<Failure>{*failure} : std::vector<Failure>{});
}

void AddInspectCommand(CLI::App& log, ExitStatus& status)
{
    auto options = std::make_shared<InspectOptions>();
    CLI::App* inspect = log.add_subcommand("inspect", "Tell what an event log holds, and what in it is not seen");
    inspect->add_option("LOG.DB", options->file, "The event log")->required();
    inspect->add_flag("--json", options->asJson, "One JSON object, times in seconds since the epoch");
    AddTimeZone(*inspect, options->zone);
    inspect->footer("Example:\n  arborist log inspect log.db");
    inspect->callback([options, &status] { status = Inspect(*options); });
}

void AddMomentOption(CLI::App& app, const std::string& name, std::string& moment, const std::string& description)
{
    app.add_option(name, moment, description)->type_name("TIME")->check([](const std::string& text) {
        return IsMomentText(text) || IsDate(text)
            ? "" : "is neither \"YYYY-MM-DD\", \"YYYY-MM-DD HH:MM:SS\" nor seconds since the epoch: " + text;
    });
}

void AddSliceCommand(CLI::App& log, ExitStatus& status)
{
    static constexpr std::int64_t MOST_DAYS = 1'000'000;
    auto options = std::make_shared<SliceOptions>();
    CLI::App* slice = log.add_subcommand("slice", "Make an event log of a part of another");
    slice->add_option("LOG.DB", options->file, "The event log, which stays as it is")->required();
    slice->add_option("--to", options->target, "The log.db to make; an old one is replaced")
        ->type_name("LOG.DB")->required();
    AddMomentOption(*slice, "--from", options->from, "Events since then, inclusive; a date stands for its first second");
    AddMomentOption(*slice, "--until", options->until, "Events until then, inclusive; a date stands for its last second");
    slice->add_option("--last", options->lastDays, "Events of this many days before the latest one")
        ->type_name("DAYS")->check(CLI::Range(std::int64_t{0}, MOST_DAYS));
    slice->add_option("--ids", options->ids, "Events of these numbers: 931001001,932000000-932999999")
        ->type_name("LIST")
        ->check([](const std::string& text) {
            return ParseIdRanges(text) ? "" : "is no list of numbers and ranges: " + text;
        });
    AddTimeZone(*slice, options->zone);
    slice->footer("Example:\n  arborist log slice log.db --to last-week.db --last 7 --ids 931001001-931001999");
    slice->callback([options, &status] { status = Slice(*options); });
}

} // namespace

void AddLogCommand(CLI::App& app, ExitStatus& status)
{
    CLI::App* log = app.add_subcommand(
        "log", "Event logs: make them of readable text, show them, look for what is not seen, cut them");
    log->require_subcommand(1);
    log->footer("Example:\n  arborist log import events.jsonl --to log.db");

    auto importOptions = std::make_shared<LogFileOptions>();
    CLI::App* import = log->add_subcommand("import", "Make an event log of JSON Lines");
    import->add_option("FILE", importOptions->file, "JSON Lines: \"time\", \"event\", \"version\", \"extra\"; - for "
        "standard input")->required();
    import->add_option("--to", importOptions->target, "The log.db to make, with its folders; an old one is replaced")
        ->type_name("LOG.DB")->required();
    AddTimeZone(*import, importOptions->zone);
    import->footer("A line that can't be used is named, and nothing is written.\nExample:\n"
                   "  arborist log import events.jsonl --to programdata/Comms/Lumbra/workDir/0/log.db");
    import->callback([importOptions, &status] { status = Import(*importOptions); });

    auto showOptions = std::make_shared<LogFileOptions>();
    CLI::App* show = log->add_subcommand("show", "Print an event log as JSON Lines");
    show->add_option("LOG.DB", showOptions->file, "The event log")->required();
    show->add_flag("--seconds", showOptions->asSeconds, "Times in seconds since the epoch instead of local time");
    AddTimeZone(*show, showOptions->zone);
    show->footer("Example:\n  arborist log show programdata/Comms/Lumbra/workDir/0/log.db --tz UTC");
    show->callback([showOptions, &status] { status = Show(*showOptions); });

    AddInspectCommand(*log, status);
    AddSliceCommand(*log, status);
}

} // namespace diagnosis::command
