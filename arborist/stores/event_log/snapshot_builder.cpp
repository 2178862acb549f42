#include "arborist/stores/event_log/snapshot_builder.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t MOST_ROWS = std::numeric_limits<std::uint32_t>::max();
constexpr std::int64_t FLAT_VERSIONS = 65536;

template <typename Number>
bool Fits(std::int64_t value)
{
    return value >= std::numeric_limits<Number>::min() && value <= std::numeric_limits<Number>::max();
}

} // namespace

SnapshotBuilder::SnapshotBuilder(std::int64_t lastMoment) : mLastMoment(lastMoment)
{
    mNumberOfId.max_load_factor(0.8F);
}

void SnapshotBuilder::Reserve(std::size_t rows)
{
    mColumns.times.reserve(rows);
    mColumns.rowIds.reserve(rows);
    mColumns.versions.reserve(rows);
    mIdOfRow.reserve(rows);
}

SnapshotBuilder::Version SnapshotBuilder::FindVersion(std::int64_t rowNumber) const
{
    if (static_cast<std::uint64_t>(rowNumber) < mVersions.size()) {
        return mVersions[static_cast<std::size_t>(rowNumber)];
    }
    const auto other = mOtherVersions.find(rowNumber);
    return other == mOtherVersions.end() ? Version() : other->second;
}

SnapshotBuilder::Version& SnapshotBuilder::VersionOf(std::int64_t rowNumber)
{
    if (rowNumber < 0 || rowNumber >= FLAT_VERSIONS) {
        return mOtherVersions[rowNumber];
    }
    const auto place = static_cast<std::size_t>(rowNumber);
    if (place >= mVersions.size()) {
        mVersions.resize(place + 1);
    }
    return mVersions[place];
}

void SnapshotBuilder::AddVersion(std::int64_t rowNumber, bool isNumber, const std::string& name)
{
    const bool isTooMany = !Fits<std::uint16_t>(static_cast<std::int64_t>(mVersionNumbers.size())) &&
        mVersionNumbers.count(name) == 0;
    const auto next = static_cast<std::uint16_t>(mVersionNumbers.size());
    const std::uint16_t number =
        isTooMany ? EventLogSnapshot::UNNAMED_VERSION : mVersionNumbers.emplace(name, next).first->second;
    if (!isNumber) {
        return; // the rows of this version have no number for it, either
    }
    Version& version = VersionOf(rowNumber);
    version.isAmbiguous = version.isAmbiguous || isTooMany || (version.isKnown && version.number != number);
    version.isKnown = true;
    version.number = number;
}

std::uint32_t SnapshotBuilder::NumberOf(std::int32_t id)
{
    const auto next = static_cast<std::uint32_t>(mIds.size());
    const auto [found, isNew] = mNumberOfId.try_emplace(id, next);
    if (isNew) {
        mIds.push_back(id);
        mNeedsQuery.push_back(false);
    }
    return found->second;
}

void SnapshotBuilder::Drop(const Row& row)
{
    std::vector<std::int64_t>& moments = mDropped[static_cast<std::int32_t>(row.id)];
    // A row that is hidden anyway is missed in no window; its id is one with a dropped row all the same.
    if (!row.hasTime || row.time <= mLastMoment) {
        moments.push_back(row.hasTime ? row.time : std::numeric_limits<std::int64_t>::max());
    }
}

void SnapshotBuilder::AddRow(const Row& row)
{
    mIsInOrder = mIsInOrder && mLastRowId < row.rowId;
    mLastRowId = row.rowId;
    if (!Fits<std::int32_t>(row.id)) {
        return; // no rule can name it
    }
    if (!row.isFound) {
        Drop(row);
        return;
    }
    const std::uint32_t id = NumberOf(static_cast<std::int32_t>(row.id));
    if (row.isWhole && row.time > mLastMoment) {
        return;
    }
    const bool fits = Fits<std::uint32_t>(row.time) && Fits<std::uint32_t>(row.rowId) && mIdOfRow.size() != MOST_ROWS;
    const Version version = row.isWhole ? FindVersion(row.version) : Version();
    if (!row.isWhole || !fits || !version.isKnown || version.isAmbiguous) {
        mNeedsQuery[id] = true;
        return;
    }
    mColumns.times.push_back(static_cast<std::uint32_t>(row.time));
    mColumns.rowIds.push_back(static_cast<std::uint32_t>(row.rowId));
    mColumns.versions.push_back(version.number);
    mIdOfRow.push_back(id); // last, so that if memory runs out only complete rows count
}

void SnapshotBuilder::LeaveDroppedToQueries()
{
    for (const auto& [id, moments] : mDropped) {
        LeaveToQuery(id);
    }
}

void SnapshotBuilder::LeaveUnorderedToQueries()
{
    std::vector<std::int64_t> last(mIds.size(), -1);
    for (std::size_t row = 0; row < mIdOfRow.size(); ++row) {
        std::int64_t& before = last[mIdOfRow[row]];
        if (mColumns.rowIds[row] <= before) {
            mNeedsQuery[mIdOfRow[row]] = true;
        }
        before = mColumns.rowIds[row];
    }
    LeaveDroppedToQueries();
}

void SnapshotBuilder::LeaveAllToQueries()
{
    LeaveDroppedToQueries();
    mNeedsQuery.assign(mNeedsQuery.size(), true);
    mIdOfRow.clear();
    mColumns = {};
}

std::shared_ptr<const EventLogSnapshot> SnapshotBuilder::Build(EventLogSnapshot::Origin origin) &&
{
    mNumberOfId = IdDictionary();
    for (auto& [id, moments] : mDropped) {
        std::sort(moments.begin(), moments.end());
    }
    origin.lastMoment = mLastMoment;
    return std::make_shared<EventLogSnapshot>(std::move(mIds), std::move(mNeedsQuery), std::move(mIdOfRow),
        std::move(mColumns), std::move(mVersionNumbers), std::move(mDropped), std::move(origin));
}
