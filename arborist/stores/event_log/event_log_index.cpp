#include "arborist/stores/event_log/event_log_index.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <numeric>
#include <string_view>
#include <utility>

#include "arborist/stores/sql/sql_cursor.h"
#include "arborist/utilities/time_util.h"

namespace {

using Cursor = FT::sql::SqlCursor;

constexpr std::size_t MOST_COUNTS = 16;
// Counts may take this many bytes, and one more for every four rows.
constexpr std::size_t SMALLEST_COUNTS = 65536;
// Where the day stands in "YYYY-MM-DD HH:MM:SS"; a row's time fits 32 bits, so that its year has four digits.
constexpr std::size_t DAY_IN_TIME = 8;
constexpr std::uint32_t SECONDS_OF_HOUR = 3600;
constexpr std::int64_t NO_DATA_VERSION = -1;
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

int DayOf(std::int64_t seconds)
{
    const std::string time = TimeUtil::GetFormatTime(seconds);
    int day = 0;
    std::from_chars(time.data() + DAY_IN_TIME, time.data() + time.size(), day);
    return day;
}

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

// Numbers of groups, one for each row: two bytes where that is enough.
class GroupColumn {
public:
    void Reserve(std::size_t count) { mLow.reserve(count); }
    void Append(std::uint32_t group)
    {
        if (group > LOW_BITS && mHigh.empty()) {
            mHigh.resize(mLow.size());
        }
        mLow.push_back(static_cast<std::uint16_t>(group & LOW_BITS));
        if (group > LOW_BITS || !mHigh.empty()) {
            mHigh.push_back(static_cast<std::uint16_t>(group >> 16));
        }
    }

    std::size_t GetCount() const { return mLow.size(); }
    std::uint32_t operator[](std::size_t row) const
    {
        return mHigh.empty() ? mLow[row] : mLow[row] | static_cast<std::uint32_t>(mHigh[row]) << 16;
    }

private:
    static constexpr std::uint32_t LOW_BITS = 0xFFFF;

    std::vector<std::uint16_t> mLow;
    std::vector<std::uint16_t> mHigh;
};

// Puts the values of a column, which come in the order of the log, group by group. `next` is where each group begins.
void GroupValues(std::vector<std::uint16_t>& column, const GroupColumn& groups, std::vector<std::uint32_t> next)
{
    std::vector<std::uint16_t> grouped(column.size());
    for (std::size_t row = 0; row < column.size(); ++row) {
        grouped[next[groups[row]]++] = column[row];
    }
    column.swap(grouped);
}

// The same in two halves, so that two bytes a row are all the room it takes.
void GroupValues(std::vector<std::uint32_t>& column, const GroupColumn& groups, const std::vector<std::uint32_t>& begins)
{
    std::vector<std::uint16_t> grouped(column.size());
    for (const unsigned int shift : {0U, 16U}) {
        std::vector<std::uint32_t> next = begins;
        for (std::size_t row = 0; row < column.size(); ++row) {
            grouped[next[groups[row]]++] = static_cast<std::uint16_t>(column[row] >> shift);
        }
        const std::uint32_t otherHalf = 0xFFFF0000U >> shift;
        for (std::size_t row = 0; row < column.size(); ++row) {
            column[row] = (column[row] & otherHalf) | static_cast<std::uint32_t>(grouped[row]) << shift;
        }
    }
}

} // namespace

// What is known while the log is read.
struct EventLogIndex::Scan {
    // A version row: the number of its name, or that it can't be told from the row number alone.
    struct Version {
        std::uint16_t number = UNNAMED_VERSION;
        bool isKnown = false;
        bool isAmbiguous = false;
    };

    Version& VersionOf(std::int64_t rowNumber)
    {
        if (rowNumber < 0 || rowNumber >= FLAT_VERSIONS) {
            return otherVersions[rowNumber];
        }
        const auto place = static_cast<std::size_t>(rowNumber);
        if (place >= versions.size()) {
            versions.resize(place + 1);
        }
        return versions[place];
    }

    static constexpr std::int64_t FLAT_VERSIONS = 65536;

