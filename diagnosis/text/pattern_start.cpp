#include "diagnosis/text/pattern_start.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstddef>
#include <limits>
#include <vector>

namespace diagnosis {

namespace {

using Characters = std::bitset<std::numeric_limits<unsigned char>::max() + 1>;

constexpr std::size_t NONE = std::numeric_limits<std::size_t>::max();

/// A state of the automaton of a pattern, with a transition on a set of characters and up to two without a character.
struct State {
    Characters characters;
    std::size_t next = NONE;
    std::array<std::size_t, 2> free = {NONE, NONE};
};

/// A part of the automaton that matches a part of the pattern. Nothing leads out of its end yet.
struct Piece {
    std::size_t start;
    std::size_t end;
};

void AddRange(unsigned char first, unsigned char last, Characters& characters)
{
    for (unsigned int character = first; character <= last; ++character) {
        characters.set(character);
    }
}

bool IsIn(char character, std::string_view characters)
{
    return characters.find(character) != std::string_view::npos;
}

// The characters of an escape for a class, "d" for digits; none if it is not one of these.
Characters ClassOf(char escape)
{
    Characters characters;
    switch (escape) {
    case 'd':
        AddRange('0', '9', characters);
        break;
    case 'w':
        AddRange('0', '9', characters);
        AddRange('a', 'z', characters);
        AddRange('A', 'Z', characters);
        characters.set('_');
        break;
    case 's':
        AddRange('\t', '\r', characters);
        characters.set(' ');
        break;
    case 'D':
    case 'W':
    case 'S':
        return ~ClassOf(static_cast<char>(escape - 'A' + 'a'));
    default:
        break;
    }
    return characters;
}

/// Reads a pattern into the states of an automaton, by Thompson's construction.
class PatternReader {
public:
    explicit PatternReader(std::string_view pattern) : mPattern(pattern) {}

    /// The state in which the automaton begins.
    std::size_t Read() { return Alternatives().start; }

    const std::vector<State>& States() const { return mStates; }

private:
    bool Has(char character) const { return !mPattern.empty() && mPattern.front() == character; }

    char Take()
    {
        const char character = mPattern.empty() ? '\0' : mPattern.front();
        mPattern.remove_prefix(mPattern.empty() ? 0 : 1);
        return character;
    }

    bool TakeIf(std::string_view text)
    {
        const bool isThere = mPattern.starts_with(text);
        mPattern.remove_prefix(isThere ? text.size() : 0);
        return isThere;
    }

    std::size_t Add(std::size_t first = NONE, std::size_t second = NONE)
    {
        mStates.push_back({{}, NONE, {first, second}});
        return mStates.size() - 1;
    }

    Piece Empty()
    {
        const std::size_t state = Add();
        return {state, state};
    }

    Piece OneOf(const Characters& characters)
    {
        const std::size_t end = Add();
        mStates.push_back({characters, end, {NONE, NONE}});
        return {mStates.size() - 1, end};
    }

    void Join(std::size_t end, std::size_t start) { mStates[end].free[0] = start; }

    Piece Alternatives()
    {
        Piece piece = Sequence();
        while (TakeIf("|")) {
            const Piece other = Sequence();
            const std::size_t end = Add();
            Join(piece.end, end);
            Join(other.end, end);
            piece = {Add(piece.start, other.start), end};
        }
        return piece;
    }

    Piece Sequence()
    {
        Piece piece = Empty();
        while (!mPattern.empty() && !Has('|') && !Has(')')) {
            const Piece next = Repeated(Atom());
            Join(piece.end, next.start);
            piece.end = next.end;
        }
        return piece;
    }

    Piece Repeated(Piece piece)
    {
        while (!mPattern.empty() && IsIn(mPattern.front(), "*+?{")) {
            const char sign = Take();
            const bool isOptional = sign == '*' || sign == '?' || (sign == '{' && (Has('0') || Has(',')));
            if (sign == '{') {
                mPattern.remove_prefix(std::min(mPattern.find('}'), mPattern.size() - 1) + 1);
            }
            TakeIf("?"); // which of several matches is taken doesn't count
            const std::size_t end = Add();
            const std::size_t choice = Add(piece.start, end);
            Join(piece.end, sign == '?' ? end : choice);
            piece = {isOptional ? choice : piece.start, end};
        }
        return piece;
    }

    Piece Atom()
    {
        const char sign = Take();
        switch (sign) {
        case '(':
            return Group();
        case '[':
            return OneOf(Bracket());
        case '\\':
            return Escape();
        case '.':
            return OneOf(Characters().set());
        case '^':
        case '$':
            return Empty();
        default:
            return OneOf(Characters().set(static_cast<unsigned char>(sign)));
        }
    }

