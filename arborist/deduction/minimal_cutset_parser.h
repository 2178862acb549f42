#ifndef ARBORIST_DEDUCTION_MINIMAL_CUTSET_PARSER_H
#define ARBORIST_DEDUCTION_MINIMAL_CUTSET_PARSER_H

#include <memory>
#include <string>
#include <vector>

class FaultTree;
class IntermediateEvent;

/// The paths of events that together make the top event true, in the order of expansion. A path is the ids from the
/// top event down to the leaf, joined by "/".
using CutSet = std::vector<std::string>;
using MinimalCutSet = std::vector<CutSet>;

/// Expands the gates of a tree into its cut sets.
///
/// A plain expansion, whatever the name says: nothing is absorbed and no duplicate removed. Time and memory grow with
/// the product of the branches below AND gates, so a real tree may be beyond any machine; a detection takes the way of
/// RootCauseSearch, and this is what its answers are held against.
class MinimalCutsetParser {
public:
    /// Empty for a tree without a top event.
    static MinimalCutSet GetMcs(const FaultTree& tree);

private:
    /// The combinations below `event`, which stands at `eventPath`: paths joined by "&".
    static std::vector<std::string> MakeMinimalCutSetsDetails(const std::shared_ptr<IntermediateEvent>& event,
                                                              const std::string& eventPath);
};

#endif
