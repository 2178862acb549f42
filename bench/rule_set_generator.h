#ifndef ARBORIST_BENCH_RULE_SET_GENERATOR_H
#define ARBORIST_BENCH_RULE_SET_GENERATOR_H

#include <cstddef>
#include <string>

namespace bench {

/// The size of a rule set. With the defaults both files together have about 20 MB.
struct RuleSetSize {
    std::size_t trees = 2'000;
    /// In each tree: the top event, inner events with gates of both kinds, and basic events below them.
    std::size_t innerEventsOfTree = 4;
    std::size_t basicEventsOfInner = 5;
    /// Number of rules, a quarter of each family.
    std::size_t rules = 20'000;
    /// One in this many basic events has a description, a solution and a repair.
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
