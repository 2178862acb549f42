#include "tools/arborist/commands/detect_batch.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <utility>

#include "diagnosis/results/detection_json.h"
#include "diagnosis/scratch/new_file.h"
#include "tools/arborist/batch/bundle_list.h"
#include "tools/arborist/batch/earlier_lines.h"
#include "tools/arborist/commands/each_bundle.h"
#include "tools/arborist/commands/seconds.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

BundleAnswer AnswerOf(const DetectionReport& report, ExitStatus status)
{
    BundleAnswer answer{status, DetectionJson(report)};
    for (const TreeReport& tree : report.trees) {
        const auto word = std::find(VERDICTS.begin(), VERDICTS.end(), tree.verdict.word);
        ++answer.verdicts[static_cast<std::size_t>(word - VERDICTS.begin())];
    }
    answer.outcome = OutcomeOf(answer.verdicts);
    answer.code = report.failure ? CodeWord(report.failure->code) : "";
    answer.isWorthARetry = report.failure && IsWorthARetry(report.failure->code);
    return answer;
}

// Its status as if the bundle had been run, apart from that of warnings, which the line of an earlier run doesn't have.
void CompleteStatus(std::optional<BundleAnswer>& answer, const DetectOptions& options)
{
    if (answer && options.failsOnFault && answer->outcome == BundleOutcome::FAULT) {
        answer->status = MoreSerious(answer->status, ExitStatus::FAULT_FOUND);
    }
    if (answer && (options.run.failsOnUndecided || options.run.isStrict) && answer->verdicts[1] > 0) {
        answer->status = MoreSerious(answer->status, ExitStatus::UNDECIDED);
    }
}

// Returns the reason if they can't be read, or would be read while they are written.
std::optional<std::string> ReadEarlierLines(const DetectOptions& options, EarlierLines& earlier)
{
    if (options.earlier.empty()) {
        return std::nullopt;
    }
    if (options.output.empty() && IsOneFile(options.earlier, "/dev/stdout")) {
        return options.earlier + ": is standard output, too; --output may name the same file";
    }
    return earlier.Read(options.earlier, options.bundles);
}

// A path that is equal for the same file, also for one that doesn't exist yet.
std::filesystem::path PlaceOf(const std::string& path)
{
    std::error_code error;
    const auto absolute = std::filesystem::absolute(path, error);
    const auto place = std::filesystem::weakly_canonical(absolute, error);
    return error ? absolute.lexically_normal() : place;
}

// Returns the reason if an output would replace an input or another output. Only FILE of --resume may be the output: it
// has been read by then, and all its lines that are still valid are in the output.
std::optional<std::string> FileUsedTwice(const DetectOptions& options)
{
    struct Use {
        std::string option;
        std::string path;
    };
    const Use list = {"--batch", options.list == "-" ? "/dev/stdin" : options.list};
    const Use output = {options.output.empty() ? "standard output" : "--output",
        options.output.empty() ? "/dev/stdout" : options.output};
    const Use summary = {"--summary", options.summary};
    std::vector<std::pair<Use, Use>> pairs = {{output, summary}, {{"--resume", options.earlier}, summary}, {list, summary}};
    if (!options.output.empty()) {
        pairs.emplace_back(list, output);
    }
    for (const auto& [one, other] : pairs) {
        if (!one.path.empty() && !other.path.empty()
            && (IsOneFile(one.path, other.path) || PlaceOf(one.path) == PlaceOf(other.path))) {
            return other.path + ": is the file of " + one.option + ", too, which " + other.option + " would replace";
        }
    }
    return std::nullopt;
}

// Returns the reason if an output can't be written, before hours of work are lost to it.
std::optional<std::string> FileProblem(const DetectOptions& options)
{
    if (const auto problem = FileUsedTwice(options)) {
        return problem;
    }
    NewFile summary;
    const auto problem = options.summary.empty() ? std::nullopt : summary.Make(options.summary);
    return problem ? std::optional(options.summary + ": " + *problem) : std::nullopt;
}

ExitStatus WriteSummary(const std::string& path, const BatchSummary& summary)
{
    const auto problem = path.empty() ? std::nullopt : WriteNewFile(path, SummaryJson(summary) + "\n");
    if (problem) {
        PrintError(*problem);
        return ExitStatus::INTERNAL;
    }
    return ExitStatus::SUCCESS;
}

BatchWork MakeBatchWork(const DetectOptions& options, EarlierLines& earlier)
{
    BatchWork work;
    work.run = [&options](const BundlePath& bundle) {
        const DetectionReport report = RunDetection(bundle, options.run.detection);
        return AnswerOf(report, StatusOf(report, options));
    };
    work.fail = [](const BundlePath& bundle, const Failure& failure, double seconds) {
        DetectionReport report;
        report.bundle = bundle.given;
        report.failure = failure;
        report.seconds = seconds;
        return AnswerOf(report, failure.status);
    };
    if (earlier.Count() > 0) {
        work.keep = [&options, &earlier](std::size_t bundle, std::optional<BundleAnswer>& answer) {
            if (!earlier.AnswerOf(bundle, answer)) {
                PrintError(options.earlier + ": can't be read again: was it changed meanwhile?");
                return false;
            }
            CompleteStatus(answer, options);
            return true;
        };
    }
    work.interrupted = [&options](const BatchSummary& summary) { WriteSummary(options.summary, summary); };
    work.print = [](const std::string& line) {
        PrintResult(line);
        return std::cout.good();
    };
    return work;
}

