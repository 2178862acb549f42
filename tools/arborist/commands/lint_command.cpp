#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>

#include "diagnosis/lint/baseline.h"
#include "diagnosis/lint/config.h"
#include "diagnosis/lint/fixes.h"
#include "diagnosis/lint/lint.h"
#include "diagnosis/lint/output/formats.h"
#include "diagnosis/lint/registry.h"
#include "diagnosis/results/rule_set_json.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/lint_fixes.h"
#include "tools/arborist/commands/lint_options.h"
#include "tools/arborist/render/lint_text.h"
#include "tools/arborist/terminal/colour.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

using Problem = std::optional<Failure>;

bool IsJson(const LintCommandOptions& options)
{
    return options.asJson || options.format == "json";
}

// Prints why the command can't be carried out, for JSON also as an object on standard output.
ExitStatus Failed(const Failure& failure, const LintCommandOptions& options)
{
    if (IsJson(options)) {
        PrintResult(LintFailureJson(failure) + "\n");
    }
    PrintError(failure.message);
    return failure.status;
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
    (isRuleFile ? files.rules : files.trees) = std::move(edited);
    auto other = SourceFile::Read(start + (isRuleFile ? "FaultTrees.xml" : "FaultTreeRules.xml"));
    // The other file was not asked for: findings about the file itself are reported when the whole rule set is linted.
    if (other->IsLoaded()) {
        (isRuleFile ? files.trees : files.rules) = std::move(other);
    }
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
    const std::string& format = options.format;
    return IsJson(options)    ? lint::RunJson(run)
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

// Writes the new baseline, if one is asked for: all findings are known then.
Problem WriteBaseline(const LintCommandOptions& options, lint::LintRun& run)
{
    if (options.newBaseline.empty()) {
        return std::nullopt;
    }
    const auto problem = lint::Baseline::Write(run.findings, options.newBaseline);
    run.known = run.findings.size();
    run.findings.clear();
    return problem ? Problem(WrongUse(FailureCode::NOT_WRITTEN, *problem)) : std::nullopt;
}

// Removes the findings that are in the baseline.
Problem FilterByBaseline(const LintCommandOptions& options, lint::LintRun& run)
{
    if (options.baseline.empty() || options.withoutBaseline || !options.newBaseline.empty()) {
        return std::nullopt;
    }
    std::string problem;
    auto baseline = lint::Baseline::Read(options.baseline, problem);
    if (!baseline) {
        return WrongUse(FailureCode::BAD_BASELINE, problem);
    }
    run.known = baseline->Filter(run.findings);
    return std::nullopt;
}

// Lints all folders and leaves out findings of the baseline.
Problem LintFolders(LintRunner& runner, const LintCommandOptions& given)
{
    for (const std::string& folder : given.folders) {
        runner.Lint(folder);
    }
    return FilterByBaseline(given, runner.Run());
}

// The fixes that the tests of the rule sets allow, after printing why others are refused.
std::vector<lint::FileFix> FixesToMake(const lint::LintRun& run, const LintCommandOptions& given)
{
    TestedFixes tested = TestFixes(lint::FixesOf(run.findings, given.withUnsafeFixes), given.tests);
    for (const auto* messages : {&tested.notes, &tested.refused}) {
        for (const std::string& message : *messages) {
            PrintError(message);
        }
    }
    return std::move(tested.fixes);
}

// Fixes the files and adds the findings that they mend to `fixed`.
Problem Fix(const lint::LintRun& run, const LintCommandOptions& given, std::size_t& fixed)
{
    for (const lint::FileFix& fix : FixesToMake(run, given)) {
        if (const auto problem = lint::WriteFix(fix)) {
            return WrongUse(FailureCode::NOT_WRITTEN, *problem);
        }
        fixed += fix.findings;
    }
    return std::nullopt;
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
        return Failed(*problem, given);
    }
    PrintResult(given.asDiff ? Diff(run, given) : Formatted(run, given));
    return !runner.IsReadable()              ? ExitStatus::RULE_SET
        : IsAtLevel(run, given.failLevel) ? ExitStatus::FAULT_FOUND
                                          : ExitStatus::SUCCESS;
}

ExitStatus LintAll(const LintCommandOptions& given, const lint::LintOptions& options)
{
    LintRunner runner(given, options);
    if (const auto problem = LintFolders(runner, given)) {
        return Failed(*problem, given);
    }
    if (!given.isFixed) {
        return Tell(runner, given);
    }
    // Report the findings that remain in the fixed files.
    LintRunner again(given, options);
    Problem problem = Fix(runner.Run(), given, again.Run().fixed);
    problem = problem ? problem : LintFolders(again, given);
    if (problem) {
        return Failed(*problem, given);
    }
    return Tell(again, given);
}

ExitStatus Explain(const LintCommandOptions& given)
{
    const std::string unknown = lint::UnknownCheck({given.explained});
    if (!unknown.empty()) {
        return Failed(WrongUse(FailureCode::UNKNOWN_CHECK, unknown), given);
    }
    PrintResult(CheckText(*lint::FindCheck(given.explained)));
    return ExitStatus::SUCCESS;
}

ExitStatus Lint(LintCommandOptions given)
{
    if (given.asList) {
        PrintResult(CheckListText());
        return ExitStatus::SUCCESS;
    }
    if (!given.explained.empty()) {
        return Explain(given);
    }
    lint::LintOptions options;
    lint::EventCounts counts;
    Problem problem = TakeConfig(given);
    problem = problem ? problem : MakeLintOptions(given, counts, options);
    if (problem) {
        return Failed(*problem, given);
    }
    return LintAll(given, options);
}

} // namespace

void AddLintCommand(Command app, ExitStatus& status)
{
    auto options = std::make_shared<LintCommandOptions>();
    Command lint = app.AddCommand("lint", "Find mistakes in rule sets that the engine skips silently");
    lint.Add("RULES_DIR", options->folders, "Folders with FaultTrees.xml and FaultTreeRules.xml; - for a file "
        "on standard input");
    AddLintOptions(lint, *options);
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