    std::vector<Entry> groups; // in order of appearance; `end` counts the rows
    GroupNumbers groupOfId;
    GroupColumn groupOfRow;
    std::vector<Version> versions; // by row number
    std::unordered_map<std::int64_t, Version> otherVersions;
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
    mEntryOfId = {};
    mCounts.clear();
    mDays.fill({});
    mAreRowIdsAscending = true;
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
    return FT::sql::ScanRows(mDb, "_ID, VERSION_NAME", "from event_version", [&](const FT::sql::ScannedRow& row) {
        const std::string name(row.GetText(1));
        const bool isTooMany = mVersionNumbers.size() > VERSION_MASK && mVersionNumbers.count(name) == 0;
        const auto next = static_cast<std::uint16_t>(mVersionNumbers.size());
        const std::uint16_t number = isTooMany ? UNNAMED_VERSION : mVersionNumbers.emplace(name, next).first->second;
        if (!row.IsInteger(0)) {
            return; // its rows won't show a number either
        }
        Scan::Version& version = scan.VersionOf(row.GetInteger(0));
        version.isAmbiguous = version.isAmbiguous || isTooMany || (version.isKnown && version.number != number);
        version.isKnown = true;
        version.number = number;
    }, mError);
}

void EventLogIndex::ReadRows(Scan& scan)
{
    const std::string columns = "event_info.event_id, event_info_flow.occurrence_time, event_version._ID, ";
    const std::string from(JOINED_ROWS);
    const bool hasRowIds = Cursor(mDb, "select event_info.rowid" + from).IsReady();
    const std::size_t guess = GuessRowCount(mDb);
    mTimes.reserve(guess);
    mRowIds.reserve(guess);
    mVersions.reserve(guess);
    scan.groupOfRow.Reserve(guess);
    FT::sql::ScanRows(mDb, columns + (hasRowIds ? "event_info.rowid" : "null"), from,
        [&](const FT::sql::ScannedRow& row) { TakeRow(scan, row); }, mError);
}

void EventLogIndex::TakeRow(Scan& scan, const FT::sql::ScannedRow& row)
{
    // Types first: reading a text as a number may change its type.
    const bool isWhole = row.IsInteger(0) && row.IsInteger(1) && row.IsInteger(2) && row.IsInteger(3);
    const bool isFound = isWhole || !(row.IsNull(0) || row.IsNull(1));
    const std::int64_t eventId = row.GetInteger(0);
    // No query finds a row without an id or a time, nor one whose id no rule can name.
    if (!isFound || !Fits<std::int32_t>(eventId)) {
        return;
    }
    const std::uint32_t group = scan.groupOfId.NumberOf(static_cast<std::int32_t>(eventId));
    if (group == scan.groups.size()) {
        scan.groups.push_back({static_cast<std::int32_t>(eventId), 0, 0, true, false});
    }
    const std::int64_t time = row.GetInteger(1);
    const std::int64_t rowId = row.GetInteger(3);
    if (!isWhole || !Fits<std::uint32_t>(time) || !Fits<std::uint32_t>(rowId) || mTimes.size() == MOST_ROWS) {
        scan.groups[group].needsQuery = true;
        return;
    }
    const Scan::Version version = scan.VersionOf(row.GetInteger(2));
    if (!version.isKnown || version.isAmbiguous) {
        scan.groups[group].needsQuery = true;
        return;
    }
    ++scan.groups[group].end;
    scan.groupOfRow.Append(group);
    mAreRowIdsAscending = mAreRowIdsAscending && (mRowIds.empty() || mRowIds.back() < rowId);
    mTimes.push_back(static_cast<std::uint32_t>(time));
    mRowIds.push_back(static_cast<std::uint32_t>(rowId));
    mVersions.push_back(version.number);
}

void EventLogIndex::Group(Scan& scan)
{
    std::vector<std::uint32_t> order(scan.groups.size());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [&scan](std::uint32_t left, std::uint32_t right) {
        return scan.groups[left].eventId < scan.groups[right].eventId;
    });
    std::vector<std::uint32_t> begins(order.size());
    std::uint32_t next = 0;
    for (const std::uint32_t group : order) {
        Entry& entry = scan.groups[group];
        begins[group] = next;
        entry.end += next; // held the count
        entry.begin = next;
        next = entry.end;
    }
    GroupValues(mVersions, scan.groupOfRow, begins);
    GroupValues(mTimes, scan.groupOfRow, begins);
    GroupValues(mRowIds, scan.groupOfRow, begins);
    mEntries.reserve(order.size());
    mEntryOfId = std::move(scan.groupOfId);
    for (const std::uint32_t group : order) {
        Entry& entry = scan.groups[group];
        const auto begin = mTimes.begin() + entry.begin;
        entry.isAscending = std::is_sorted(begin, begin + (entry.end - entry.begin));
        mEntryOfId.Renumber(entry.eventId, static_cast<std::uint32_t>(mEntries.size()));
        mEntries.push_back(entry);
    }
}

