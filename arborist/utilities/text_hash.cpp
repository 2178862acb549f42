#include "arborist/utilities/text_hash.h"

#include <chrono>
#include <exception>
#include <random>

namespace {

// A hash is two numbers below this prime, side by side.
constexpr int PRIME_BITS = 31;
constexpr std::uint64_t PRIME = (1ULL << PRIME_BITS) - 1;
constexpr int LANE_BITS = 32;
constexpr std::uint64_t LANE_MASK = (1ULL << LANE_BITS) - 1;

struct Points {
    std::uint64_t first;
    std::uint64_t second;
};

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
    const std::uint64_t first = point(generator);
    return {first, point(generator)};
}

std::uint64_t LaneOn(std::uint64_t lane, std::uint64_t point, unsigned char letter)
{
    const std::uint64_t next = lane * point + letter + 1;
    const std::uint64_t folded = (next & PRIME) + (next >> PRIME_BITS); // below twice the prime
    return folded < PRIME ? folded : folded - PRIME;
}

} // namespace

// The letters as a polynomial over a prime field, at two points that are drawn for the process: two texts meet at a
// point only if it is a root of their difference, which has no more roots than letters.
std::uint64_t TextHash::Continue(std::uint64_t hash, std::string_view text)
{
    static const Points points = DrawPoints();
    std::uint64_t first = hash >> LANE_BITS;
    std::uint64_t second = hash & LANE_MASK;
    for (const char letter : text) {
        first = LaneOn(first, points.first, static_cast<unsigned char>(letter));
        second = LaneOn(second, points.second, static_cast<unsigned char>(letter));
    }
    return first << LANE_BITS | second;
}
