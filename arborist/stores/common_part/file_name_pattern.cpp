#include "arborist/stores/common_part/file_name_pattern.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <regex>
#include <utility>

namespace {

constexpr std::size_t LONGEST_NAME = 4095;
// The standard library compiles recursively, so that a longer pattern could overflow the stack.
constexpr std::size_t LONGEST_PATTERN = 4096;
// Limit on accesses to characters while one name is matched. Patterns of real files need some thousands.
constexpr std::uint64_t MOST_STEPS = 20'000'000;

// Iterates over a name and throws the library's own error if the matching reads characters too often: backtracking can
// take time that doubles with each character.
class CountingIterator {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator() = default;
    CountingIterator(const char* position, std::uint64_t* steps) : mPosition(position), mSteps(steps) {}

    reference operator*() const
    {
        if (++*mSteps > MOST_STEPS) {
            throw std::regex_error(std::regex_constants::error_complexity);
        }
        return *mPosition;
    }
    CountingIterator& operator++()
    {
        ++mPosition;
        return *this;
    }
    CountingIterator operator++(int) { return {mPosition++, mSteps}; }
    CountingIterator& operator--()
    {
        --mPosition;
        return *this;
    }
    CountingIterator operator--(int) { return {mPosition--, mSteps}; }
    bool operator==(const CountingIterator& other) const { return mPosition == other.mPosition; }

private:
    const char* mPosition = nullptr;
    std::uint64_t* mSteps = nullptr;
};

std::regex Compile(const std::string& pattern)
{
    if (pattern.size() > LONGEST_PATTERN) {
        throw std::regex_error(std::regex_constants::error_space);
    }
#ifdef __GLIBCXX__
    // Try first the matching that can't take exponential time; it throws if the pattern has back references.
    try {
        return std::regex(pattern, std::regex::ECMAScript | std::regex_constants::__polynomial);
    } catch (const std::regex_error& error) {
        if (error.code() != std::regex_constants::error_complexity) {
            throw;
        }
    }
#endif
    return std::regex(pattern, std::regex::ECMAScript);
}

} // namespace

struct FileNamePattern::Compiled {
    std::regex expression;
};

FileNamePattern::FileNamePattern(std::string pattern) : mPattern(std::move(pattern)) {}
FileNamePattern::~FileNamePattern() = default;
FileNamePattern::FileNamePattern(FileNamePattern&&) noexcept = default;

bool FileNamePattern::Matches(const std::string& name)
{
    if (mPattern.empty() || name.empty()) {
        return false;
    }
    if (mCompiled == nullptr) {
        mCompiled = std::make_unique<Compiled>(Compiled{Compile(mPattern)});
    }
    if (name.size() > LONGEST_NAME) {
        return false;
    }
    std::uint64_t steps = 0;
    const CountingIterator begin(name.data(), &steps);
    const CountingIterator end(name.data() + name.size(), &steps);
    return std::regex_match(begin, end, mCompiled->expression);
}
