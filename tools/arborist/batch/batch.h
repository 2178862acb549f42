#ifndef ARBORIST_TOOLS_BATCH_BATCH_H
#define ARBORIST_TOOLS_BATCH_BATCH_H

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/bundle/bundle.h"
#include "diagnosis/exit_status.h"
#include "diagnosis/problem.h"
#include "tools/arborist/batch/batch_summary.h"

namespace diagnosis::command {

/// What a batch counts of a bundle that was diagnosed. A fault goes before a tree that is undecided.
enum class BundleOutcome : unsigned char { NO_FAULT, UNDECIDED, FAULT };

/// The result of one bundle of a batch: a line of JSON without the line end, and the exit status for this bundle.
struct BundleAnswer {
    ExitStatus status = ExitStatus::SUCCESS;
    std::string line;
    BundleOutcome outcome = BundleOutcome::NO_FAULT;
    /// Code of the error; empty for a bundle that was diagnosed.
    std::string code = {};
    /// See IsWorthARetry(FailureCode).
    bool isWorthARetry = false;
    VerdictCounts verdicts = {};
};

/// What a batch counts of a bundle with such trees.
BundleOutcome OutcomeOf(const VerdictCounts& verdicts);

/// The functions by which a batch handles its bundles.
struct BatchWork {
    /// Diagnoses a bundle; called in a worker process.
    std::function<BundleAnswer(const BundlePath& bundle)> run;
    /// Makes the result of a bundle whose worker died after so many seconds.
    std::function<BundleAnswer(const BundlePath& bundle, const Failure& failure, double seconds)> fail;
    /// Sets the answer that an earlier run had for a bundle by its number in the list, which is not run again; nothing for
    /// one without. False if it can't be read, which ends the batch: run again, the bundle would hide that. May be empty.
    /// Asked once for each, before the bundle is run.
    std::function<bool(std::size_t bundle, std::optional<BundleAnswer>& answer)> keep;
    /// Receives the summary before a signal ends the process. May be empty.
    std::function<void(const BatchSummary& summary)> interrupted;
    /// Writes results, lines with their line ends. False if it could not be written, which ends the batch.
    std::function<bool(const std::string& line)> print;
};

/// On Windows no process is forked: bundles run one after the other, in this process, which can't give one up.
#ifdef _WIN32
inline constexpr bool HAS_WORKER_PROCESSES = false;
#else
inline constexpr bool HAS_WORKER_PROCESSES = true;
#endif
/// The seconds for a bundle, and the number of worker processes, unless others are given.
inline constexpr double DEFAULT_TIMEOUT = HAS_WORKER_PROCESSES ? 300 : 0;
std::size_t DefaultJobs();

struct BatchOptions {
    /// Worker processes, at least one.
    std::size_t jobs = 1;
    /// Prints lines in the order of the list instead of the order in which they are ready.
    bool isOrdered = false;
    /// Time limit for each bundle; zero for none.
    std::chrono::milliseconds timeout = {};
    /// How often a bundle is run again whose error is worth another try.
    std::size_t retries = 0;
    /// Bundles that could not be diagnosed, or not with all that was asked for, don't count for the status.
    bool forgivesBundles = false;
};

/// Why no batch can be run so: options that need worker processes where there are none.
std::optional<std::string> BatchProblem(const BatchOptions& options);

/// Runs all bundles in worker processes and prints exactly one line for each: a worker that crashes or exceeds the time
/// limit costs only its own bundle and is replaced. Shows its Progress on standard error. Returns the most serious
/// status, and fills in the summary if there is one.
///
/// Answers of an earlier run come first, so that a run that is killed has them all; with an order, in theirs. Bundles are
/// run again at the end, when the machine may have what it lacked.
///
/// Call it before the process has a second thread, as the workers are forked. On SIGHUP, SIGINT, SIGPIPE (the reader of
/// the results has left) and SIGTERM it ends the workers, removes their temporary files and then ends the process by
/// the signal.
ExitStatus RunBatch(const std::vector<BundlePath>& bundles, const BatchWork& work, const BatchOptions& options,
    BatchSummary* summary = nullptr);

} // namespace diagnosis::command

#endif
