#ifndef ARBORIST_STORES_EVENT_MEMBER_CACHE_H
#define ARBORIST_STORES_EVENT_MEMBER_CACHE_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "arborist/stores/event_log_index.h"
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

/// Members of the rows of an EventLogIndex, read from the log when they are first asked for and kept in five bytes a
/// row and a store of texts that is bounded by the size of the log. What doesn't fit, and every extra that is no JSON,
/// is read again each time.
///
/// Belongs to one state of the index: Clear it when that reads the log anew, and before the database is closed. Used
/// by one thread.
class EventMemberCache {
public:
    EventMemberCache(const EventLogIndex& index, const FT::sql::Sqlite3Db& database);

    void Clear();

    /// Makes the members `keys` of the rows at `positions`, all of the entry with this number, ready for Get. False
    /// when the log was changed since the index read it or can't be read: then nothing is ready.
    bool Load(std::size_t entryNumber, const std::vector<std::uint32_t>& positions,
        const std::vector<std::string>& keys);
    /// The member `keys[keyNumber]` of a row of the last Load. The text lives until the next Load.
    EventMember Get(std::uint32_t position, std::size_t keyNumber) const;

    /// Day of the month of the row in local time, 1 to 31. Kept from the first time on, whatever the time zone does.
    std::int32_t GetDayOfMonth(std::uint32_t position);

private:
    using Handle = std::uint32_t;
    using KeySet = std::vector<std::string>;

    void UseKeys(std::size_t entryNumber, const std::vector<std::string>& keys);
    bool FindColumns(const KeySet& keySet, const std::vector<std::string>& keys);
    std::uint32_t NumberOf(const KeySet& keySet);
    bool ReadMissing(const std::vector<std::uint32_t>& missing);
    void ReadRow(std::uint32_t position, std::string_view extra);
    Handle HandleOf(std::string_view extra);
    Handle Store(const std::vector<std::string_view>& values);
    Handle Intern(const std::string& tuple);

    const EventLogIndex& mIndex;
    const FT::sql::Sqlite3Db& mDb;
    std::unique_ptr<FT::sql::SqlCursor> mExtraOfRow;

    std::vector<Handle> mHandles; // one for each row, empty until the first Load
    std::vector<std::uint8_t> mDays; // likewise; 0 while not known
    std::vector<std::uint32_t> mKeySetOfEntry; // 0 is the empty set
    std::deque<KeySet> mKeySets;
    std::map<KeySet, std::uint32_t> mNumberOfKeySet;

    // The texts behind the handles, one for each key of the row's set, the same ones once; and a hash table of places
    // in it.
    std::string mTuples;
    std::vector<std::uint32_t> mTupleTable;
    std::size_t mTupleCount = 0;

    // Of the last Load.
    std::vector<std::size_t> mColumnOfKey;
    const KeySet* mKeySet = nullptr;
    std::vector<std::string_view> mValues;
    std::unordered_map<std::uint32_t, std::string> mRawExtras;
};

#endif
