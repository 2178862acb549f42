#include "arborist/stores/event_log_index.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <string_view>

#include "arborist/stores/sql/sql_cursor.h"

namespace {

using Cursor = FT::sql::SqlCursor;

constexpr std::int64_t NO_DATA_VERSION = -1;
constexpr std::uint16_t UNNAMED_VERSION = 0;
constexpr std::size_t MOST_VERSIONS = std::numeric_limits<std::uint16_t>::max();
constexpr std::uint32_t MOST_ROWS = std::numeric_limits<std::uint32_t>::max();
// Bytes of an event in the file, at least.
constexpr std::int64_t SHORTEST_ROW = 16;
// A file with holes may claim any size, so that no more than this is believed.
constexpr std::int64_t MOST_GUESSED_ROWS = 1 << 24;

// The same join as the query for one id; its columns are the ones that can be had without reading a text.
constexpr std::string_view JOINED_ROWS =
    " from event_info join event_info_flow on event_info._ID=event_info_flow._ID"
    " join event_version on event_info.version_id=event_version._ID";

// What the query for one id needs of the log beyond the columns of the index's own statement.
constexpr std::string_view NEEDED_COLUMNS = "select event_info.extra, event_version.VERSION_NAME";
// Its names without a table: they fail where a second table has such a column.
constexpr std::string_view NEEDED_CONDITION = " where event_id = 0 and occurrence_time >= 0";

template <typename Number>
bool Fits(std::int64_t value)
{
    return value >= std::numeric_limits<Number>::min() && value <= std::numeric_limits<Number>::max();
}

// Holds one state of the log for several statements; reading only, so there is nothing to lose at its end.
class ReadTransaction {
public:
    explicit ReadTransaction(const FT::sql::Sqlite3Db& database) : mDb(database) { Cursor(mDb, "BEGIN").Step(); }
    ~ReadTransaction() { Cursor(mDb, "COMMIT").Step(); }
    ReadTransaction(const ReadTransaction&) = delete;
    ReadTransaction& operator=(const ReadTransaction&) = delete;

private:
    const FT::sql::Sqlite3Db& mDb;
};

// 0 where there is no whole number.
std::int64_t NumberOf(const FT::sql::Sqlite3Db& database, const char* sql)
{
    Cursor cursor(database, sql);
    return cursor.Step() && cursor.GetType(0) == Cursor::ColumnType::INTEGER ? cursor.GetInteger(0) : 0;
}

// Room for the rows: as many as there are row numbers between the first and the last, or fit into the file. A guess
// that saves growing, which would need the memory twice.
std::size_t GuessRowCount(const FT::sql::Sqlite3Db& database)
{
    const std::int64_t span = NumberOf(
        database, "select (select max(rowid) from event_info) - (select min(rowid) from event_info) + 1");
    const std::int64_t fitting =
        NumberOf(database, "PRAGMA page_count") * NumberOf(database, "PRAGMA page_size") / SHORTEST_ROW;
    return static_cast<std::size_t>(
        std::clamp<std::int64_t>(span, 0, std::clamp<std::int64_t>(fitting, 0, MOST_GUESSED_ROWS)));
}

} // namespace

// What is known while the log is read.
struct EventLogIndex::Scan {
    // A version row: the number of its name, or that it can't be told from the row number alone.
    struct Version {
        std::uint16_t number;
        bool isUsable;
    };

    std::uint32_t GroupOf(std::int32_t eventId)
    {
        if (groups.empty() || groups[lastGroup].eventId != eventId) {
            const auto [found, isNew] = groupOfId.try_emplace(eventId, static_cast<std::uint32_t>(groups.size()));
            if (isNew) {
                groups.push_back({eventId, 0, 0, true, false});
            }
            lastGroup = found->second;
        }
        return lastGroup;
    }

    const Version* VersionOf(std::int64_t rowNumber)
    {
        if (lastVersion == nullptr || lastVersionRow != rowNumber) {
            const auto found = versionOfRow.find(rowNumber);
            lastVersion = found == versionOfRow.end() ? nullptr : &found->second;
            lastVersionRow = rowNumber;
        }
        return lastVersion;
    }

    std::vector<Entry> groups; // in order of appearance; `end` counts the rows
    std::unordered_map<std::int32_t, std::uint32_t> groupOfId;
    std::uint32_t lastGroup = 0;
    std::unordered_map<std::int64_t, Version> versionOfRow;
    const Version* lastVersion = nullptr;
    std::int64_t lastVersionRow = 0;
    std::vector<std::uint32_t> groupOfPosition;
};

