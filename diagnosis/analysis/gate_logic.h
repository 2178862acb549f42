#ifndef ARBORIST_DIAGNOSIS_ANALYSIS_GATE_LOGIC_H
#define ARBORIST_DIAGNOSIS_ANALYSIS_GATE_LOGIC_H

#include <cstddef>
#include <vector>

#include "diagnosis/evidence/explanation.h"

namespace diagnosis {

/// What the gate of an intermediate event makes of the events below it.
struct GateLogic {
    Evidence::EventState outcome = Evidence::EventState::ABSENT;
    std::size_t below = 0;
    std::size_t inError = 0;
    /// Place of the event that decided: of an OR the first in error, of an AND the first that is not. NONE where all of
    /// them did.
    std::size_t decider = ExplainedEvent::NONE;
};

GateLogic GateLogicOf(const ExplainedTree& tree, std::size_t event);

/// An observable intermediate event that is not in error although events below it are: they can be no root cause.
struct CutOff {
    /// Place of the intermediate event.
    std::size_t event;
    /// Places of the leaves in error below it, one for each id.
    std::vector<std::size_t> leaves;
};

std::vector<CutOff> CutOffsOf(const ExplainedTree& tree);

} // namespace diagnosis

#endif
