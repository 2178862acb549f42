#ifndef ARBORIST_BENCH_RULE_SET_GENERATOR_H
#define ARBORIST_BENCH_RULE_SET_GENERATOR_H

#include <cstddef>
#include <string>

namespace bench {

/// How large a rule set is to be. The defaults give about 20 MB in both files together.
struct RuleSetSize {
    std::size_t trees = 2'000;
    /// In each tree: the top event, inner events with gates of both kinds, and basic events below them.
    std::size_t innerEventsOfTree = 4;
    std::size_t basicEventsOfInner = 5;
    /// A quarter of each family.
    std::size_t rules = 20'000;
    /// One basic event in so many has a description, a solution and a repair.
    std::size_t describedOneIn = 8;
};

/// The tag of both files.
inline constexpr const char* RULE_SET_TAG = "bench";

/// The texts of "FaultTrees.xml" and "FaultTreeRules.xml", with a line for each element. Every basic event has an event
/// rule that names one of the rules.
std::string TreeFileText(const RuleSetSize& size);
std::string RuleFileText(const RuleSetSize& size);

} // namespace bench

#endif