EventLogIndex::EventLogIndex(const FT::sql::Sqlite3Db& database) : mDb(database), mDataVersion(NO_DATA_VERSION) {}

std::int64_t EventLogIndex::ReadDataVersion(const FT::sql::Sqlite3Db& database)
{
    Cursor cursor(database, "PRAGMA data_version");
    return cursor.Step() ? cursor.GetInteger(0) : NO_DATA_VERSION;
}

bool EventLogIndex::IsCurrent() const
{
    return mDataVersion != NO_DATA_VERSION && ReadDataVersion(mDb) == mDataVersion;
}

EventLogIndex::State EventLogIndex::Refresh()
{
    if (!IsCurrent()) {
        Clear();
        ++mGeneration;
        mState = Read();
    }
    return mState;
}

void EventLogIndex::Clear()
{
    mDataVersion = NO_DATA_VERSION;
    mError.clear();
    mEntries = {};
    mTimes = {};
    mRowIds = {};
    mVersions = {};
    mVersionNumbers = {{"", UNNAMED_VERSION}};
}

EventLogIndex::State EventLogIndex::Read()
{
    const ReadTransaction transaction(mDb);
    if (!Cursor(mDb, std::string(NEEDED_COLUMNS).append(JOINED_ROWS).append(NEEDED_CONDITION)).IsReady()) {
        return State::UNREADABLE;
    }
    Scan scan;
    if (!ReadVersions(scan)) {
        return State::UNREADABLE;
    }
    ReadRows(scan);
    if (!mError.empty() && scan.groups.empty()) {
        return State::UNREADABLE;
    }
    Group(scan);
    mDataVersion = ReadDataVersion(mDb);
    return mError.empty() ? State::READY : State::BROKEN_OFF;
}

bool EventLogIndex::ReadVersions(Scan& scan)
{
    Cursor cursor(mDb, "select _ID, VERSION_NAME from event_version");
    while (cursor.Step()) {
        const std::string name(cursor.GetText(1));
        const auto next = static_cast<std::uint16_t>(mVersionNumbers.size());
        Scan::Version version{UNNAMED_VERSION, true};
        if (const auto known = mVersionNumbers.find(name); known != mVersionNumbers.end()) {
            version.number = known->second;
        } else if (mVersionNumbers.size() < MOST_VERSIONS) {
            mVersionNumbers.emplace(name, next);
            version.number = next;
        } else {
            version.isUsable = false;
        }
        if (cursor.GetType(0) != Cursor::ColumnType::INTEGER) {
            continue; // its rows won't show a number either
        }
        const auto [row, isNew] = scan.versionOfRow.try_emplace(cursor.GetInteger(0), version);
        row->second.isUsable = row->second.isUsable && (isNew || row->second.number == version.number);
    }
    return cursor.IsOk();
}

void EventLogIndex::ReadRows(Scan& scan)
{
    const auto statement = [](const char* rowId) {
        return std::string("select event_info.event_id, event_info_flow.occurrence_time, event_version._ID, ")
            .append(rowId).append(JOINED_ROWS);
    };
    const bool hasRowIds = Cursor(mDb, statement("event_info.rowid")).IsReady();
    const std::size_t guess = GuessRowCount(mDb);
    mTimes.reserve(guess);
    mRowIds.reserve(guess);
    mVersions.reserve(guess);
    scan.groupOfPosition.reserve(guess);
    Cursor cursor(mDb, statement(hasRowIds ? "event_info.rowid" : "null"));
    while (cursor.Step()) {
        // Types first: reading a text as a number may change its type.
        const Cursor::ColumnType idType = cursor.GetType(0);
        const Cursor::ColumnType timeType = cursor.GetType(1);
        const std::int64_t eventId = cursor.GetInteger(0);
        // No query finds a row without an id or a time, nor one whose id no rule can name.
        if (idType == Cursor::ColumnType::NONE || timeType == Cursor::ColumnType::NONE || !Fits<std::int32_t>(eventId)) {
            continue;
        }
        const std::uint32_t group = scan.GroupOf(static_cast<std::int32_t>(eventId));
        const std::int64_t time = cursor.GetInteger(1);
        const std::int64_t rowId = cursor.GetInteger(3);
        const Scan::Version* const version =
            cursor.GetType(2) == Cursor::ColumnType::INTEGER ? scan.VersionOf(cursor.GetInteger(2)) : nullptr;
        if (idType != Cursor::ColumnType::INTEGER || timeType != Cursor::ColumnType::INTEGER ||
            !Fits<std::uint32_t>(time) || cursor.GetType(3) != Cursor::ColumnType::INTEGER ||
            !Fits<std::uint32_t>(rowId) || version == nullptr || !version->isUsable || mTimes.size() == MOST_ROWS) {
            scan.groups[group].needsQuery = true;
            continue;
        }
        ++scan.groups[group].end;
        scan.groupOfPosition.push_back(group);
        mTimes.push_back(static_cast<std::uint32_t>(time));
        mRowIds.push_back(static_cast<std::uint32_t>(rowId));
        mVersions.push_back(version->number);
    }
    mError = cursor.GetError();
}

