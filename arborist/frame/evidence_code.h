#ifndef ARBORIST_FRAME_EVIDENCE_CODE_H
#define ARBORIST_FRAME_EVIDENCE_CODE_H

#include <optional>
#include <string>
#include <vector>

#include "arborist/frame/comparable.h"

namespace Evidence {

/// The arguments that a code rule passes to the host's runner, and the runner's answer.
struct Code {
    /// The detection code of the rule.
    std::string detectCode;
    /// The ids of fault descriptions that the runner receives.
    std::vector<std::string> faultDescriptionIds;
    /// The ids of suggestions that the runner receives.
    std::vector<std::string> suggestionIds;
    /// The ids of repairs that the runner receives.
    std::vector<std::string> repairIds;
    /// The rule's own text for the runner.
    std::string userDefinedInfo;
    /// True if the host found the fault. Not set without a runner.
    std::optional<bool> answer;

    ARBORIST_COMPARABLE(Code)
};

} // namespace Evidence

#endif
