#ifndef ARBORIST_BENCH_TREE_GENERATOR_H
#define ARBORIST_BENCH_TREE_GENERATOR_H

#include <cstddef>
#include <memory>

#include "arborist/model/fault_tree.h"

/// Fault trees to measure with. Each is made anew, depth first, as a rule set's reader makes them.
namespace bench {

/// About `events` events, `fanOut` below every gate, OR gates but for the ANDs at the bottom of every second branch.
/// Of its basic events `inError` are in error, and `rootCauses` of these explain the top event on their own; the
/// others stand below an AND beside healthy ones.
std::shared_ptr<FaultTree> WideTree(std::size_t events, std::size_t fanOut, std::size_t inError,
                                    std::size_t rootCauses);

/// Pairs of levels, an AND over `branches` ORs of `width` each: with n pairs there are (width * c(n-1)) ^ branches cut
/// sets. One leaf of each OR is in error, and of the first `open` ORs below the top all are in full, so that there are
/// width ^ open root causes; `open` -1 leaves the last OR healthy and sets the top event on its own: none.
std::shared_ptr<FaultTree> ExplodingTree(std::size_t pairs, std::size_t branches, std::size_t width, int open);

/// A tree of the shape of published models: some hundred gates and basic events that share each other over some
/// twenty levels, with every shared branch written out, up to `maxEvents` events. In error are the basic events of
/// one cut set, wherever they stand; as this has many readings there are many root causes, at most `maxRootCauses`.
std::shared_ptr<FaultTree> ModelTree(std::size_t maxEvents, double maxRootCauses);

/// Events in the tree, the top event included.
std::size_t CountEvents(const FaultTree& tree);

} // namespace bench

#endif
