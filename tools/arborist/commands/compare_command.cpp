#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string_view>
#include <system_error>
#include <unordered_set>

#include "diagnosis/detection/detection.h"
#include "diagnosis/results/compare_json.h"
#include "diagnosis/results/detection_json.h"
#include "diagnosis/results_db/results_diff.h"
#include "diagnosis/rule_set/difference.h"
#include "diagnosis/rule_set/read_rule_set.h"
#include "diagnosis/scratch/scratch.h"
#include "tools/arborist/batch/batch.h"
#include "tools/arborist/batch/bundle_list.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/each_bundle.h"
#include "tools/arborist/commands/rules_making.h"
#include "tools/arborist/commands/seconds.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/render/compare_text.h"
#include "tools/arborist/terminal/colour.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

using results_db::ResultsDiff;
using rule_set::ReadRuleSet;

struct CompareOptions {
    /// The folders of the rule sets, the one before and the one after, as given.
    std::vector<std::string> rules;
    std::string prefix;
    /// A file with bundles, or "-".
    std::string list;
    bool isListNulEnded = false;
    /// "new", "gone" or "any"; empty for never.
    std::string failOn;
    bool asJson = false;
    double timeout = DEFAULT_TIMEOUT;
    BatchOptions batch;
    DetectionOptions detection;
    CodeRunnerOptions codeRunner;
    LogOptions log;
};

/// The lines of both rule sets, each in a file: an answer has one of each, in this order.
class Lines {
public:
    explicit Lines(const Scratch& folder) : mPaths{folder.Path("before.jsonl"), folder.Path("after.jsonl")}
    {
        for (std::size_t side = 0; side < 2; ++side) {
            mFiles[side].open(mPaths[side], std::ios::binary);
        }
    }

    bool Write(const std::string& lines)
    {
        for (std::size_t begin = 0; begin < lines.size();) {
            const std::size_t end = lines.find('\n', begin) + 1;
            mFiles[mSide] << std::string_view(lines).substr(begin, end - begin);
            mSide = 1 - mSide;
            begin = end;
        }
        return mFiles[0].good() && mFiles[1].good();
    }
    bool Close()
    {
        mFiles[0].close();
        mFiles[1].close();
        return mFiles[0].good() && mFiles[1].good();
    }
    const std::string& Path(std::size_t side) const { return mPaths[side]; }

private:
    std::string mPaths[2];
    std::ofstream mFiles[2];
    std::size_t mSide = 0;
};

BundleAnswer AnswerOf(const DetectionReport& before, const DetectionReport& after)
{
    // The comparison reports bundles that can't be compared.
    const auto outcome = after.IsFault() ? BundleOutcome::FAULT
        : after.IsUndecided() ? BundleOutcome::UNDECIDED : BundleOutcome::NO_FAULT;
    const ExitStatus status = after.failure ? after.failure->status : ExitStatus::SUCCESS;
    return {status, DetectionJson(before) + "\n" + DetectionJson(after), outcome};
}

BatchWork MakeWork(const CompareOptions& options, const std::vector<std::string>& rules, Lines& lines)
{
    BatchWork work;
    work.run = [&options, rules](const BundlePath& bundle) {
        const auto reports = RunDetections(bundle, options.detection, rules);
        return AnswerOf(reports.front(), reports.back());
    };
    work.fail = [](const BundlePath& bundle, const Failure& failure, double seconds) {
        DetectionReport report;
        report.bundle = bundle.given;
        report.failure = failure;
        report.seconds = seconds;
        return AnswerOf(report, report);
    };
    work.print = [&lines](const std::string& text) { return lines.Write(text); };
    return work;
}

// Runs both rule sets over all bundles. Returns the most serious status of them; sets `isRun` to false, after a message,
// if the batch could not be run to its end or what it gave can't be kept.
ExitStatus Run(CompareOptions& options, const std::vector<std::string>& names, Lines& lines, bool& isRun)
{
    std::vector<std::string> rules;
    options.detection.ruleSets = std::make_shared<RuleSetMemory>();
    for (const std::string& folder : options.rules) {
        rules.push_back(MakeRulesPath(folder));
        options.detection.ruleSets->CheckFolder(rules.back());
    }
    options.detection.isForLine = true;
    options.detection.codeRunner = MakeCodeRunner(options.codeRunner);
    BatchSummary summary;
    const ExitStatus status = RunBatch(BundlePaths(names), MakeWork(options, rules, lines), options.batch, &summary);
    isRun = summary.isComplete;
    if (!lines.Close()) {
        PrintError("the results can't be written to the temporary folder");
        isRun = false;
    }
    return isRun ? status : ExitStatus::INTERNAL;
}

// Such a corpus, a mistyped one perhaps, shows nothing of the rule sets.
bool IsNothingDiagnosed(const ResultsDiff& diff)
{
    return diff.before.failed == diff.before.bundles && diff.after.failed == diff.after.bundles;
}

bool IsToFail(const CompareOptions& options, const ResultsDiff& diff)
{
    return (options.failOn == "new" && diff.Added() > 0) || (options.failOn == "gone" && diff.Gone() > 0)
        || (options.failOn == "any" && diff.HasDifference());
}

