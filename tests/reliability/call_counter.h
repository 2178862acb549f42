#ifndef ARBORIST_TESTS_RELIABILITY_CALL_COUNTER_H
#define ARBORIST_TESTS_RELIABILITY_CALL_COUNTER_H

#include <cstdint>
#include <vector>

/// Counts the calls of a kind that a test program stands in for, and lets some of them fail. Of the process; callable
/// from any thread; never allocates.
namespace CallCounter {

enum class Failing {
    /// The call with the number alone.
    ONE,
    /// That call and all after it, as when memory or disk are used up.
    ALL_FROM_IT_ON,
};

/// Begins to count from 1. No call fails if `number` is 0.
void Start(std::uint64_t number, Failing failing = Failing::ONE);
/// Ends counting; returns how many calls there were.
std::uint64_t Stop();

/// Called by each call that is stood in for: counts it, and says whether it is to fail.
bool Fails();

/// Numbers of calls to try, ascending: the one in the environment's ARBORIST_CALL; all up to `calls` if it has
/// ARBORIST_EVERY_CALL; otherwise at most `atMost`, with a fixed distance.
std::vector<std::uint64_t> Sample(std::uint64_t calls, std::uint64_t atMost);

} // namespace CallCounter

#endif
