#include "arborist/stores/common_part/pattern_states.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace {

constexpr std::size_t MOST_STATES = 1000;

// Counts the states of a pattern's automaton, or some more. Where the text is no pattern any count will do.
class StateCount {
public:
    explicit StateCount(std::string_view pattern) : mPattern(pattern) {}

    bool IsTooLarge()
    {
        while (mPlace < mPattern.size() && mStates <= MOST_STATES) {
            TakeNext();
        }
        return mStates > MOST_STATES;
    }

private:
    void TakeNext()
    {
        switch (mPattern[mPlace]) {
        case '(':
            mGroups.push_back(mStates);
            Skip(StartsWith("(?") ? 3 : 1); // (?: (?= (?!
            break;
        case ')':
            mLast = mStates - (mGroups.empty() ? 0 : mGroups.back());
            if (!mGroups.empty()) {
                mGroups.pop_back();
            }
            Skip(1);
            Add(3);
            break;
        case '|':
            mStates += 3;
            Skip(1);
            break;
        case '*':
        case '+':
        case '?':
            Skip(1);
            Add(2);
            break;
        case '{':
            Repeat();
            break;
        case '[':
            SkipClass();
            AddLetter();
            break;
        case '\\':
            SkipEscape();
            AddLetter();
            break;
        default:
            Skip(1);
            AddLetter();
        }
    }

    void AddLetter()
    {
        mLast = 0;
        Add(1);
    }

    // Adds states to what a quantifier behind them repeats.
    void Add(std::size_t states)
    {
        mStates += states;
        mLast += states;
    }

    // {n}, {n,} and {n,m} copy what they repeat.
    void Repeat()
    {
        std::size_t most = 1;
        while (mPlace < mPattern.size() && mPattern[mPlace] != '}') {
            Skip(1);
            most = std::max(most, Number());
        }
        Skip(1);
        Add(mLast * (most - 1) + 2 * most);
    }

    std::size_t Number()
    {
        std::size_t number = 0;
        for (; mPlace < mPattern.size() && mPattern[mPlace] >= '0' && mPattern[mPlace] <= '9'; Skip(1)) {
            number = std::min(10 * number + static_cast<std::size_t>(mPattern[mPlace] - '0'), MOST_STATES);
        }
        return number;
    }

    // A bracket ends at the first "]" that is neither escaped nor part of "[:alpha:]", "[.a.]" or "[=a=]".
    void SkipClass()
    {
        for (Skip(1); mPlace < mPattern.size() && mPattern[mPlace] != ']';) {
            if (mPattern[mPlace] == '\\') {
                SkipEscape();
            } else if (StartsWith("[:") || StartsWith("[.") || StartsWith("[=")) {
                mPlace = std::min(mPattern.find(mPattern[mPlace + 1], mPlace + 2), mPattern.size());
                Skip(2);
            } else {
                Skip(1);
            }
        }
        Skip(1);
    }

    void SkipEscape() { Skip(StartsWith("\\c") ? 3 : 2); }
    void Skip(std::size_t letters) { mPlace = std::min(mPlace + letters, mPattern.size()); }
    bool StartsWith(std::string_view text) const { return mPattern.substr(mPlace, text.size()) == text; }

    std::string_view mPattern;
    std::size_t mPlace = 0;
    std::size_t mStates = 0;
    std::size_t mLast = 0; // of them those that a quantifier would repeat
    std::vector<std::size_t> mGroups; // states in front of each open group
};

} // namespace

bool HasTooManyStates(std::string_view pattern)
{
    return StateCount(pattern).IsTooLarge();
}