std::string PlaceOf(const std::string& name)
{
    std::error_code error;
    return (std::filesystem::absolute(name, error) / ".").lexically_normal().generic_string();
}

// A second run of a bundle would say nothing more, whether by its name or by another path to it.
void DropRepeats(std::vector<std::string>& names)
{
    std::unordered_set<std::string> known;
    const std::size_t listed = names.size();
    std::erase_if(names, [&known](const std::string& name) { return !known.insert(PlaceOf(name)).second; });
    if (names.size() < listed) {
        PrintError("the list repeats bundles: of " + std::to_string(listed) + " entries, " + std::to_string(names.size())
            + (names.size() == 1 ? " is run" : " are run"));
    }
}

ExitStatus Fail(const CompareOptions& options, const Failure& failure)
{
    if (options.asJson) {
        PrintResult(CompareFailureJson(failure) + "\n");
    }
    return FailureStatus(failure);
}

ExitStatus Compare(CompareOptions& options)
{
    if (!IsLogOpen(options.log)) {
        return ExitStatus::WRONG_USE;
    }
    ReadRuleSet before;
    ReadRuleSet after;
    for (const auto& failure : {ReadInto({options.rules.front(), options.prefix, ""}, before),
             ReadInto({options.rules.back(), options.prefix, ""}, after)}) {
        if (failure) {
            return Fail(options, *failure);
        }
    }
    std::vector<std::string> names;
    if (const auto problem = ReadBundleList(options.list, options.isListNulEnded, names)) {
        PrintError(*problem);
        return ExitStatus::WRONG_USE;
    }
    if (names.empty()) {
        PrintError((options.list == "-" ? "standard input" : options.list) + ": names no bundle");
        return ExitStatus::WRONG_USE;
    }
    DropRepeats(names);
    Scratch folder;
    if (const auto failure = folder.Make()) {
        return Fail(options, *failure);
    }
    Lines lines(folder);
    ResultsDiff diff;
    bool isRun = false;
    const ExitStatus status = Run(options, names, lines, isRun);
    if (!isRun) {
        return status;
    }
    if (const auto failure = CompareResults(lines.Path(0), lines.Path(1), diff)) {
        return Fail(options, *failure);
    }
    diff.before.path = options.rules.front();
    diff.after.path = options.rules.back();
    const auto changes = rule_set::DifferencesOf(before, after);
    PrintResult(options.asJson ? CompareJson(before, after, changes, diff) + "\n"
                               : CompareText(changes, diff, Colour(AreResultsColoured())));
    if (IsNothingDiagnosed(diff)) {
        PrintError("no bundle could be diagnosed, with either rule set");
        return status;
    }
    return IsToFail(options, diff) ? ExitStatus::FAULT_FOUND : ExitStatus::SUCCESS;
}

void AddListOptions(Command compare, CompareOptions& options)
{
    static constexpr std::size_t MOST_JOBS = 1024;
    options.batch.jobs = DefaultJobs();
    compare.Add("--batch", options.list, "Bundles to run both rule sets over, one a line; - for standard input")
        .Takes("LIST").Required().NotEmpty();
    compare.AddFlag("-0,--null", options.isListNulEnded, "The list's entries end in NUL characters, as of find -print0");
    compare.Add("--jobs,-j", options.batch.jobs, "Worker processes; as many as there are processors unless given")
        .Takes("N").Within(std::size_t{1}, MOST_JOBS);
    AddSeconds(compare, "--timeout", options.timeout, 0, "Seconds that one bundle may take, with both rule sets; 0 for no limit");
}

} // namespace

void AddCompareCommand(Command app, ExitStatus& status)
{
    auto options = std::make_shared<CompareOptions>();
    Command compare = app.AddCommand("compare", "Run two rule sets over the same bundles, and tell where their results differ");
    compare.Add("--rules", options->rules, "Folder of a rule set; twice: the one before and the one after")
        .Takes("DIR").Required().NotEmpty();
    compare.Add("--prefix", options->prefix, "The rule files are named with this and \"_\" in front, as \"ruleFilePrefix\" of the "
        "bundles says").Takes("PREFIX");
    AddListOptions(compare, *options);
    compare.Add("--fail-on", options->failOn, "Exit with 1 for a root cause that is new or gone, or for any difference")
        .Takes("WHAT").OneOf({"new", "gone", "any"});
    compare.AddFlag("--json", options->asJson, "One JSON object");
    AddMoments(compare, options->detection.overrides);
    AddCodeRunnerOptions(compare, options->codeRunner);
    AddSeconds(compare, "--time-limit", options->detection.overrides.timeLimit, 0, "Seconds after which a detection stops: trees "
        "that are not decided by then are undecided; 0 for no limit");
    AddLogOptions(compare, options->log);
    compare.Footer("Each bundle is unpacked once for both.\nExample:\n"
                   "  arborist compare --rules old/rules --rules new/rules --batch corpus.txt --fail-on gone");
    compare.OnCall([options, &status] {
        if (options->rules.size() != 2) {
            FailUse("--rules must be given twice: the rule set before and the one after");
        }
        options->batch.timeout = Milliseconds(options->timeout);
        if (const auto problem = BatchProblem(options->batch)) {
            FailUse(*problem);
        }
        status = Compare(*options);
    });
}

} // namespace diagnosis::command
