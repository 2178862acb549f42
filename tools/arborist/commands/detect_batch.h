#ifndef ARBORIST_TOOLS_COMMANDS_DETECT_BATCH_H
#define ARBORIST_TOOLS_COMMANDS_DETECT_BATCH_H

#include <string>
#include <vector>

#include "tools/arborist/batch/batch.h"
#include "tools/arborist/commands/shared_options.h"

namespace diagnosis::command {

/// What the command detect takes.
struct DetectOptions {
    std::vector<std::string> bundles;
    RunOptions run;
    /// A file with bundles, or "-"; empty for none.
    std::string list;
    bool isListNulEnded = false;
    /// "2/8" for one shard of the list; empty for the whole.
    std::string shard;
    /// The file for the lines of a batch; empty for standard output.
    std::string output;
    /// A file with the lines of an earlier run of the batch; empty for none.
    std::string earlier;
    /// The file for the summary of a batch; empty for none.
    std::string summary;
    BatchOptions batch;
    double timeout = DEFAULT_TIMEOUT;
    bool asJson = false;
    bool failsOnFault = false;
};

/// The exit status for a report with all that makes detect fail.
ExitStatus StatusOf(const DetectionReport& report, const DetectOptions& options);

/// --batch and the options that need it.
void AddBatchOptions(Command detect, DetectOptions& options);

/// Runs the batch of --batch; the options of the detections are ready.
ExitStatus DetectBatch(DetectOptions& options);

} // namespace diagnosis::command

#endif