std::int32_t EventLogIndex::ReadDayOfMonth(std::uint32_t position)
{
    // The events of a log lie close together: the calendar is asked for whole hours, most of which lie in one day.
    const std::uint32_t time = mTimes[position];
    DayOfHour& known = mDays[time / SECONDS_OF_HOUR % mDays.size()];
    const std::uint32_t start = time - time % SECONDS_OF_HOUR;
    if (known.day == 0 || known.start != start) {
        const int day = DayOf(start);
        known = {start, DayOf(std::int64_t{start} + SECONDS_OF_HOUR - 1) == day ? day : 0};
    }
    const int day = known.day != 0 ? known.day : DayOf(time);
    mVersions[position] = static_cast<std::uint16_t>((mVersions[position] & VERSION_MASK) | day << VERSION_BITS);
    return day;
}

std::uint32_t EventLogIndex::FirstSince(const Entry& entry, std::int64_t start) const
{
    if (!entry.isAscending) {
        return entry.begin;
    }
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
    const std::uint32_t begin = FirstSince(entry, filter.start);
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
            const int version = versions[position] & VERSION_MASK;
            count += static_cast<std::uint32_t>((version == UNNAMED_VERSION) | (version == allowed));
        }
        return count;
    }
    const auto start = static_cast<std::uint64_t>(std::max<std::int64_t>(filter.start, 0));
    for (std::uint32_t position = begin; position < entry.end; ++position) {
        const int version = versions[position] & VERSION_MASK;
        const bool isAllowed = anyVersion | (version == UNNAMED_VERSION) | (version == allowed);
        count += static_cast<std::uint32_t>((times[position] >= start) & isAllowed);
    }
    return count;
}

EventLogIndex::Counts EventLogIndex::CountsFor(const Filter& filter)
{
    const std::size_t bytes = std::max<std::size_t>(mEntries.size(), 1) * sizeof(std::uint32_t);
    const std::size_t most = std::min(MOST_COUNTS, (SMALLEST_COUNTS + mTimes.size() / 4) / bytes);
    const auto known = std::find_if(mCounts.begin(), mCounts.end(), [&filter](const CountsOfFilter& counts) {
        return counts.filter.start == filter.start && counts.filter.byVersion == filter.byVersion &&
            counts.filter.version == filter.version;
    });
    if (known != mCounts.end()) {
        mCounts.splice(mCounts.end(), mCounts, known);
        return Counts(*this, filter, known->counts.data());
    }
    if (most == 0) {
        return Counts(*this, filter, nullptr);
    }
    // What was asked for longest ago makes room; a Counts in use is one of the last two.
    if (mCounts.size() >= std::max<std::size_t>(most, 2)) {
        mCounts.pop_front();
    }
    mCounts.push_back({filter, std::vector<std::uint32_t>(mEntries.size(), NOT_COUNTED)});
    return Counts(*this, filter, mCounts.back().counts.data());
}

void EventLogIndex::Select(const Entry& entry, const Filter& filter, std::vector<std::uint32_t>& positions) const
{
    const std::uint32_t begin = FirstSince(entry, filter.start);
    positions.resize(entry.end - begin);
    if (entry.isAscending && !filter.byVersion) {
        std::iota(positions.begin(), positions.end(), begin);
        return;
    }
    std::size_t selected = 0;
    for (std::uint32_t position = begin; position < entry.end; ++position) {
        // Written always and kept if it passes: cheaper than a branch that can't be foreseen.
        positions[selected] = position;
        selected += static_cast<std::size_t>(Passes(position, filter));
    }
    positions.resize(selected);
}

void EventLogIndex::CountDays(const Entry& entry, const Filter& filter, DayCounts& days)
{
    for (std::uint32_t position = FirstSince(entry, filter.start); position < entry.end; ++position) {
        const auto day = static_cast<std::size_t>(GetDayOfMonth(position));
        days[day] += static_cast<std::int32_t>(Passes(position, filter));
    }
}
