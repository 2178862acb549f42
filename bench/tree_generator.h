#ifndef ARBORIST_BENCH_TREE_GENERATOR_H
#define ARBORIST_BENCH_TREE_GENERATOR_H

#include <cstddef>
#include <memory>

#include "arborist/model/fault_tree.h"

/// Fault trees for measurements. Each is built anew, depth first, like the trees of a rule set.
namespace bench {

/// About `events` events, `fanOut` below every gate, OR gates except for ANDs at the bottom of every second branch.
/// `inError` basic events are in error, and `rootCauses` of these explain the top event on their own; the others are
/// below an AND with healthy ones.
std::shared_ptr<FaultTree> WideTree(std::size_t events, std::size_t fanOut, std::size_t inError,
                                    std::size_t rootCauses);

/// Pairs of levels, an AND over `branches` ORs of `width` each: with n pairs there are (width * c(n-1)) ^ branches cut
/// sets. One leaf of each OR is in error, and all leaves of the first `open` ORs below the top event, so that there are
/// width ^ open root causes. With `open` -1 the last OR is healthy and the top event is true by its own rules, so that
/// there is none.
std::shared_ptr<FaultTree> ExplodingTree(std::size_t pairs, std::size_t branches, std::size_t width, int open);

/// A tree of the shape of published models: some hundred gates and basic events with shared branches over some twenty
/// levels; every shared branch is repeated, up to `maxEvents` events. The basic events of one cut set are in error in
/// all their places; as these combine in many ways, there are many root causes, at most `maxRootCauses`.
std::shared_ptr<FaultTree> ModelTree(std::size_t maxEvents, double maxRootCauses);

/// Events in the tree, the top event included.
std::size_t CountEvents(const FaultTree& tree);

} // namespace bench

#endif
