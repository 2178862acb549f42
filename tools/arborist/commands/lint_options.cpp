#include "tools/arborist/commands/lint_options.h"

#include "diagnosis/lint/config.h"
#include "diagnosis/lint/device_profiles.h"
#include "diagnosis/lint/registry.h"
#include "diagnosis/log_db/inspect_log.h"

namespace diagnosis::command {

namespace {

using Problem = std::optional<Failure>;

void AppendTo(std::vector<std::string>& list, const std::vector<std::string>& more)
{
    list.insert(list.end(), more.begin(), more.end());
}

Problem ReadCounts(const std::string& log, lint::EventCounts& counts)
{
    if (log.empty()) {
        return std::nullopt;
    }
    LogInspection inspection;
    if (const auto failure = InspectEventLog(log, inspection)) {
        return WrongUse(failure->code, failure->message);
    }
    lint::EventCounts::RowsByEvent rows;
    for (const LoggedId& event : inspection.ids) {
        rows[event.id] += event.rows;
    }
    counts = lint::EventCounts(rows);
    return std::nullopt;
}

void AddSelection(Command app, LintCommandOptions& options)
{
    app.Add("--tag", options.tags, "Look at this tag alone; may be given several times").Takes("TAG");
    app.Add("--prefix", options.prefix, "The files are named with this and \"_\" in front").Takes("PREFIX");
    app.Add("--disable", options.disable, "Leave this check out; several with commas between, or several times")
        .Takes("ID").SplitAt(',');
    app.Add("--only", options.only, "Run this check alone; several as for --disable")
        .Takes("ID").SplitAt(',');
    app.Add("--device", options.devices, "Profiles of devices, for checks that need them").Takes("FILE");
    app.Add("--log", options.log, "An event log, for checks that look at what devices log").Takes("LOG.DB");
    app.Add("--device-root", options.deviceRoot, "A folder with the files of a device, for checks that look at them")
        .Takes("DIR");
    app.Add("--config", options.config, "Read options from a file of JSON").Takes("FILE");
    app.Add("--stdin-filename", options.stdinFile, "What the text of standard input is, for -")
        .Takes("FILE");
}

void AddFixes(Command app, LintCommandOptions& options)
{
    const Option fix = app.AddFlag("--fix", options.isFixed, "Fix the files where that does not change what the engine reads; "
        "the findings that remain are reported");
    app.AddFlag("--diff", options.asDiff, "Show what --fix would change, and change nothing").Excludes(fix);
    app.AddFlag("--unsafe-fixes", options.withUnsafeFixes, "With --fix or --diff: also fixes that change what the engine "
        "reads to what was most likely meant");
    app.Add("--tests", options.tests, "Cases, and folders of cases, that must answer alike after a fix, in addition to "
        "those of the rule set below the folder that contains it").Takes("PATH");
}

void AddOutput(Command app, LintCommandOptions& options)
{
    app.Add("--format", options.format, "text: for people; short: for editors; github, gitlab: for their "
        "pipelines; json, sarif, junit")
        .Takes("FORMAT")
        .OneOf({"text", "short", "json", "github", "gitlab", "sarif", "junit"})
        .ShowDefault();
    app.AddFlag("--json", options.asJson, "The same as --format json");
    app.Add("--fail-level", options.failLevel, "Exit with 1 from findings of this level on; error unless given")
        .Takes("LEVEL")
        .OneOf({"error", "warning", "info"});
    const Option baseline = app.Add("--baseline", options.baseline, "Leave out the findings in this file")
        .Takes("FILE");
    app.Add("--write-baseline", options.newBaseline, "Write all findings to this file, and keep the comments that it has")
        .Takes("FILE").Excludes(baseline);
    app.AddFlag("--no-baseline", options.withoutBaseline, "Report all findings, including those in the baseline of --config");
}

} // namespace

Failure WrongUse(FailureCode code, const std::string& message)
{
    return Failure{code, message, ExitStatus::WRONG_USE};
}

void AddLintOptions(Command lint, LintCommandOptions& options)
{
    AddSelection(lint, options);
    AddFixes(lint, options);
    AddOutput(lint, options);
}

std::optional<Failure> TakeConfig(LintCommandOptions& options)
{
    if (options.config.empty()) {
        return std::nullopt;
    }
    std::string problem;
    const auto config = lint::ReadConfig(options.config, problem);
    if (!config) {
        return WrongUse(FailureCode::BAD_CONFIG, problem);
    }
    options.tags = options.tags.empty() ? config->tags : options.tags;
    options.prefix = options.prefix.empty() ? config->prefix : options.prefix;
    options.only = options.only.empty() ? config->only : options.only;
    options.failLevel = options.failLevel.empty() ? config->failLevel : options.failLevel;
    options.baseline = options.baseline.empty() ? config->baseline : options.baseline;
    AppendTo(options.disable, config->disable);
    AppendTo(options.devices, config->devices);
    AppendTo(options.tests, config->tests);
    return std::nullopt;
}

std::optional<Failure> MakeLintOptions(
    const LintCommandOptions& given, lint::EventCounts& counts, lint::LintOptions& options)
{
    std::string problem;
    options.tags = given.tags;
    options.prefix = given.prefix;
    options.deviceRoot = given.deviceRoot;
    options.disabled.insert(given.disable.begin(), given.disable.end());
    options.only.insert(given.only.begin(), given.only.end());
    for (const auto* ids : {&given.disable, &given.only}) {
        problem = lint::UnknownCheck(*ids);
        if (!problem.empty()) {
            return WrongUse(FailureCode::UNKNOWN_CHECK, problem);
        }
    }
    for (const std::string& file : given.devices) {
        const auto profiles = lint::ReadDeviceProfiles(file, problem);
        if (!profiles) {
            return WrongUse(FailureCode::BAD_DEVICE, problem);
        }
        options.devices.insert(options.devices.end(), profiles->begin(), profiles->end());
    }
    options.counts = given.log.empty() ? nullptr : &counts;
    options.details.withFingerprints = given.asJson || given.format != "text";
    return ReadCounts(given.log, counts);
}

} // namespace diagnosis::command