    Piece Group()
    {
        const bool looksAhead = TakeIf("?=") || TakeIf("?!");
        TakeIf("?:");
        const Piece piece = Alternatives();
        TakeIf(")");
        return looksAhead ? Empty() : piece;
    }

    Piece Escape()
    {
        const char sign = Take();
        if (IsIn(sign, "bB")) {
            return Empty();
        }
        if (sign >= '1' && sign <= '9') {
            return AnyText();
        }
        return OneOf(EscapedCharacters(sign));
    }

    // For what a backreference refers to, whose further digits are skipped.
    Piece AnyText()
    {
        while (!mPattern.empty() && mPattern.front() >= '0' && mPattern.front() <= '9') {
            Take();
        }
        const Piece any = OneOf(Characters().set());
        const std::size_t end = Add();
        const std::size_t choice = Add(any.start, end);
        Join(any.end, choice);
        return {choice, end};
    }

    // The characters that an escape stands for; all for one by number.
    Characters EscapedCharacters(char sign)
    {
        const Characters ofClass = ClassOf(sign);
        if (ofClass.any()) {
            return ofClass;
        }
        const std::size_t digits = sign == 'x' ? 2 : sign == 'u' ? 4 : sign == 'c' ? 1 : 0;
        if (digits > 0) {
            mPattern.remove_prefix(std::min(digits, mPattern.size()));
            return Characters().set();
        }
        static constexpr std::string_view SIGNS = "0tnvfr";
        static constexpr std::string_view STAND_FOR{"\0\t\n\v\f\r", 6};
        const std::size_t place = SIGNS.find(sign);
        return Characters().set(static_cast<unsigned char>(place == std::string_view::npos ? sign : STAND_FOR[place]));
    }

    // The characters of "[...]". Classes by name may be any, as may ranges with an escape.
    Characters Bracket()
    {
        const bool isNegated = TakeIf("^");
        bool isKnown = true;
        Characters characters;
        while (!mPattern.empty() && !Has(']')) {
            const char first = Take();
            if (first == '[' && !mPattern.empty() && IsIn(mPattern.front(), ":.=")) {
                isKnown = false;
                const char end[] = {Take(), ']', '\0'};
                mPattern.remove_prefix(std::min(mPattern.find(end) + 2, mPattern.size()));
            } else if (first == '\\') {
                characters |= EscapedCharacters(Take());
                isKnown = isKnown && !Has('-');
            } else if (mPattern.size() > 1 && Has('-') && mPattern[1] != ']') {
                Take();
                isKnown = isKnown && !IsIn(mPattern.front(), "\\[");
                AddRange(static_cast<unsigned char>(first), static_cast<unsigned char>(mPattern.front()), characters);
                Take();
            } else {
                characters.set(static_cast<unsigned char>(first));
            }
        }
        TakeIf("]");
        return !isKnown ? Characters().set() : isNegated ? ~characters : characters;
    }

    std::string_view mPattern;
    std::vector<State> mStates;
};

/// The states in which an automaton may be.
class Run {
public:
    Run(const std::vector<State>& states, std::size_t start) : mStates(states), mIsIn(states.size()) { Enter(start); }

    void Step(unsigned char character)
    {
        const std::vector<std::size_t> before = std::move(mIn);
        mIn.clear();
        std::fill(mIsIn.begin(), mIsIn.end(), false);
        for (const std::size_t state : before) {
            if (mStates[state].next != NONE && mStates[state].characters.test(character)) {
                Enter(mStates[state].next);
            }
        }
    }

    bool CanGoOn() const
    {
        return std::any_of(mIn.begin(), mIn.end(), [this](std::size_t state) { return mStates[state].characters.any(); });
    }

private:
    // Enters a state, and all that are reached without a character.
    void Enter(std::size_t start)
    {
        std::vector<std::size_t> open = {start};
        while (!open.empty()) {
            const std::size_t state = open.back();
            open.pop_back();
            if (state == NONE || mIsIn[state]) {
                continue;
            }
            mIsIn[state] = true;
            mIn.push_back(state);
            open.insert(open.end(), mStates[state].free.begin(), mStates[state].free.end());
        }
    }

    const std::vector<State>& mStates;
    std::vector<bool> mIsIn;
    std::vector<std::size_t> mIn;
};

} // namespace

bool MayMatchBeyond(std::string_view pattern, std::string_view start)
{
    PatternReader reader(pattern);
    const std::size_t first = reader.Read();
    Run run(reader.States(), first);
    for (const char character : start) {
        run.Step(static_cast<unsigned char>(character));
    }
    return run.CanGoOn();
}

} // namespace diagnosis
