#ifndef ARBORIST_FRAME_EVIDENCE_CODE_H
#define ARBORIST_FRAME_EVIDENCE_CODE_H

#include <optional>
#include <string>
#include <vector>

#include "arborist/frame/comparable.h"

namespace Evidence {

/// The arguments of the host's runner for a code rule, and its answer; no answer without a runner.
struct Code {
    /// The code that the host is to run.
    std::string detectCode;
    /// The ids of fault descriptions that are handed over.
    std::vector<std::string> faultDescriptionIds;
    /// The ids of suggestions that are handed over.
    std::vector<std::string> suggestionIds;
    /// The ids of repairs that are handed over.
    std::vector<std::string> repairIds;
    /// The text that the rule set gives the host along.
    std::string userDefinedInfo;
    /// True if the host found the fault.
    std::optional<bool> answer;

    ARBORIST_COMPARABLE(Code)
};

} // namespace Evidence

#endif
