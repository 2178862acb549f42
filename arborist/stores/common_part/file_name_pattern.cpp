#include "arborist/stores/common_part/file_name_pattern.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <regex>
#include <utility>

#include "arborist/frame/rule_set_summary.h"
#include "arborist/stores/common_part/pattern_states.h"

namespace {

constexpr std::size_t LONGEST_NAME = 4095;
constexpr std::size_t LONGEST_PATTERN = 4096;
// Limit on the stack that the matching takes. It calls itself for each character if the pattern has back references.
constexpr std::uintptr_t MOST_STACK = 256 * 1024;
// Limit on accesses to characters while one name is matched. Patterns of real files need some thousands.
constexpr std::uint64_t MOST_STEPS = 20'000'000;

// What the matching of one name has used.
class Matching {
public:
    // Not inlined: the standard library's templates read characters in many places.
    [[gnu::noinline]] void Read()
    {
        if (++mSteps > MOST_STEPS) {
            throw std::regex_error(std::regex_constants::error_complexity);
        }
        const std::uintptr_t place = StackPlace();
        if ((place < mBegin ? mBegin - place : place - mBegin) > MOST_STACK) {
            throw std::regex_error(std::regex_constants::error_stack);
        }
    }

private:
    static std::uintptr_t StackPlace() { return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)); }

    std::uint64_t mSteps = 0;
    std::uintptr_t mBegin = StackPlace();
};

// Iterates over a name and throws the library's own error if the matching reads characters too often, or too deep in
// calls: backtracking can take time that doubles with each character.
class CountingIterator {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator() = default;
    CountingIterator(const char* position, Matching* matching) : mPosition(position), mMatching(matching) {}

    reference operator*() const
    {
        mMatching->Read();
        return *mPosition;
    }
    CountingIterator& operator++()
    {
        ++mPosition;
        return *this;
    }
    CountingIterator operator++(int) { return {mPosition++, mMatching}; }
    CountingIterator& operator--()
    {
        --mPosition;
        return *this;
    }
    CountingIterator operator--(int) { return {mPosition--, mMatching}; }
    bool operator==(const CountingIterator& other) const { return mPosition == other.mPosition; }

private:
    const char* mPosition = nullptr;
    Matching* mMatching = nullptr;
};

std::regex Compile(const std::string& pattern)
{
    if (pattern.size() > LONGEST_PATTERN || HasTooManyStates(pattern)) {
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
    Matching matching;
    const CountingIterator begin(name.data(), &matching);
    const CountingIterator end(name.data() + name.size(), &matching);
    return std::regex_match(begin, end, mCompiled->expression);
}

bool IsFileNamePattern(const std::string& pattern)
{
    try {
        Compile(pattern);
        return true;
    } catch (const std::regex_error&) {
        return false;
    }
}
