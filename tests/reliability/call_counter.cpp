#include "tests/reliability/call_counter.h"

#include <atomic>
#include <cstdlib>

namespace {

std::atomic<bool> isCounting{false};
std::atomic<std::uint64_t> called{0};
std::atomic<std::uint64_t> firstToFail{0};
std::atomic<bool> failsFromThere{false};

} // namespace

void CallCounter::Start(std::uint64_t number, Failing failing)
{
    called = 0;
    firstToFail = number;
    failsFromThere = failing == Failing::ALL_FROM_IT_ON;
    isCounting = true;
}

std::uint64_t CallCounter::Stop()
{
    isCounting = false;
    return called;
}

bool CallCounter::Fails()
{
    if (!isCounting) {
        return false;
    }
    const std::uint64_t number = ++called;
    const std::uint64_t first = firstToFail;
    return first != 0 && (number == first || (failsFromThere && number > first));
}

std::vector<std::uint64_t> CallCounter::Sample(std::uint64_t calls, std::uint64_t atMost)
{
    if (const char* const one = std::getenv("ARBORIST_CALL")) {
        return {std::strtoull(one, nullptr, 10)};
    }
    const bool all = std::getenv("ARBORIST_EVERY_CALL") != nullptr;
    const std::uint64_t distance = all ? 1 : calls / atMost + 1;
    std::vector<std::uint64_t> numbers;
    for (std::uint64_t number = 1; number <= calls; number += distance) {
        numbers.push_back(number);
    }
    return numbers;
}
