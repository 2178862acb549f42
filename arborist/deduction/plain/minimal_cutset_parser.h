#ifndef ARBORIST_DEDUCTION_PLAIN_MINIMAL_CUTSET_PARSER_H
#define ARBORIST_DEDUCTION_PLAIN_MINIMAL_CUTSET_PARSER_H

#include <memory>
#include <string>
#include <vector>

#include "arborist/deduction/cut_set.h"

class FaultTree;
class IntermediateEvent;

/// Expands the gates of a tree into its cut sets.
///
/// A plain expansion, whatever the name says: nothing is absorbed and no duplicate removed. Time and memory grow with
/// the product of the branches below AND gates, so a real tree may be beyond any machine. A detection takes the way of
/// RootCauseSearch; this one is kept for the tests, which hold its answers against these.
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
