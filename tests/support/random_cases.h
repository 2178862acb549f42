#ifndef ARBORIST_TESTS_SUPPORT_RANDOM_CASES_H
#define ARBORIST_TESTS_SUPPORT_RANDOM_CASES_H

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

/// The cases of a random test, which prints its seed when it fails. Each run has the same cases unless the environment
/// sets a seed (ARBORIST_SEED), and as many as the test requests unless it sets a number (ARBORIST_CASES, see
/// scripts/long-checks.sh).
class RandomCases {
public:
    explicit RandomCases(int ordinaryNumber);

    int GetCount() const { return mCount; }
    std::uint32_t GetSeed() const { return mSeed; }

    /// A number below `end`, which is above 0.
    std::size_t Below(std::size_t end);
    /// True once in `chances` on average.
    bool OnceIn(std::size_t chances) { return Below(chances) == 0; }
    const std::string& OneOf(const std::vector<std::string>& texts) { return texts[Below(texts.size())]; }
    /// Up to `most` of the pieces in a row.
    std::string Join(const std::vector<std::string>& pieces, std::size_t most);
    /// Up to `most` characters of a set.
    std::string Text(std::string_view characters, std::size_t most);

private:
    int mCount;
    std::uint32_t mSeed;
    std::mt19937 mEngine;
};

#endif
