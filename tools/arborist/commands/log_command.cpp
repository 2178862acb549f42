#include <fstream>
#include <iostream>
#include <memory>

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
    std::string asOf;
    bool asSeconds = false;
};

using DayEnd = std::optional<std::int64_t> (*)(const std::string& day);

// The moment of an option, where a date means its first or last second. Nothing for the empty text; false after a
// message for a moment that doesn't exist in the time zone.
bool ReadMoment(const std::string& text, DayEnd ofDay, std::optional<std::int64_t>& moment)
{
    moment = IsDay(text) ? ofDay(text) : ParseMoment(text);
    if (!text.empty() && !moment) {
        PrintError("the moment \"" + text + "\" does not exist in the time zone");
    }
    return text.empty() || moment;
}

bool ReadAsOf(const std::string& text, std::optional<std::int64_t>& asOf)
{
    return ReadMoment(text, LastSecondOf, asOf);
}

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
    std::optional<std::int64_t> asOf;
    if (!ReadAsOf(options.asOf, asOf)) {
        return ExitStatus::WRONG_USE;
    }
    const auto failure = ShowEventLog(options.file, options.asSeconds, asOf, [](const ShownEvent& event) {
        std::cout << "{\"time\": " << event.time << ", \"event\": " << event.event << ", \"version\": "
                  << event.version << ", \"extra\": " << event.extra << "}\n";
    });
    return Finish(failure ? std::vector<Failure>{*failure} : std::vector<Failure>{});
}

struct InspectOptions {
    std::string file;
    std::string asOf;
    std::string zone;
    bool asJson = false;
};

ExitStatus Inspect(const InspectOptions& options)
{
    const TimeZoneGuard zone(options.zone);
    LogInspection inspection;
    std::optional<std::int64_t> asOf;
    if (!ReadAsOf(options.asOf, asOf)) {
        return ExitStatus::WRONG_USE;
    }
    if (const auto failure = InspectEventLog(options.file, inspection, asOf)) {
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
    std::string asOf;
    std::string ids;
    std::int64_t lastDays = -1;
    std::string zone;
};

ExitStatus Slice(const SliceOptions& options)
{
    const TimeZoneGuard zone(options.zone);
    LogSlice slice;
    if (!ReadAsOf(options.asOf, slice.asOf) || !ReadMoment(options.from, FirstSecondOf, slice.from)
        || !ReadMoment(options.until, LastSecondOf, slice.until)) {
        return ExitStatus::WRONG_USE;
    }
    slice.ids = ParseIdRanges(options.ids).value_or(slice.ids);
    if (options.lastDays >= 0) {
        slice.lastDays = options.lastDays;
    }
    const auto failure = SliceEventLog(options.file, options.target, slice);
    return Finish(failure ? std::vector<Failure>{*failure} : std::vector<Failure>{});
}

void AddInspectCommand(Command log, ExitStatus& status)
{
    auto options = std::make_shared<InspectOptions>();
    Command inspect = log.AddCommand("inspect", "Tell what an event log holds, and what in it is not seen");
    inspect.Add("LOG.DB", options->file, "The event log").Required();
    inspect.AddFlag("--json", options->asJson, "One JSON object, times in seconds since the epoch");
    AddMomentOption(inspect, "--as-of", options->asOf, "Leave out events later than this moment");
    AddTimeZone(inspect, options->zone);
    inspect.Footer("Example:\n  arborist log inspect log.db");
    inspect.OnCall([options, &status] { status = Inspect(*options); });
}

void AddSliceCommand(Command log, ExitStatus& status)
{
    static constexpr std::int64_t MOST_DAYS = 1'000'000;
    auto options = std::make_shared<SliceOptions>();
    Command slice = log.AddCommand("slice", "Make an event log of a part of another");
    slice.Add("LOG.DB", options->file, "The event log, which stays as it is").Required();
    slice.Add("--to", options->target, "The log.db to make, with its folders; an old one is replaced")
        .Takes("LOG.DB").Required();
    AddMomentOption(slice, "--from", options->from, "Events since then, inclusive; a date stands for its first second");
    AddMomentOption(slice, "--until", options->until, "Events until then, inclusive; a date stands for its last second");
    AddMomentOption(slice, "--as-of", options->asOf, "Take the log for what it was then, also for --last");
    slice.Add("--last", options->lastDays, "Events of this many days before the latest one")
        .Takes("DAYS").Within(std::int64_t{0}, MOST_DAYS);
    slice.Add("--ids", options->ids, "Events of these numbers: 931001001,932000000-932999999")
        .Takes("LIST")
        .Check([](const std::string& text) {
            return ParseIdRanges(text) ? "" : "is no list of numbers and ranges: " + text;
        });
    AddTimeZone(slice, options->zone);
    slice.Footer("Example:\n  arborist log slice log.db --to last-week.db --last 7 --ids 931001001-931001999");
    slice.OnCall([options, &status] { status = Slice(*options); });
}

} // namespace

void AddLogCommand(Command app, ExitStatus& status)
{
    Command log = app.AddCommand(
        "log", "Event logs: make them of readable text, show them, look for what is not seen, cut them");
    log.RequireCommand();
    log.Footer("Example:\n  arborist log import events.jsonl --to log.db");

    auto importOptions = std::make_shared<LogFileOptions>();
    Command import = log.AddCommand("import", "Make an event log of JSON Lines");
    import.Add("FILE", importOptions->file, "JSON Lines: \"time\", \"event\", \"version\", \"extra\"; - for "
        "standard input").Required();
    import.Add("--to", importOptions->target, "The log.db to make, with its folders; an old one is replaced")
        .Takes("LOG.DB").Required();
    AddTimeZone(import, importOptions->zone);
    import.Footer("A line that can't be used is named, and nothing is written.\nExample:\n"
                   "  arborist log import events.jsonl --to programdata/Comms/Lumbra/workDir/0/log.db");
    import.OnCall([importOptions, &status] { status = Import(*importOptions); });

    auto showOptions = std::make_shared<LogFileOptions>();
    Command show = log.AddCommand("show", "Print an event log as JSON Lines");
    show.Add("LOG.DB", showOptions->file, "The event log").Required();
    show.AddFlag("--seconds", showOptions->asSeconds, "Times in seconds since the epoch instead of local time");
    AddMomentOption(show, "--as-of", showOptions->asOf, "Leave out events later than this moment");
    AddTimeZone(show, showOptions->zone);
    show.Footer("Example:\n  arborist log show programdata/Comms/Lumbra/workDir/0/log.db --tz UTC");
    show.OnCall([showOptions, &status] { status = Show(*showOptions); });

    AddInspectCommand(log, status);
    AddSliceCommand(log, status);
}

} // namespace diagnosis::command
