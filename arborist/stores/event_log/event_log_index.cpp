#include "arborist/stores/event_log/event_log_index.h"

#include <algorithm>
#include <limits>
#include <map>
#include <numeric>
#include <string_view>
#include <utility>

#include "arborist/stores/event_log/calendar.h"
#include "arborist/stores/sql/sql_cursor.h"

namespace {

using Cursor = FT::sql::SqlCursor;

constexpr std::size_t MOST_COUNTS = 16;
// Counts may take this many bytes for each row; with few rows to an id they are not worth keeping.
constexpr std::size_t COUNT_BYTES_A_ROW = 2;
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

// Puts 16 bits of each row, which come in the order of the log, group by group: two bytes a row are all the room it
// takes. `begins` is where each group begins, and at the end the number of rows.
template <typename Read, typename Write>
void GroupBits(const PackedColumn& groups, std::vector<std::uint32_t>& begins, Read read, Write write)
{
    std::vector<std::uint16_t> grouped(groups.GetCount());
    for (std::size_t row = 0; row < grouped.size(); ++row) {
        grouped[begins[groups[row]]++] = read(row);
    }
    // Each group now begins where the next one did.
    std::copy_backward(begins.begin(), begins.end() - 1, begins.end());
    begins.front() = 0;
    for (std::size_t row = 0; row < grouped.size(); ++row) {
        write(row, grouped[row]);
    }
}

void GroupColumn(const PackedColumn& groups, std::vector<std::uint32_t>& begins, PackedColumn& column)
{
    for (unsigned int shift = 0; shift < 8 * column.GetWidth(); shift += 16) {
        const std::uint32_t otherHalf = 0xFFFF0000U >> shift;
        GroupBits(
            groups, begins,
            [&](std::size_t row) { return static_cast<std::uint16_t>(column.GetDistance(row) >> shift); },
            [&](std::size_t row, std::uint16_t bits) {
                column.SetDistance(row, (column.GetDistance(row) & otherHalf) | std::uint32_t{bits} << shift);
            });
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

    IdTable::Ids ids; // in order of appearance, as the groups are numbered
    IdTable groupOfId;
    std::vector<bool> needsQuery; // of each group
    PackedColumn groupOfRow;
    std::int64_t lastRowId = -1;
    Calendar calendar;
    std::vector<Version> versions; // by row number
    std::map<std::int64_t, Version> otherVersions; // a hash of numbers that a log may choose would not be safe
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
    mIds = IdTable::Ids();
    mBegins = PackedColumn();
    mIsAscending.clear();
    mNeedsQuery.clear();
    mTimes = PackedColumn(TIME_HEAD_ROOM);
    mRowIds = PackedColumn();
    mVersions = std::vector<std::uint16_t>();
    mCounts.clear();
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
    if (!mError.empty() && scan.ids.empty()) {
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
    mTimes.Reserve(guess, 2 * TIME_HEAD_ROOM - 1);
    mRowIds.Reserve(guess, static_cast<std::uint32_t>(guess));
    mVersions.reserve(guess);
    scan.groupOfRow.Reserve(guess, 0xFFFF);
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
    const std::uint32_t group = scan.groupOfId.FindOrAppend(scan.ids, static_cast<std::int32_t>(eventId));
    if (group == scan.needsQuery.size()) {
        scan.needsQuery.push_back(false);
    }
    const std::int64_t time = row.GetInteger(1);
    const std::int64_t rowId = row.GetInteger(3);
    if (!isWhole || !Fits<std::uint32_t>(time) || !Fits<std::uint32_t>(rowId) || mVersions.size() == MOST_ROWS) {
        scan.needsQuery[group] = true;
        return;
    }
    const Scan::Version version = scan.VersionOf(row.GetInteger(2));
    if (!version.isKnown || version.isAmbiguous) {
        scan.needsQuery[group] = true;
        return;
    }
    mAreRowIdsAscending = mAreRowIdsAscending && scan.lastRowId < rowId;
    scan.lastRowId = rowId;
    mTimes.Append(static_cast<std::uint32_t>(time));
    mRowIds.Append(static_cast<std::uint32_t>(rowId));
    const int day = scan.calendar.DayOfMonth(static_cast<std::uint32_t>(time));
    mVersions.push_back(static_cast<std::uint16_t>(version.number | day << VERSION_BITS));
    scan.groupOfRow.Append(group); // last: should memory run out, a row counts that stands in all columns
}

// Numbers the groups anew, ascending by id.
void EventLogIndex::GroupIds(Scan& scan)
{
    scan.groupOfId = IdTable();
    mIds = scan.ids;
    std::sort(mIds.begin(), mIds.end());
    PackedColumn entryOfGroup;
    entryOfGroup.Assign(mIds.size(), static_cast<std::uint32_t>(mIds.size()));
    mNeedsQuery.resize(mIds.size());
    for (std::size_t group = 0; group < scan.ids.size(); ++group) {
        const std::size_t entry = FirstEntryFrom(scan.ids[group]);
        entryOfGroup.Set(group, static_cast<std::uint32_t>(entry));
        mNeedsQuery[entry] = scan.needsQuery[group];
    }
    scan.ids = IdTable::Ids();
    for (std::size_t row = 0; row < scan.groupOfRow.GetCount(); ++row) {
        scan.groupOfRow.Set(row, entryOfGroup[scan.groupOfRow[row]]);
    }
}

void EventLogIndex::GroupRows(const PackedColumn& entryOfRow)
{
    std::vector<std::uint32_t> begins(mIds.size() + 1);
    for (std::size_t row = 0; row < entryOfRow.GetCount(); ++row) {
        ++begins[entryOfRow[row] + 1];
    }
    std::partial_sum(begins.begin(), begins.end(), begins.begin());
    GroupBits(
        entryOfRow, begins, [this](std::size_t row) { return mVersions[row]; },
        [this](std::size_t row, std::uint16_t bits) { mVersions[row] = bits; });
    GroupColumn(entryOfRow, begins, mTimes);
    GroupColumn(entryOfRow, begins, mRowIds);
    mBegins.Reserve(begins.size(), begins.back());
    for (const std::uint32_t begin : begins) {
        mBegins.Append(begin);
    }
}

void EventLogIndex::Group(Scan& scan)
{
    GroupIds(scan);
    GroupRows(scan.groupOfRow);
    scan.groupOfRow = PackedColumn();
    mIsAscending.resize(mIds.size());
    for (std::size_t number = 0; number < mIds.size(); ++number) {
        const Entry entry = GetEntry(number);
        std::uint32_t row = entry.begin;
        while (row + 1 < entry.end && mTimes[row] <= mTimes[row + 1]) {
            ++row;
        }
        mIsAscending[number] = row + 1 >= entry.end;
    }
}

std::size_t EventLogIndex::FirstEntryFrom(std::int64_t id) const
{
    return static_cast<std::size_t>(std::lower_bound(mIds.begin(), mIds.end(), id) - mIds.begin());
}

std::uint32_t EventLogIndex::FirstSince(const Entry& entry, std::int64_t start) const
{
    if (!entry.isAscending) {
        return entry.begin;
    }
    std::uint32_t first = entry.begin;
    for (std::uint32_t rest = entry.end - first; rest != 0;) {
        const std::uint32_t half = rest / 2;
        const bool isBefore = std::int64_t{mTimes[first + half]} < start;
        first = isBefore ? first + half + 1 : first;
        rest = isBefore ? rest - half - 1 : half;
    }
    return first;
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
        count += static_cast<std::uint32_t>((mTimes[position] >= start) & isAllowed);
    }
    return count;
}

EventLogIndex::Counts EventLogIndex::CountsFor(const Filter& filter)
{
    const std::size_t bytes = std::max<std::size_t>(mIds.size(), 1) * sizeof(std::uint32_t);
    const std::size_t most = std::min(MOST_COUNTS, COUNT_BYTES_A_ROW * mVersions.size() / bytes);
    const auto known = std::find_if(mCounts.begin(), mCounts.end(), [&filter](const CountsOfFilter& counts) {
        return counts.filter.start == filter.start && counts.filter.byVersion == filter.byVersion &&
            counts.filter.version == filter.version;
    });
    if (known != mCounts.end()) {
        mCounts.splice(mCounts.end(), mCounts, known);
        return Counts(*this, filter, known->counts.data());
    }
    if (most < 2) {
        return Counts(*this, filter, nullptr);
    }
    // What was asked for longest ago makes room; a Counts in use is one of the last two.
    if (mCounts.size() >= most) {
        mCounts.pop_front();
    }
    mCounts.push_back({filter, std::vector<std::uint32_t>(mIds.size(), NOT_COUNTED)});
    return Counts(*this, filter, mCounts.back().counts.data());
}

void EventLogIndex::Select(const Range& range, const Filter& filter, std::vector<std::uint32_t>& positions) const
{
    positions.resize(range.end - range.begin);
    if (range.isSince && !filter.byVersion) {
        std::iota(positions.begin(), positions.end(), range.begin);
        return;
    }
    // Written always and kept if it passes: cheaper than a branch that can't be foreseen.
    std::size_t selected = 0;
    for (std::uint32_t position = range.begin; position < range.end; ++position) {
        positions[selected] = position;
        selected += static_cast<std::size_t>(
            range.isSince ? IsOfVersion(mVersions[position], filter) : Passes(position, filter));
    }
    positions.resize(selected);
}

void EventLogIndex::CountDays(const Range& range, const Filter& filter, DayCounts& days) const
{
    const auto count = [&](auto passes) {
        for (std::uint32_t position = range.begin; position < range.end; ++position) {
            days[static_cast<std::size_t>(GetDayOfMonth(position))] += static_cast<std::int32_t>(passes(position));
        }
    };
    if (!range.isSince) {
        count([this, &filter](std::uint32_t position) { return Passes(position, filter); });
    } else if (filter.byVersion) {
        count([this, version = filter.version](std::uint32_t position) {
            const int rowVersion = mVersions[position] & VERSION_MASK;
            return (rowVersion == UNNAMED_VERSION) | (rowVersion == version);
        });
    } else {
        count([](std::uint32_t) { return true; });
    }
}
