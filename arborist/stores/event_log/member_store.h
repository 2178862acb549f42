#ifndef ARBORIST_STORES_EVENT_LOG_MEMBER_STORE_H
#define ARBORIST_STORES_EVENT_LOG_MEMBER_STORE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Keeps what the members of rows hold behind codes: numbers within the code, the smaller the shorter, and each text
/// once. Equal members have equal codes. Bounded: what doesn't fit is told so.
class MemberStore {
public:
    using Code = std::uint32_t;

    static constexpr Code UNKNOWN = 0; ///< not read yet
    static constexpr Code RAW = 1; ///< doesn't fit, or is no JSON: to be read again each time
    static constexpr Code NO_EXTRA = 2; ///< there is nothing to read

    /// Drops all and takes up to `bytes` of memory from then on.
    void Reset(std::size_t bytes);

    /// The code of a member; RAW when there is no room.
    Code CodeOf(std::string_view member);

    static bool IsText(Code code) { return code >= FIRST_TEXT && code % 4 == FIRST_TEXT % 4; }
    static bool IsInteger(Code code) { return code >= FIRST_INTEGER && !IsText(code); }
    /// From -MOST_INTEGER to MOST_INTEGER.
    static std::int64_t IntegerOf(Code code)
    {
        return code % 2 == FIRST_INTEGER % 2 ? std::int64_t{(code - FIRST_INTEGER) / 2}
                                             : -1 - std::int64_t{(code - FIRST_NEGATIVE) / 4};
    }
    /// The text of a member that is neither a number nor one of the three above. Lives until the next CodeOf.
    std::string_view TextOf(Code code) const { return GetText((code - FIRST_TEXT) / 4); }

private:
    // Of numbers from 0 on the codes are odd, as these are the most frequent; texts, in order of appearance, and
    // numbers below 0 share the even ones.
    static constexpr Code FIRST_INTEGER = 3;
    static constexpr Code FIRST_TEXT = 4;
    static constexpr Code FIRST_NEGATIVE = 6;
    static constexpr std::int64_t MOST_INTEGER = 1000000000;

    static Code CodeOfInteger(std::int64_t number)
    {
        return static_cast<Code>(number >= 0 ? FIRST_INTEGER + 2 * number : FIRST_NEGATIVE + 4 * (-1 - number));
    }
    Code CodeOfText(std::string_view text);
    bool HasRoom(std::size_t bytes) const;
    bool HasSlot();
    std::uint32_t& SlotOf(std::string_view text);
    std::string_view GetText(std::uint32_t number) const
    {
        const std::uint32_t begin = number == 0 ? 0 : mEnds[number - 1];
        return std::string_view(mTexts).substr(begin, mEnds[number] - begin);
    }

    std::size_t mLimit = 0;
    std::string mTexts; // one behind the other
    std::vector<std::uint32_t> mEnds; // of each text
    std::vector<std::uint32_t> mTable; // numbers of texts by hash
};

#endif
