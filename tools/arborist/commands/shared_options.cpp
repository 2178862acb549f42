#include "tools/arborist/commands/shared_options.h"

#include "diagnosis/bundle/moment.h"
#include "diagnosis/detection/code_program.h"
#include "tools/arborist/commands/seconds.h"
#include "tools/arborist/terminal/colour.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

std::string MomentProblem(const std::string& text)
{
    return IsMomentText(text)
        ? "" : "is neither a local time \"YYYY-MM-DD HH:MM:SS\" that exists nor seconds since the epoch: " + text;
}

} // namespace

void AddOverrides(Command app, BundleOverrides& overrides)
{
    AddMoments(app, overrides);
    AddLive(app, overrides);
}

void AddMoments(Command app, BundleOverrides& overrides)
{
    app.Add("--now", overrides.now, "Diagnose as of this moment, \"YYYY-MM-DD HH:MM:SS\" local time or seconds "
        "since the epoch, instead of \"now\" of the bundle")
        .Takes("TIME")
        .Check(MomentProblem);
    app.Add("--as-of", overrides.asOf, "Diagnose as it was at this moment: later events and repairs don't count, and it "
        "is taken for now")
        .Takes("TIME")
        .Check(MomentProblem);
    AddTimeZone(app, overrides.tz);
}

void AddLive(Command app, BundleOverrides& overrides)
{
    app.AddFlag("--live", overrides.isLive, "Diagnose this machine: its files and its data in place of those in the bundle");
}

void AddRules(Command app, BundleOverrides& overrides)
{
    const auto takeOver = [&overrides](const std::string& folder) {
        // Meant from here, and not from the bundle that becomes the working directory.
        overrides.rules = MakeRulesPath(folder);
    };
    app.Add("--rules", takeOver, "Folder of a rule set to use instead of the bundle's")
        .Takes("DIR")
        .NotEmpty();
}

void AddMomentOption(Command app, const std::string& name, std::string& moment, const std::string& description)
{
    app.Add(name, moment, description).Takes("TIME").Check([](const std::string& text) {
        return IsMomentText(text) || IsDay(text)
            ? "" : "is neither a day \"YYYY-MM-DD\" or local time \"YYYY-MM-DD HH:MM:SS\" that exists nor seconds since "
                   "the epoch: " + text;
    });
}

void AddTimeZone(Command app, std::string& zone)
{
    app.Add("--tz", zone, "Time zone of local times, \"Europe/Berlin\" or a POSIX rule")
        .Takes("ZONE")
        .Check([](const std::string& text) {
            return IsTimeZone(text) ? "" : "names no time zone that this machine knows: " + text;
        });
}

void AddLogOptions(Command app, LogOptions& options)
{
    app.Add("--log-level", options.level, "Library log on standard error from this level on: trace, debug, "
        "info, warn, error, fatal or none (the default)")
        .Takes("LEVEL")
        .OneOf({"trace", "debug", "info", "warn", "error", "fatal", "none"});
    app.Add("--log-file", options.file, "Whole library log into this file, instead of standard error")
        .Takes("FILE")
        .NotEmpty();
}

void AddCodeRunnerOptions(Command app, CodeRunnerOptions& options)
{
    app.Add("--code-runner", options.program, "Program that answers code rules: one JSON object on its standard "
        "input, exit status 0 for present, 1 for not present")
        .Takes("PROGRAM")
        .Check([](const std::string& program) {
            const auto problem = ProgramProblem(FindProgram(program));
            return problem ? program + ": can't be started: " + *problem : "";
        });
    AddSeconds(app, "--code-timeout", options.timeout, 0.001, "Seconds that the program may take for one answer");
}

CodeRunner MakeCodeRunner(const CodeRunnerOptions& options)
{
    CodeRunner runner;
    runner.timeout = Milliseconds(options.timeout);
    runner.path = options.program.empty() ? "" : FindProgram(options.program);
    return runner;
}

void AddRunOptions(Command app, RunOptions& options)
{
    app.AddFlag("--strict", options.isStrict, "Exit with 3 on a warning about a rule set or a check that is an error, "
        "with 4 on any other warning, with 6 on an undecided tree");
    app.AddFlag("--fail-on-undecided", options.failsOnUndecided, "Exit with 6 when a tree is undecided");
    AddOverrides(app, options.detection.overrides);
    AddRules(app, options.detection.overrides);
    AddCodeRunnerOptions(app, options.codeRunner);
    AddSeconds(app, "--time-limit", options.detection.overrides.timeLimit, 0, "Seconds after which the detection stops: "
        "trees that are not decided by then are undecided; 0 for no limit");
    AddLogOptions(app, options.log);
}

DetectionOptions MakeDetectionOptions(const RunOptions& options)
{
    DetectionOptions detection = options.detection;
    detection.codeRunner = MakeCodeRunner(options.codeRunner);
    return detection;
}

ExitStatus StatusOf(const DetectionReport& report, const RunOptions& options)
{
    if (report.failure) {
        return report.failure->status;
    }
    ExitStatus status = ExitStatus::SUCCESS;
    for (const Warning& warning : report.warnings) {
        status = options.isStrict ? MoreSerious(status, StrictStatus(warning.code)) : status;
    }
    if (options.isStrict && report.HasUnusableRule()) {
        status = MoreSerious(status, ExitStatus::RULE_SET);
    }
    if ((options.isStrict || options.failsOnUndecided) && report.IsUndecided()) {
        status = MoreSerious(status, ExitStatus::UNDECIDED);
    }
    return status;
}

void AddColour(Command app)
{
    app.Add("--color", SetColour, "Colours of texts and messages: auto, always or never")
        .Takes("WHEN")
        .OneOf({"auto", "always", "never"})
        .Default("auto");
}

bool IsLogOpen(const LogOptions& options)
{
    const auto problem = OpenLibraryLog(options);
    if (problem) {
        PrintError(*problem);
    }
    return !problem;
}

} // namespace diagnosis::command
