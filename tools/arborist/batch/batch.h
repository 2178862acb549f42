#ifndef ARBORIST_TOOLS_BATCH_BATCH_H
#define ARBORIST_TOOLS_BATCH_BATCH_H

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "diagnosis/bundle/bundle.h"
#include "diagnosis/exit_status.h"
#include "diagnosis/problem.h"

namespace diagnosis::command {

/// The result of one bundle of a batch: a line of JSON, without the line end, and its part of the exit status.
struct BundleAnswer {
    ExitStatus status = ExitStatus::SUCCESS;
    std::string line;
    bool isFault = false;
};

/// How a batch works on a bundle.
struct BatchWork {
    /// Runs a bundle; called in a worker process.
    std::function<BundleAnswer(const BundlePath& bundle)> run;
    /// The answer for a bundle that took its worker with it.
    std::function<BundleAnswer(const BundlePath& bundle, const Failure& failure)> fail;
    /// Takes one result, a whole line with its end. False if it could not be written, which ends the batch.
    std::function<bool(const std::string& line)> print;
};

struct BatchOptions {
    /// Worker processes, at least one.
    std::size_t jobs = 1;
    /// Lines in the order of the list instead of that of their making.
    bool isOrdered = false;
    /// For each bundle; zero for no limit.
    std::chrono::milliseconds timeout = {};
};

/// Runs all bundles in worker processes and prints exactly one line for each, whatever happens to it: a worker that
/// crashes or runs past its time costs its own bundle and is replaced. Shows its Progress on standard error. Returns the
/// most serious status.
///
/// Call it before the process has a second thread: the workers are forks of it. SIGHUP, SIGINT, SIGPIPE (a reader of
/// the results who left) and SIGTERM end the workers, remove their temporary files and then end the process.
ExitStatus RunBatch(const std::vector<BundlePath>& bundles, const BatchWork& work, const BatchOptions& options);

} // namespace diagnosis::command

#endif
