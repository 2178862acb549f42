#include <fstream>
#include <iostream>

#include <CLI/CLI.hpp>

#include "tools/arborist/bundle/moment.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/output.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/log_db/import_log.h"

namespace command {

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

} // namespace

void AddLogCommand(CLI::App& app, ExitStatus& status)
{
    CLI::App* log = app.add_subcommand("log", "Event logs: from readable text into the database and back");
    log->require_subcommand(1);
    log->footer("Example:\n  arborist log import events.jsonl --to log.db");

    auto importOptions = std::make_shared<LogFileOptions>();
    CLI::App* import = log->add_subcommand("import", "Make an event log of JSON Lines");
    import->add_option("FILE", importOptions->file, "JSON Lines: \"time\", \"event\", \"version\", \"extra\"; - for "
        "standard input")->required();
    import->add_option("--to", importOptions->target, "The log.db to make; an old one is replaced")
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
}

} // namespace command
