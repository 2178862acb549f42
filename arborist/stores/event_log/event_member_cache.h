#ifndef ARBORIST_STORES_EVENT_LOG_EVENT_MEMBER_CACHE_H
#define ARBORIST_STORES_EVENT_LOG_EVENT_MEMBER_CACHE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "arborist/stores/event_log/event_log_index.h"
#include "arborist/stores/event_log/key_sets.h"
#include "arborist/stores/event_log/member_store.h"
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
    /// Of two TEXT members of one log with the same code the texts are equal; 0 says nothing.
    std::uint32_t code = 0;

    /// The text of an INTEGER or TEXT.
    std::string ToText() const { return kind == Kind::INTEGER ? std::to_string(number) : std::string(text); }
};

/// Members of the rows of an EventLogIndex, read from the log when they are first asked for and kept in four bytes a
/// row and a store of texts that is bounded by the size of the log. What doesn't fit, and every extra that is no JSON,
/// is read again each time.
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

    /// Makes the members `keys` of the rows at `positions`, all of the entry with this number, ready for Get. False
    /// when the log was changed since the index read it or can't be read: then nothing is ready.
    bool Load(std::size_t entryNumber, const std::vector<std::uint32_t>& positions,
        const std::vector<std::string>& keys);
    /// The code that the store has for this member; of equal codes the members are equal, but for those without a text.
    MemberStore::Handle GetCode(std::uint32_t position, std::size_t keyNumber) const
    {
        return mMembers.CodeOf(mHandles[position], mKeySet->size(), mColumnOfKey[keyNumber]);
    }
    /// The member `keys[keyNumber]` of a row of the last Load. The text lives until the next Load.
    EventMember Get(std::uint32_t position, std::size_t keyNumber) const
    {
        const MemberStore::Handle code = GetCode(position, keyNumber);
        if (MemberStore::IsInteger(code)) {
            return {EventMember::Kind::INTEGER, MemberStore::IntegerOf(code), {}};
        }
        return GetOther(position, code);
    }

private:
    struct Interest {
        std::int32_t firstId;
        std::int32_t lastId;
        std::uint32_t keySet;

        auto operator<=>(const Interest&) const = default;
    };

    void Begin();
    void Apply(const Interest& interest);
    void AddKeys(std::size_t entryNumber, std::uint32_t keySet);
    bool FindColumns(const std::vector<std::string>& keys);
    std::size_t CountMissing(std::size_t first, std::size_t end, std::int64_t start) const;
    void ReadAll(std::int64_t start);
    bool ReadMissing(const std::vector<std::uint32_t>& missing);
    void TakeExtra(std::uint32_t position, const KeySets::Keys& keys, std::string_view extra);
    MemberStore::Handle HandleOf(std::string_view extra, const KeySets::Keys& keys);
    EventMember GetOther(std::uint32_t position, MemberStore::Handle code) const;

    const EventLogIndex& mIndex;
    const FT::sql::Sqlite3Db& mDb;
    std::unique_ptr<FT::sql::SqlCursor> mExtraOfRow;

    KeySets mKeySets;
    std::set<Interest> mInterests;

    bool mHasBegun = false; // since the last Clear
    bool mHasRead = false; // any row since then
    std::vector<MemberStore::Handle> mHandles; // one for each row
    std::vector<std::uint32_t> mKeySetOfEntry;
    std::vector<std::int64_t> mReadSince; // for each entry: all rows from then on have been read
    MemberStore mMembers;

    // Of the last Load.
    const KeySets::Keys* mKeySet = nullptr;
    std::vector<std::size_t> mColumnOfKey;
    std::unordered_map<std::uint32_t, std::string> mRawExtras;

    std::vector<std::string_view> mValues; // room for one row's
};

#endif
