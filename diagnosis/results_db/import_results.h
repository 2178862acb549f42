#ifndef ARBORIST_DIAGNOSIS_RESULTS_DB_IMPORT_RESULTS_H
#define ARBORIST_DIAGNOSIS_RESULTS_DB_IMPORT_RESULTS_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "diagnosis/problem.h"
#include "diagnosis/results_db/result_line.h"

namespace diagnosis::results_db {

struct ImportOptions {
    /// Also keep the evidence of lines that are explained.
    bool withEvidence = false;
    /// Accept lines of several rule sets.
    bool acceptsMixedRules = false;
    /// Pass over lines that can't be used.
    bool skipsBadLines = false;
    /// Changes each line before it is added, so that the database doesn't have what must not be in it; may be null.
    std::function<void(ResultLine& line)> redact = nullptr;
    /// Asked while another process has the database locked, or makes it, with the number of tries so far: true to try
    /// again. See WaitForOthers. Without it the import fails then.
    std::function<bool(int tries)> tryAgain = nullptr;
};

struct ImportCounts {
    std::int64_t added = 0;
    /// Lines that took the place of that of a bundle that had failed, also of one that this import added.
    std::int64_t replaced = 0;
    /// Lines that were there already, or of a failure where there is a result.
    std::int64_t there = 0;
    std::int64_t skipped = 0;
};

struct ImportReport {
    ImportCounts counts;
    /// The lines that can't be used, each with its place (the first twenty), or why nothing can be imported. Without
    /// skipsBadLines nothing was imported if there is one.
    std::vector<Failure> failures;
    /// With skipsBadLines: nothing else than lines that can't be used went wrong.
    bool isImported = false;
};

/// Adds the result lines of `files` ("-" for standard input) to the results database `target`, which is created with
/// the folders above it if it is not there: all in one transaction, or nothing.
ImportReport ImportResults(const std::vector<std::string>& files, const std::string& target, const ImportOptions& options);

} // namespace diagnosis::results_db

#endif
