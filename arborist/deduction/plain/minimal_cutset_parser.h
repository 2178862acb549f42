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
/// Despite the name this is a plain expansion: it absorbs no superset and removes no duplicate. Time and memory grow
/// with the product of the branches below AND gates, so that no machine may be large enough for a real tree. A
/// detection uses RootCauseSearch; this class is kept for the tests, which compare the two.
class MinimalCutsetParser {
public:
    /// Empty for a tree without a top event.
    static MinimalCutSet GetMcs(const FaultTree& tree);

private:
    /// The combinations below `event`, whose path is `eventPath`: member paths joined by "&".
    static std::vector<std::string> MakeMinimalCutSetsDetails(const std::shared_ptr<IntermediateEvent>& event,
                                                              const std::string& eventPath);
};

#endif
