#ifndef ARBORIST_DEDUCTION_JUDGE_TREE_H
#define ARBORIST_DEDUCTION_JUDGE_TREE_H

#include <cstddef>
#include <vector>

#include "arborist/frame/check.h"
#include "arborist/frame/tree_verdict.h"

class FaultTree;

/// So many possible causes are told of one tree.
constexpr std::size_t MOST_POSSIBLE_CAUSES = 100;

/// What a detection may say of `tree`, which the engine has folded and in which it found root causes or not.
///
/// `checks` has one word for each event in pre-order, NONE for one that has no check; an event behind its end has none.
/// A gate that could not be read is no gate without events: a tree with an intermediate event without a gate is never
/// NO_FAULT. Writes nothing into the tree and logs nothing.
Evidence::TreeVerdict JudgeTree(const FaultTree& tree, bool isFault, const std::vector<Evidence::Check>& checks);

#endif
