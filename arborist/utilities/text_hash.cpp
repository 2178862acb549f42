#include "arborist/utilities/text_hash.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <exception>
#include <random>

namespace {

// A hash consists of two numbers below this prime.
constexpr int PRIME_BITS = 31;
constexpr std::uint64_t PRIME = (1ULL << PRIME_BITS) - 1;
constexpr int LANE_BITS = 32;
constexpr std::uint64_t LANE_MASK = (1ULL << LANE_BITS) - 1;

// Number of letters processed in one step.
constexpr std::size_t BLOCK = 8;

// The powers of a point, from the 0th on.
using Powers = std::array<std::uint64_t, BLOCK + 1>;

struct Points {
    Powers first;
    Powers second;
};

std::uint64_t Reduced(std::uint64_t number)
{
    number = (number & PRIME) + (number >> PRIME_BITS);
    number = (number & PRIME) + (number >> PRIME_BITS); // below twice the prime
    return number < PRIME ? number : number - PRIME;
}

Powers PowersOf(std::uint64_t point)
{
    Powers powers{1};
    for (std::size_t power = 1; power < powers.size(); ++power) {
        powers[power] = Reduced(powers[power - 1] * point);
    }
    return powers;
}

std::uint64_t DrawSeed()
{
    try {
        std::random_device random;
        return (std::uint64_t{random()} << LANE_BITS) + random();
    } catch (const std::exception&) {
        return static_cast<std::uint64_t>(std::chrono::high_resolution_clock::now().time_since_epoch().count());
    }
}

Points DrawPoints()
{
    std::mt19937_64 generator(DrawSeed());
    std::uniform_int_distribution<std::uint64_t> point(256, PRIME - 1);
    const Powers first = PowersOf(point(generator));
    return {first, PowersOf(point(generator))};
}

// Works in blocks with one reduction each. No sum overflows 64 bits: a letter times its power has 40 bits, the lane
// times its power 62.
std::uint64_t LaneOn(std::uint64_t lane, const Powers& powers, std::string_view text)
{
    const auto letter = [&text](std::size_t place) {
        return std::uint64_t{static_cast<unsigned char>(text[place])} + 1;
    };
    while (!text.empty()) {
        const std::size_t count = std::min(BLOCK, text.size());
        std::uint64_t sum = lane * powers[count];
        for (std::size_t place = 0; place < count; ++place) {
            sum += letter(place) * powers[count - 1 - place];
        }
        lane = Reduced(sum);
        text.remove_prefix(count);
    }
    return lane;
}

} // namespace

// Evaluates the letters as a polynomial over a prime field, at two points drawn at random for the process. Two texts
// collide at a point only if it is a root of their difference, which has no more roots than letters.
std::uint64_t TextHash::Continue(std::uint64_t hash, std::string_view text)
{
    static const Points points = DrawPoints();
    const std::uint64_t first = LaneOn(hash >> LANE_BITS, points.first, text);
    const std::uint64_t second = LaneOn(hash & LANE_MASK, points.second, text);
    return first << LANE_BITS | second;
}