ExitStatus WrongUse(const std::string& message)
{
    PrintError(message);
    return ExitStatus::WRONG_USE;
}

// Creates the file under its name only at the end, and only if all lines are in it, so that it is complete whenever it
// exists.
ExitStatus RunBatchIntoFile(const std::vector<BundlePath>& bundles, BatchWork work, const DetectOptions& options,
    BatchSummary& summary)
{
    NewFile output;
    if (const auto problem = output.Make(options.output)) {
        return WrongUse(options.output + ": " + *problem);
    }
    std::ofstream file(output.TemporaryPath(), std::ios::binary);
    work.print = [&file](const std::string& line) { return static_cast<bool>(file << line); };
    const ExitStatus status = RunBatch(bundles, work, options.batch, &summary);
    file.close();
    if (file && !summary.isComplete) {
        return status; // RunBatch or its work has printed why
    }
    const auto problem = file ? output.PutInPlace() : "could not be written";
    if (problem) {
        summary.isComplete = false;
        PrintError(options.output + ": " + *problem);
        return ExitStatus::INTERNAL;
    }
    return status;
}

} // namespace

ExitStatus StatusOf(const DetectionReport& report, const DetectOptions& options)
{
    const ExitStatus status = StatusOf(report, options.run);
    return options.failsOnFault && report.IsFault() ? MoreSerious(status, ExitStatus::FAULT_FOUND) : status;
}

ExitStatus DetectBatch(DetectOptions& options)
{
    if (const auto problem = FileProblem(options)) {
        return WrongUse(*problem);
    }
    if (const auto problem = ReadBundleList(options.list, options.isListNulEnded, options.bundles)) {
        return WrongUse(*problem);
    }
    if (options.bundles.empty()) {
        return WrongUse((options.list == "-" ? "standard input" : options.list) + ": names no bundle");
    }
    options.bundles = TakeShard(options.bundles, ParseShard(options.shard).value_or(Shard{}));
    options.batch.timeout = Milliseconds(options.timeout);
    if (const auto problem = BatchProblem(options.batch)) {
        return WrongUse(*problem);
    }
    options.run.detection.ruleSets->KeepLoaded();
    if (!options.run.detection.overrides.rules.empty()) {
        // A rule set from the command line is read here, and those of foreign bundles in the workers, which may crash.
        options.run.detection.ruleSets->CheckFolder(options.run.detection.overrides.rules);
    }
    EarlierLines earlier;
    if (const auto problem = ReadEarlierLines(options, earlier)) {
        return WrongUse(*problem);
    }
    const std::vector<BundlePath> bundles = BundlePaths(options.bundles);
    const BatchWork work = MakeBatchWork(options, earlier);
    BatchSummary summary;
    const ExitStatus status = options.output.empty() ? RunBatch(bundles, work, options.batch, &summary)
                                                     : RunBatchIntoFile(bundles, work, options, summary);
    return MoreSerious(status, WriteSummary(options.summary, summary));
}

void AddBatchOptions(Command detect, DetectOptions& options)
{
    static constexpr std::size_t MOST_JOBS = 1024;
    static constexpr std::size_t MOST_RETRIES = 100;
    options.batch.jobs = DefaultJobs();
    const Option batch = detect.Add("--batch", options.list, "Diagnose the bundles of this list, one a line; - "
        "for standard input. Prints one JSON object a line for each, whatever happens to it")
        .Takes("LIST")
        .NotEmpty();
    detect.AddFlag("-0,--null", options.isListNulEnded, "The list's entries end in NUL characters, as of find -print0")
        .Needs(batch);
    detect.Add("--jobs,-j", options.batch.jobs, "Worker processes of a batch; as many as there are processors "
        "unless given")
        .Takes("N")
        .Within(std::size_t{1}, MOST_JOBS)
        .Needs(batch);
    detect.Add("--shard", options.shard, "Work on every N-th bundle of the list, from the I-th on: 1/8 to 8/8 "
        "have each bundle once")
        .Takes("I/N")
        .Check([](const std::string& text) {
            return ParseShard(text) ? "" : "is no shard I/N with I from 1 to N: " + text;
        })
        .Needs(batch);
    detect.Add("--output,-o", options.output, "Write the lines of a batch into this file, which appears when "
        "all are in it")
        .Takes("FILE")
        .NotEmpty()
        .Needs(batch);
    detect.AddFlag("--ordered", options.batch.isOrdered, "Lines of a batch in the order of the list").Needs(batch);
    detect.Add("--resume", options.earlier, "Pass over the bundles that have a line in this file, of an earlier run, and "
        "print these lines anew; lines with an error that is worth a retry don't count")
        .Takes("FILE")
        .NotEmpty()
        .Needs(batch);
    detect.Add("--retries", options.batch.retries, "How often to run a bundle of a batch again whose error is worth a "
        "retry; 0 unless given")
        .Takes("N")
        .Within(std::size_t{0}, MOST_RETRIES)
        .Needs(batch);
    detect.Add("--summary", options.summary, "Write what a batch came to into this file, as one JSON object")
        .Takes("FILE")
        .NotEmpty()
        .Needs(batch);
    detect.AddFlag("--exit-zero-on-bundle-errors", options.batch.forgivesBundles, "Bundles of a batch that can't be "
        "diagnosed don't change the exit status: it speaks of the batch")
        .Needs(batch);
    AddSeconds(detect, "--timeout", options.timeout, 0, "Seconds that one bundle of a batch may take; 0 for no limit")
        .Needs(batch);
}

} // namespace diagnosis::command
