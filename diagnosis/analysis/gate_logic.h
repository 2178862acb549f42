#ifndef ARBORIST_DIAGNOSIS_ANALYSIS_GATE_LOGIC_H
#define ARBORIST_DIAGNOSIS_ANALYSIS_GATE_LOGIC_H

#include <cstddef>
#include <vector>

#include "diagnosis/evidence/recorded_tree.h"

namespace diagnosis {

/// How the gate of an intermediate event evaluates the events below it.
struct GateLogic {
    Evidence::EventState outcome = Evidence::EventState::ABSENT;
    std::size_t below = 0;
    std::size_t inError = 0;
    /// Index of the event that decided: for an OR the first in error, for an AND the first that is not. NONE if all of
    /// them decided together.
    std::size_t decider = RecordedEvent::NONE;
};

GateLogic GateLogicOf(const RecordedTree& tree, std::size_t event);

/// An observable intermediate event that is not in error although events below it are: these can't be root causes.
struct CutOff {
    /// Index of the intermediate event.
    std::size_t event;
    /// Indexes of the leaves in error below it, one for each id.
    std::vector<std::size_t> leaves;
};

std::vector<CutOff> CutOffsOf(const RecordedTree& tree);

} // namespace diagnosis

#endif
