#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>

#include "diagnosis/lint/base/event_counts.h"
#include "diagnosis/lint/baseline.h"
#include "diagnosis/lint/config.h"
#include "diagnosis/lint/device_profiles.h"
#include "diagnosis/lint/fixes.h"
#include "diagnosis/lint/lint.h"
#include "diagnosis/lint/output/formats.h"
#include "diagnosis/lint/registry.h"
#include "diagnosis/log_db/inspect_log.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/lint_fixes.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/render/lint_text.h"
#include "tools/arborist/terminal/colour.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

struct LintCommandOptions {
    std::vector<std::string> folders;
    std::vector<std::string> tags;
    std::string prefix;
    std::vector<std::string> disable;
    std::vector<std::string> only;
    std::vector<std::string> devices;
    std::string log;
    std::string deviceRoot;
    std::string config;
    std::string failLevel;
    std::string baseline;
    std::string newBaseline;
    bool withoutBaseline = false;
    bool isFixed = false;
    bool asDiff = false;
    bool withUnsafeFixes = false;
    std::vector<std::string> tests;
    std::string format = "text";
    bool asJson = false;
    std::string stdinFile;
    bool asList = false;
    std::string explained;
};

ExitStatus WrongUse(const std::string& message)
{
    PrintError(message);
    return ExitStatus::WRONG_USE;
}

void AppendTo(std::vector<std::string>& list, const std::vector<std::string>& more)
{
    list.insert(list.end(), more.begin(), more.end());
}

// Takes options that the command line leaves out from the configuration; joins lists of both.
bool TakeConfig(LintCommandOptions& options, std::string& problem)
{
    if (options.config.empty()) {
        return true;
    }
    const auto config = lint::ReadConfig(options.config, problem);
    if (!config) {
        return false;
    }
    options.tags = options.tags.empty() ? config->tags : options.tags;
    options.prefix = options.prefix.empty() ? config->prefix : options.prefix;
    options.only = options.only.empty() ? config->only : options.only;
    options.failLevel = options.failLevel.empty() ? config->failLevel : options.failLevel;
    options.baseline = options.baseline.empty() ? config->baseline : options.baseline;
    AppendTo(options.disable, config->disable);
    AppendTo(options.devices, config->devices);
    AppendTo(options.tests, config->tests);
    return true;
}

bool ReadCounts(const std::string& log, lint::EventCounts& counts, std::string& problem)
{
    LogInspection inspection;
    if (const auto failure = InspectEventLog(log, inspection)) {
        problem = failure->message;
        return false;
    }
    for (const LoggedId& event : inspection.ids) {
        counts.Add(event.id, event.rows);
    }
    return true;
}

bool MakeOptions(const LintCommandOptions& given, lint::LintOptions& options, std::string& problem)
{
    options.tags = given.tags;
    options.prefix = given.prefix;
    options.deviceRoot = given.deviceRoot;
    options.disabled.insert(given.disable.begin(), given.disable.end());
    options.only.insert(given.only.begin(), given.only.end());
    for (const auto* ids : {&given.disable, &given.only}) {
        problem = lint::UnknownCheck(*ids);
        if (!problem.empty()) {
            return false;
        }
    }
    for (const std::string& file : given.devices) {
        const auto profiles = lint::ReadDeviceProfiles(file, problem);
        if (!profiles) {
            return false;
        }
        options.devices.insert(options.devices.end(), profiles->begin(), profiles->end());
    }
    return true;
}

