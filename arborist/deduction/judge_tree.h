#ifndef ARBORIST_DEDUCTION_JUDGE_TREE_H
#define ARBORIST_DEDUCTION_JUDGE_TREE_H

#include <cstddef>
#include <vector>

#include "arborist/frame/check.h"
#include "arborist/frame/tree_verdict.h"

class FaultTree;

/// Largest number of possible causes in the verdict on one tree.
constexpr std::size_t MOST_POSSIBLE_CAUSES = 100;

/// Returns the verdict on `tree`, which the engine has folded; `isFault` says whether it found root causes.
///
/// `checks` has one entry for each event in pre-order, NONE for an event without a check; an event beyond its end has
/// none. A tree in which an intermediate event has no gate is never NO_FAULT, as the gate may be one that could not be
/// read. Doesn't change the tree and logs nothing.
Evidence::TreeVerdict JudgeTree(const FaultTree& tree, bool isFault, const std::vector<Evidence::Check>& checks);

#endif
