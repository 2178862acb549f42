#include <cstdint>
#include <map>
#include <memory>

#include "diagnosis/redaction/line_redaction.h"
#include "diagnosis/results/results_diff_json.h"
#include "diagnosis/results/results_import_json.h"
#include "diagnosis/results_db/import_results.h"
#include "diagnosis/results_db/results_database.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/render/results_diff_text.h"
#include "tools/arborist/terminal/colour.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

struct ResultsImportOptions {
    std::vector<std::string> files;
    std::string target;
    /// The redaction file; empty for none.
    std::string redaction;
    results_db::ImportOptions import;
    bool asJson = false;
};

// "1,000 added, 2 replaced, 3 there already, 1 skipped"
std::string Summary(const results_db::ImportCounts& counts)
{
    std::string text = std::to_string(counts.added) + " added";
    const std::pair<std::int64_t, const char*> others[] = {
        {counts.replaced, " replaced"}, {counts.there, " there already"}, {counts.skipped, " skipped"}};
    for (const auto& [count, what] : others) {
        text += count == 0 ? "" : ", " + std::to_string(count) + what;
    }
    return text;
}

using RedactedParts = std::map<std::string, std::uint64_t>;

// What was replaced, a line for each part: "replaced: details, 12 values".
void PrintReplaced(const RedactedParts& parts)
{
    for (const auto& [part, count] : parts) {
        const std::string many = count == 1 ? "" : "s";
        PrintError(part == "explanation" ? "left out: the evidence of " + std::to_string(count) + " event" + many
                                         : "replaced: " + part + ", " + std::to_string(count) + " value" + many);
    }
}

ExitStatus Tell(const ResultsImportOptions& options, const results_db::ImportReport& report, const RedactedParts& redacted = {})
{
    ExitStatus status = ExitStatus::SUCCESS;
    for (const Failure& failure : report.failures) {
        PrintError(failure.message);
        status = MoreSerious(status, failure.status);
    }
    if (options.asJson) {
        PrintResult(ResultsImportJson(options.target, report, redacted) + "\n");
    } else if (report.isImported) {
        PrintError(options.target + ": " + Summary(report.counts));
        PrintReplaced(redacted);
    }
    return report.isImported ? ExitStatus::SUCCESS : status;
}

ExitStatus ImportRedacted(ResultsImportOptions options)
{
    Redaction redaction;
    auto failure = ReadRedactionFile(options.redaction, redaction);
    if (!failure && redaction.results.empty()) {
        failure = Failure{FailureCode::BAD_REDACTION, options.redaction + ": lists nothing under \"results\""};
    }
    if (failure) {
        results_db::ImportReport report;
        report.failures = {*failure};
        return Tell(options, report);
    }
    LineRedaction lines(redaction);
    options.import.redact = [&lines](results_db::ResultLine& line) { lines.Redact(line); };
    const results_db::ImportReport report = ImportResults(options.files, options.target, options.import);
    return Tell(options, report, report.isImported ? lines.GetCounts() : RedactedParts());
}

ExitStatus Import(const ResultsImportOptions& options)
{
    return options.redaction.empty() ? Tell(options, ImportResults(options.files, options.target, options.import))
                                     : ImportRedacted(options);
}

void AddImportCommand(Command results, ExitStatus& status)
{
    auto options = std::make_shared<ResultsImportOptions>();
    Command import = results.AddCommand("import", "Put lines of \"detect --json\" into a database that SQL can ask");
    import.Add("FILE", options->files, "JSON Lines of detect --json or --batch; - for standard input")
        .Required()
        .NotEmpty();
    import.Add("--to", options->target, "The results database, made with its folders if it is not there")
        .Takes("R.DB")
        .Required()
        .NotEmpty();
    import.AddFlag("--evidence", options->import.withEvidence, "Also keep the evidence of lines made with --explain");
    import.AddFlag("--mixed-rules", options->import.acceptsMixedRules, "Accept lines of several rule sets");
    import.AddFlag("--skip-bad-lines", options->import.skipsBadLines, "Pass over lines that can't be used");
    import.Footer("Importing lines again adds nothing. A line that can't be used is named, and nothing is imported.\n"
                  "Example:\n  arborist results import results.jsonl --to results.db");
    import.Add("--redact", options->redaction, "Replace the parts of lines that this JSON file lists under \"results\" by keyed "
        "hashes, and tell how many were").Takes("FILE").NotEmpty();
    import.AddFlag("--json", options->asJson, "What was imported as one JSON object");
    options->import.tryAgain = results_db::WaitForOthers;
    import.OnCall([options, &status] { status = Import(*options); });
}

struct ResultsDiffOptions {
    std::string before;
    std::string after;
    bool asJson = false;
    bool exitsByDifference = false;
};

ExitStatus Diff(const ResultsDiffOptions& options)
{
    if (options.before == "-" && options.after == "-") {
        PrintError("OLD and NEW can't both be standard input");
        return ExitStatus::WRONG_USE;
    }
    results_db::ResultsDiff diff;
    if (const auto failure = CompareResults(options.before, options.after, diff)) {
        if (options.asJson) {
            PrintResult(ResultsDiffFailureJson(*failure) + "\n");
        }
        PrintError(failure->message);
        return failure->status;
    }
    PrintResult(options.asJson ? ResultsDiffJson(diff) + "\n" : ResultsDiffText(diff, Colour(AreResultsColoured())));
    return options.exitsByDifference && diff.HasDifference() ? ExitStatus::FAULT_FOUND : ExitStatus::SUCCESS;
}

void AddDiffCommand(Command results, ExitStatus& status)
{
    auto options = std::make_shared<ResultsDiffOptions>();
    Command diff = results.AddCommand("diff", "Tell where two results of the same bundles differ");
    diff.Add("OLD", options->before, "The results before: JSON Lines, or a results database; - for standard input")
        .Required()
        .NotEmpty();
    diff.Add("NEW", options->after, "The results after").Required().NotEmpty();
    diff.AddFlag("--exit-code", options->exitsByDifference, "Exit with 1 if they differ");
    diff.AddFlag("--json", options->asJson, "One JSON object");
    diff.Footer("Results that failed, are undecided or are missing on a side are not comparable: neither new nor gone.\n"
                "Example:\n  arborist results diff before.jsonl after.jsonl");
    diff.OnCall([options, &status] { status = Diff(*options); });
}

} // namespace

void AddResultsCommand(Command app, ExitStatus& status)
{
    Command results = app.AddCommand("results", "Results of many bundles: ask them, compare them");
    results.RequireCommand();
    results.Footer("Example:\n  arborist results import results.jsonl --to results.db");
    AddImportCommand(results, status);
    AddDiffCommand(results, status);
    AddResultsReportCommand(results, status);
}

} // namespace diagnosis::command