bool EndsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// A file from an editor replaces the file of its name; the other file of the rule set is read from the same folder.
// Without a name the sections of the text decide which of the two it is, and it is linted alone.
rule_source::RuleSetFiles FilesOfEditor(const std::string& name)
{
    using rule_source::SourceFile;
    const std::string text{std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
    rule_source::RuleSetFiles files;
    auto edited = SourceFile::Of(name.empty() ? "-" : name, text);
    bool isRuleFile = EndsWith(name, "FaultTreeRules.xml");
    if (name.empty()) {
        for (const auto kind : rule_source::SECTION_KINDS) {
            isRuleFile = isRuleFile || edited->Root().FirstChild(rule_source::SectionName(kind));
        }
        (isRuleFile ? files.rules : files.trees) = std::move(edited);
        return files;
    }
    const std::string own = isRuleFile ? "FaultTreeRules.xml" : "FaultTrees.xml";
    const std::string start = EndsWith(name, own) ? name.substr(0, name.size() - own.size()) : "";
    auto other = SourceFile::Read(start + (isRuleFile ? "FaultTrees.xml" : "FaultTreeRules.xml"));
    // The other file was not asked for: findings about the file itself are reported when the whole rule set is linted.
    other = other->IsLoaded() ? std::move(other) : nullptr;
    files.rules = isRuleFile ? std::move(edited) : std::move(other);
    files.trees = isRuleFile ? std::move(other) : std::move(edited);
    return files;
}

/// Lints one rule set after another.
class LintRunner {
public:
    LintRunner(const LintCommandOptions& given, const lint::LintOptions& options) : mGiven(given), mOptions(options) {}

    void Lint(const std::string& folder)
    {
        const auto files = folder == "-" ? FilesOfEditor(mGiven.stdinFile)
                                         : rule_source::ReadRuleSetFiles(folder, mOptions.prefix);
        for (const auto* file : {files.trees.get(), files.rules.get()}) {
            if (file != nullptr) {
                mRun.files.push_back(file->Path());
            }
        }
        const lint::LintReport report = lint::LintFiles(files, mOptions);
        mIsReadable = mIsReadable && report.isReadable;
        mRun.findings.insert(mRun.findings.end(), report.findings.begin(), report.findings.end());
    }

    lint::LintRun& Run() { return mRun; }
    const lint::LintRun& Run() const { return mRun; }
    bool IsReadable() const { return mIsReadable; }

private:
    const LintCommandOptions& mGiven;
    const lint::LintOptions& mOptions;
    lint::LintRun mRun;
    bool mIsReadable = true;
};

std::string Formatted(const lint::LintRun& run, const LintCommandOptions& options)
{
    const std::string format = options.asJson ? "json" : options.format;
    return format == "json"   ? lint::RunJson(run)
        : format == "short"   ? lint::RunShort(run)
        : format == "github"  ? lint::RunGithub(run)
        : format == "gitlab"  ? lint::RunGitlab(run)
        : format == "sarif"   ? lint::RunSarif(run)
        : format == "junit"   ? lint::RunJunit(run)
                              : LintText(run, AreResultsColoured());
}

bool IsAtLevel(const lint::LintRun& run, const std::string& failLevel)
{
    const lint::Severity level = lint::SeverityOf(failLevel).value_or(lint::Severity::ERROR);
    return std::any_of(run.findings.begin(), run.findings.end(),
        [level](const lint::Finding& finding) { return finding.check->severity >= level; });
}

// Writes the new baseline, if one is asked for: all findings are known then. Returns the reason if it can't.
std::optional<std::string> WriteBaseline(const LintCommandOptions& options, lint::LintRun& run)
{
    if (options.newBaseline.empty()) {
        return std::nullopt;
    }
    const auto problem = lint::Baseline::Write(run.findings, options.newBaseline);
    run.known = run.findings.size();
    run.findings.clear();
    return problem;
}

// Removes the findings that are in the baseline; false, with the reason, if it can't be read.
bool FilterByBaseline(const LintCommandOptions& options, lint::LintRun& run, std::string& problem)
{
    if (options.baseline.empty() || options.withoutBaseline || !options.newBaseline.empty()) {
        return true;
    }
    auto baseline = lint::Baseline::Read(options.baseline, problem);
    if (baseline) {
        run.known = baseline->Filter(run.findings);
    }
    return baseline.has_value();
}

// Lints all folders and leaves out findings of the baseline; false, with the reason, if that can't be read.
bool LintFolders(LintRunner& runner, const LintCommandOptions& given, std::string& problem)
{
    for (const std::string& folder : given.folders) {
        runner.Lint(folder);
    }
    return FilterByBaseline(given, runner.Run(), problem);
}

// The fixes that the tests of the rule sets allow, after printing why others are refused.
std::vector<lint::FileFix> FixesToMake(const lint::LintRun& run, const LintCommandOptions& given)
{
    TestedFixes tested = TestFixes(lint::FixesOf(run.findings, given.withUnsafeFixes), given.tests);
    for (const std::string& refusal : tested.refused) {
        PrintError(refusal);
    }
    return std::move(tested.fixes);
}

// Fixes the files and adds the findings that they mend to `fixed`; false, after printing the reason, if a file can't be written.
bool Fix(const lint::LintRun& run, const LintCommandOptions& given, std::size_t& fixed)
{
    for (const lint::FileFix& fix : FixesToMake(run, given)) {
        if (const auto problem = lint::WriteFix(fix)) {
            PrintError(*problem);
            return false;
        }
        fixed += fix.findings;
    }
    return true;
}

std::string Diff(const lint::LintRun& run, const LintCommandOptions& given)
{
    std::string text;
    for (const lint::FileFix& fix : FixesToMake(run, given)) {
        text += lint::DiffOf(fix);
    }
    return text;
}

ExitStatus Tell(LintRunner& runner, const LintCommandOptions& given)
{
    lint::LintRun& run = runner.Run();
    if (const auto problem = WriteBaseline(given, run)) {
        return WrongUse(*problem);
    }
    PrintResult(given.asDiff ? Diff(run, given) : Formatted(run, given));
    return !runner.IsReadable()              ? ExitStatus::RULE_SET
        : IsAtLevel(run, given.failLevel) ? ExitStatus::FAULT_FOUND
                                          : ExitStatus::SUCCESS;
}

ExitStatus LintAll(const LintCommandOptions& given, const lint::LintOptions& options)
{
    std::string problem;
    LintRunner runner(given, options);
    if (!LintFolders(runner, given, problem)) {
        return WrongUse(problem);
    }
    if (!given.isFixed) {
        return Tell(runner, given);
    }
    // Report the findings that remain in the fixed files.
    LintRunner again(given, options);
    if (!Fix(runner.Run(), given, again.Run().fixed) || !LintFolders(again, given, problem)) {
        return problem.empty() ? ExitStatus::WRONG_USE : WrongUse(problem);
    }
    return Tell(again, given);
}

ExitStatus Explain(const std::string& id)
{
    const std::string unknown = lint::UnknownCheck({id});
    if (!unknown.empty()) {
        return WrongUse(unknown);
    }
    PrintResult(CheckText(*lint::FindCheck(id)));
    return ExitStatus::SUCCESS;
}

ExitStatus Lint(LintCommandOptions given)
{
    if (given.asList) {
        PrintResult(CheckListText());
        return ExitStatus::SUCCESS;
    }
    if (!given.explained.empty()) {
        return Explain(given.explained);
    }
    std::string problem;
    lint::LintOptions options;
    lint::EventCounts counts;
    if (!TakeConfig(given, problem) || !MakeOptions(given, options, problem)
        || (!given.log.empty() && !ReadCounts(given.log, counts, problem))) {
        return WrongUse(problem);
    }
    options.counts = given.log.empty() ? nullptr : &counts;
    options.details.withFingerprints = given.asJson || given.format != "text";
    return LintAll(given, options);
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
        "those below RULES_DIR").Takes("PATH");
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

void AddLintCommand(Command app, ExitStatus& status)
{
    auto options = std::make_shared<LintCommandOptions>();
    Command lint = app.AddCommand("lint", "Find mistakes in rule sets that the engine skips silently");
    lint.Add("RULES_DIR", options->folders, "Folders with FaultTrees.xml and FaultTreeRules.xml; - for a file "
        "on standard input");
    AddSelection(lint, *options);
    AddFixes(lint, *options);
    AddOutput(lint, *options);
    lint.AddFlag("--list", options->asList, "List all checks");
    lint.Add("--explain", options->explained, "Show what a check finds, what happens at run time, and a bad "
        "and a good sample").Takes("ID");
    lint.Footer("Examples:\n  arborist lint examples/laptop/rules\n  arborist lint --explain A303\n"
                 "  arborist lint rules --format sarif --fail-level warning > lint.sarif");
    lint.OnCall([options, &status] {
        if (options->folders.empty() && !options->asList && options->explained.empty()) {
            FailMissing("RULES_DIR");
        }
        if (options->isFixed && std::count(options->folders.begin(), options->folders.end(), "-") > 0) {
            FailExcluded("--fix", "-");
        }
        status = Lint(*options);
    });
}

} // namespace diagnosis::command
