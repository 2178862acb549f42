#include <algorithm>
#include <memory>

#include "diagnosis/cases/case_file.h"
#include "diagnosis/cases/recording.h"
#include "diagnosis/cases/test_run.h"
#include "diagnosis/results/test_json.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/drawing_options.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/render/test_text.h"
#include "tools/arborist/terminal/colour.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

struct TestCommandOptions {
    std::vector<std::string> paths;
    std::string filter;
    BundleOverrides overrides;
    bool asJson = false;
    std::string junit;
    bool requiresReview = false;
    bool withCoverage = false;
    /// Percent; nothing is demanded at 0.
    std::size_t coverageThreshold = 0;
    /// The bundle to record; empty to run cases.
    std::string recorded;
    std::string output;
    CodeRunnerOptions codeRunner;
};

ExitStatus StatusOf(const cases::TestRun& run, const TestCommandOptions& options)
{
    const bool lacksReview = options.requiresReview && run.Unreviewed() > 0;
    const bool lacksCoverage = std::any_of(run.coverage.begin(), run.coverage.end(),
        [&options](const auto& coverage) { return !coverage.Reaches(options.coverageThreshold); });
    return MoreSerious(run.Status(), lacksReview || lacksCoverage ? ExitStatus::FAULT_FOUND : ExitStatus::SUCCESS);
}

std::string SummaryText(const cases::TestRun& run)
{
    std::string text = TestCountsText(run);
    for (const cases::RuleSetCoverage& coverage : run.coverage) {
        text += CoverageText(coverage);
    }
    return text;
}

ExitStatus Test(const TestCommandOptions& options)
{
    cases::TestOptions test;
    test.filter = options.filter;
    test.rules = options.overrides.rules;
    test.withCoverage = options.withCoverage || options.coverageThreshold > 0;
    if (!options.asJson) {
        test.onCase = [](const cases::CaseOutcome& outcome) { PrintResult(CaseText(outcome, AreResultsColoured())); };
    }
    const cases::TestRun run = cases::RunTests(options.paths, test);
    const ExitStatus status = StatusOf(run, options);
    PrintResult(options.asJson ? TestJson(run, status == ExitStatus::SUCCESS) + "\n" : SummaryText(run));
    for (const Failure& failure : run.failures) {
        PrintError(failure.message);
    }
    const ExitStatus written =
        options.junit.empty() ? ExitStatus::SUCCESS : WriteTextFile(MakeBundlePath(options.junit), TestJunit(run));
    return MoreSerious(status, written);
}

ExitStatus Record(const TestCommandOptions& options)
{
    cases::RecordOptions record;
    record.overrides = options.overrides;
    record.codeRunner = MakeCodeRunner(options.codeRunner);
    record.target = options.output;
    const cases::Recording recording = cases::RecordCase(MakeBundlePath(options.recorded), record);
    PrintProblems(options.recorded, recording.warnings, recording.failure);
    return recording.failure ? recording.failure->status
                             : WriteTextFile(MakeBundlePath(options.output), recording.text);
}

void AddRecording(Command app, TestCommandOptions& options)
{
    const Option record = app.Add("--record", options.recorded, "Diagnose this bundle, and write a case that answers as "
        "it does, to be reviewed").Takes("BUNDLE").NotEmpty();
    app.Add("--output", options.output, "File for the recorded case, whose name ends in .test.json; standard output "
        "unless given").Takes("FILE").Needs(record).Check([](const std::string& path) {
            return path.ends_with(cases::CASE_FILE_END)
                ? "" : std::string("does not end in ") + cases::CASE_FILE_END + ": " + path;
        });
    AddOverrides(app, options.overrides);
    AddCodeRunnerOptions(app, options.codeRunner);
}

} // namespace

void AddTestCommand(Command app, ExitStatus& status)
{
    auto options = std::make_shared<TestCommandOptions>();
    Command test = app.AddCommand("test", "Run the tests of rule sets, cases in *.test.json files, or record a case");
    test.Add("PATH", options->paths, "Case files, and folders that have some at any depth");
    test.Add("--filter", options->filter, "Run only cases whose name contains this text").Takes("TEXT");
    AddRules(test, options->overrides);
    test.AddFlag("--json", options->asJson, "One JSON object for all cases");
    test.Add("--junit", options->junit, "Write JUnit's XML to this file, too").Takes("FILE").NotEmpty();
    test.AddFlag("--require-reviewed", options->requiresReview, "Fail if a case was recorded and not reviewed");
    test.AddFlag("--coverage", options->withCoverage, "List what of the rule sets no case has shown, with file and line");
    test.Add("--coverage-threshold", options->coverageThreshold, "The same, and fail if less of the outcomes of a rule "
        "set is covered").Takes("PERCENT").Within(std::size_t{1}, std::size_t{100});
    AddRecording(test, *options);
    test.Footer("Exits with 1 if a case fails or there is none.\n"
                 "Examples:\n  arborist test examples\n"
                 "  arborist test examples/laptop/rules --filter battery --junit tests.xml\n"
                 "  arborist test --record examples/laptop --output laptop.test.json");
    test.OnCall([options, &status] {
        if (!options->recorded.empty() && !options->paths.empty()) {
            FailExcluded("--record", "PATH");
        }
        const BundleOverrides& given = options->overrides;
        if (options->recorded.empty() && (given.isLive || !(given.now + given.asOf + given.tz).empty())) {
            FailMissing("--record");
        }
        if (options->recorded.empty() && options->paths.empty()) {
            FailMissing("PATH");
        }
        status = options->recorded.empty() ? Test(*options) : Record(*options);
    });
}

} // namespace diagnosis::command
