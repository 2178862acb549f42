#ifndef ARBORIST_STORES_EVENT_LOG_EVENT_MEMBER_CACHE_H
#define ARBORIST_STORES_EVENT_LOG_EVENT_MEMBER_CACHE_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "arborist/stores/event_log/event_log_index.h"
#include "arborist/stores/event_log/key_sets.h"
#include "arborist/stores/event_log/member_store.h"
#include "arborist/stores/event_log/packed_column.h"
#include "arborist/stores/sql/sql_cursor.h"

/// What one member of a row's `extra` holds.
struct EventMember {
    enum class Kind {
        NO_EXTRA, ///< the row's extra is empty
        INTEGER, ///< `number`, whose decimal form is the member's text
        TEXT, ///< `text`, empty when the member is missing, null, an object or an array
        RAW ///< not known beforehand: `text` is the whole extra, to be parsed
    };

    Kind kind;
    std::int64_t number;
    std::string_view text;

    /// The text of an INTEGER or TEXT.
    std::string ToText() const { return kind == Kind::INTEGER ? std::to_string(number) : std::string(text); }
};

/// Members of the rows of an EventLogIndex, read from the log when they are first asked for and kept as codes, most of
/// them of one byte, and a store of texts; both are bounded by the size of the log. What doesn't fit, and every extra
/// that is no JSON, is read again each time.
///
/// Belongs to one state of the index: Clear it when that reads the log anew, and before the database is closed. Used
/// by one thread.
class EventMemberCache {
public:
    EventMemberCache(const EventLogIndex& index, const FT::sql::Sqlite3Db& database);

    void Clear();

    /// Says that these members of these ids will be asked for, so that one reading can serve more than one test.
    /// Outlives Clear. Without effect on any answer.
    void Foresee(std::int32_t firstId, std::int32_t lastId, const std::vector<std::string>& keys);

    /// Reads, in one go and for all that is foreseen, what the entries from `first` to before `end` are short of since
    /// `start`, if that is much. Without effect on any answer.
    void Prepare(std::size_t first, std::size_t end, std::int64_t start);

    /// Makes the members `keys` of the rows at `positions`, all of the entry with this number and not before `start`,
    /// ready for Get. False when the log was changed since the index read it or can't be read: then nothing is ready.
    bool Load(std::size_t entryNumber, const std::vector<std::uint32_t>& positions, std::int64_t start,
        const std::vector<std::string>& keys);
    /// The code that the store has for the member `keys[keyNumber]` of a row of the last Load.
    MemberStore::Code GetCode(std::uint32_t position, std::size_t keyNumber) const
    {
        return mLoaded->codes[mColumnOfKey[keyNumber] + position];
    }
    /// That member. The text lives until the next Load.
    EventMember Get(std::uint32_t position, std::size_t keyNumber) const;

private:
    struct Interest {
        std::int32_t firstId;
        std::int32_t lastId;
        std::uint32_t keySet;

        auto operator<=>(const Interest&) const = default;
    };

    // The codes of the members of rows beside each other, member after member.
    struct Block {
        Block(std::uint32_t first, std::uint32_t rows, std::size_t columns);
        Block(const Block&) = delete;
        Block& operator=(const Block&) = delete;
        ~Block();

        std::size_t GetSize() const { return codes.GetCount() * codes.GetWidth(); }
        std::size_t PlaceOf(std::uint32_t position, std::size_t column) const
        {
            return column * rowCount + position - firstRow;
        }

        std::uint32_t firstRow;
        std::uint32_t rowCount;
        PackedColumn codes;
        bool hasGaps = false; // some of what was read has to be read again
        std::size_t* budget = nullptr; // what it takes is counted there; none, where it is for one Load
    };

    // Entries beside each other of which the same members are asked for, up to where the next stretch begins.
    struct Stretch {
        std::uint32_t keySet = 0;
        std::int64_t readSince; // all rows from then on have been read
        std::shared_ptr<Block> block; // when something was read; shared by stretches that were one at that time
    };
    using Stretches = std::map<std::size_t, Stretch>; // by their first entries

    struct Reading;

    void Begin();
    void Apply(const Interest& interest);
    void AddKeys(Stretch& stretch, std::uint32_t keySet);
    Stretches::iterator StretchOf(std::size_t entryNumber);
    Stretches::iterator SplitAt(std::size_t entryNumber);
    std::size_t EndOf(Stretches::const_iterator stretch) const;
    bool EnsureBlock(Stretches::iterator stretch);
    bool HoldsKeys(const Stretch& stretch, const std::vector<std::string>& keys) const;
    std::size_t CountMissing(std::size_t first, std::size_t end, std::int64_t start);
    void ReadAll(std::int64_t start);
    void Want(Reading& reading, Stretches::iterator stretch);
    void TakeRow(Reading& reading, const FT::sql::ScannedRow& row);
    bool ReadMissing(const std::vector<std::uint32_t>& missing, const KeySets::Keys& keys);
    bool IsShort(std::uint32_t position) const;
    void TakeExtra(Block& block, std::uint32_t position, const KeySets::Keys& keys, std::string_view extra);
    void TakeMembers(std::string_view extra, const KeySets::Keys& keys);
    bool HasRoom(Block& block, MemberStore::Code code);

    const EventLogIndex& mIndex;
    const FT::sql::Sqlite3Db& mDb;
    std::unique_ptr<FT::sql::SqlCursor> mExtraOfRow;

    KeySets mKeySets;
    std::set<Interest> mInterests;

    bool mHasBegun = false; // since the last Clear
    std::size_t mBudget = 0; // bytes that blocks may still take
    Stretches mStretches;
    MemberStore mMembers;

    // Of the last Load.
    std::shared_ptr<Block> mLoaded;
    std::vector<std::size_t> mColumnOfKey; // where the codes of the row at position 0 would stand
    std::unordered_map<std::uint32_t, std::string> mRawExtras;

    // Room for those of one row.
    std::vector<std::string_view> mValues;
    std::vector<MemberStore::Code> mCodes;
};

#endif