void EventLogIndex::Group(Scan& scan)
{
    std::vector<std::uint32_t> order(scan.groups.size());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [&scan](std::uint32_t left, std::uint32_t right) {
        return scan.groups[left].eventId < scan.groups[right].eventId;
    });
    std::uint32_t next = 0;
    for (const std::uint32_t group : order) {
        Entry& entry = scan.groups[group];
        entry.begin = next;
        next += entry.end;
        entry.end = entry.begin; // grows back below
    }
    std::vector<std::uint32_t>& target = scan.groupOfPosition;
    for (std::uint32_t& place : target) {
        place = scan.groups[place].end++;
    }
    // Every row goes where it belongs by swaps along the cycles: beside the rows there is no room for them again.
    for (std::size_t position = 0; position < target.size(); ++position) {
        while (target[position] != position) {
            const std::uint32_t other = target[position];
            std::swap(mTimes[position], mTimes[other]);
            std::swap(mRowIds[position], mRowIds[other]);
            std::swap(mVersions[position], mVersions[other]);
            std::swap(target[position], target[other]);
        }
    }
    mEntries.reserve(order.size());
    for (const std::uint32_t group : order) {
        Entry& entry = scan.groups[group];
        const auto begin = mTimes.begin() + entry.begin;
        entry.isAscending = std::is_sorted(begin, begin + (entry.end - entry.begin));
        mEntries.push_back(entry);
    }
}

std::uint32_t EventLogIndex::FirstSince(const Entry& entry, std::int64_t start) const
{
    const auto begin = mTimes.begin() + entry.begin;
    const auto end = mTimes.begin() + entry.end;
    const auto first = std::lower_bound(begin, end, start,
        [](std::uint32_t time, std::int64_t limit) { return static_cast<std::int64_t>(time) < limit; });
    return entry.begin + static_cast<std::uint32_t>(first - begin);
}

EventLogIndex::Filter EventLogIndex::FilterFor(std::int64_t start, const std::string& versionName) const
{
    const auto found = mVersionNumbers.find(versionName);
    return {start, true, found == mVersionNumbers.end() ? UNNAMED_VERSION : found->second};
}

std::size_t EventLogIndex::Count(const Entry& entry, const Filter& filter) const
{
    const std::uint32_t begin = entry.isAscending ? FirstSince(entry, filter.start) : entry.begin;
    if (entry.isAscending && !filter.byVersion) {
        return entry.end - begin;
    }
    // Written so that compilers make one loop over several rows at once of it.
    const bool anyVersion = !filter.byVersion;
    const std::uint16_t allowed = filter.version;
    const std::uint32_t* const times = mTimes.data();
    const std::uint16_t* const versions = mVersions.data();
    std::uint32_t count = 0;
    if (entry.isAscending) {
        for (std::uint32_t position = begin; position < entry.end; ++position) {
            count += static_cast<std::uint32_t>((versions[position] == UNNAMED_VERSION) |
                (versions[position] == allowed));
        }
        return count;
    }
    const auto start = static_cast<std::uint64_t>(std::max<std::int64_t>(filter.start, 0));
    for (std::uint32_t position = begin; position < entry.end; ++position) {
        const bool isAllowed = anyVersion | (versions[position] == UNNAMED_VERSION) | (versions[position] == allowed);
        count += static_cast<std::uint32_t>((times[position] >= start) & isAllowed);
    }
    return count;
}

void EventLogIndex::Select(const Entry& entry, const Filter& filter, std::vector<std::uint32_t>& positions) const
{
    const std::uint32_t begin = entry.isAscending ? FirstSince(entry, filter.start) : entry.begin;
    for (std::uint32_t position = begin; position < entry.end; ++position) {
        const std::uint16_t version = mVersions[position];
        if (static_cast<std::int64_t>(mTimes[position]) >= filter.start &&
            (!filter.byVersion || version == UNNAMED_VERSION || version == filter.version)) {
            positions.push_back(position);
        }
    }
}
