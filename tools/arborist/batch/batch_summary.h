#ifndef ARBORIST_TOOLS_BATCH_BATCH_SUMMARY_H
#define ARBORIST_TOOLS_BATCH_BATCH_SUMMARY_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "arborist/frame/tree_verdict.h"

namespace diagnosis::command {

/// The verdicts in the order in which they are counted.
inline constexpr std::array<Evidence::TreeVerdict::Word, 4> VERDICTS = {Evidence::TreeVerdict::Word::FAULT,
    Evidence::TreeVerdict::Word::UNDECIDED, Evidence::TreeVerdict::Word::NO_FAULT,
    Evidence::TreeVerdict::Word::NOT_APPLICABLE};

/// Numbers of trees by VERDICTS.
using VerdictCounts = std::array<std::uint32_t, VERDICTS.size()>;

/// The results of a batch in numbers.
struct BatchSummary {
    std::size_t listed = 0;
    /// Bundles that were run to their end, their lines printed or not, and those that an earlier run had.
    std::size_t done = 0;
    /// Lines that an earlier run had.
    std::size_t kept = 0;
    /// Numbers of bundles that were not diagnosed, by the code of their error.
    std::map<std::string, std::size_t> failed;
    /// Numbers of trees by VERDICTS.
    std::array<std::uint64_t, VERDICTS.size()> trees = {};
    double seconds = 0;
    /// Every bundle of the list has its line, and all lines are where they should be.
    bool isComplete = false;
};

/// The summary as one object of JSON, schema "arborist.batch.1", on one line without its end.
std::string SummaryJson(const BatchSummary& summary);

} // namespace diagnosis::command

#endif
