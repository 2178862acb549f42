#ifndef ARBORIST_STORES_EVENT_LOG_MEMBER_STORE_H
#define ARBORIST_STORES_EVENT_LOG_MEMBER_STORE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Keeps what the members of rows hold behind handles of four bytes: small numbers within the handle, each text once,
/// and for rows with several members each combination once. Bounded: what doesn't fit is told so.
class MemberStore {
public:
    /// Of a row, or of one of its members.
    using Handle = std::uint32_t;

    static constexpr Handle UNKNOWN = 0; ///< not read yet
    static constexpr Handle RAW = 1; ///< doesn't fit, or is no JSON: to be read again each time
    static constexpr Handle NO_EXTRA = 2; ///< there is nothing to read

    /// Drops all and takes up to `bytes` of memory from then on.
    void Reset(std::size_t bytes);

    /// A handle for a row with these members; RAW when there is no room.
    Handle Store(const std::vector<std::string_view>& values);

    /// The member in `column` of a row of `columns` members; UNKNOWN, RAW and NO_EXTRA as they are.
    Handle CodeOf(Handle row, std::size_t columns, std::size_t column) const
    {
        return columns == 1 || row < FIRST_PLACE ? row : mTuples[row - FIRST_PLACE + column];
    }
    static bool IsText(Handle code) { return code >= FIRST_PLACE && !IsInteger(code); }
    static bool IsInteger(Handle code) { return (code & INTEGER_BIT) != 0; }
    static std::int64_t IntegerOf(Handle code) { return std::int64_t{code & ~INTEGER_BIT} - INTEGER_OFFSET; }
    /// The text of a member that is neither a number nor one of the three above. Lives until the next Store.
    std::string_view TextOf(Handle code) const;

private:
    static constexpr Handle FIRST_PLACE = 3;
    static constexpr Handle INTEGER_BIT = 0x80000000U;
    static constexpr std::int64_t INTEGER_OFFSET = 0x40000000;

    Handle CodeFor(std::string_view value);
    Handle CodeForText(std::string_view text);
    Handle CodeForTuple();
    bool HasRoom(std::size_t bytes) const;
    template <typename HashOfPlace>
    bool HasSlot(std::vector<Handle>& table, std::size_t count, HashOfPlace hashOf);

    std::size_t mLimit = 0;
    std::string mTexts; // each with its length in two bytes in front
    std::vector<Handle> mTuples; // codes of members, row after row, each row with their number in front
    // Places in mTexts and mTuples, by hash.
    std::vector<Handle> mTextTable;
    std::vector<Handle> mTupleTable;
    std::size_t mTextCount = 0;
    std::size_t mTupleCount = 0;
    std::vector<Handle> mCodes; // room for one row's
};

#endif
