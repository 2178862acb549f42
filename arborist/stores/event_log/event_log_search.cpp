#include "arborist/stores/event_log/event_log_search.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "arborist/frame/log.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/stores/event_log/event_log_reader.h"
#include "arborist/stores/event_log/unchanged_log.h"
#include "arborist/utilities/time_util.h"

namespace {

// After so many queries of ids, it pays to look where the rows of all such ids are.
constexpr std::size_t FEW_QUERIES = 3;
// Number of filters whose counts are kept: those of three windows, with and without a version.
constexpr std::size_t MOST_COUNTS = 6;
// Bytes that counts may take for each row of the log. If ids have few rows, counts are not worth keeping.
constexpr std::size_t COUNT_BYTES_A_ROW = 2;

} // namespace

struct EventLogSearch::OpenVisit {
    const Query& query;
    const std::string& versionName;
    const Visitor& visitor;
    AnswerCache::Asked asked;
    std::int64_t last;
    std::shared_ptr<EventRows::Visit> shared{};
    // Shared, so that they outlive the call of the visitor that uses them.
    std::shared_ptr<RowCounts> found{}; // since the start, of any version
    std::shared_ptr<RowCounts> counts{};
    Reading reading = Reading::WHOLE;
};

EventLogSearch::EventLogSearch(const FT::sql::Sqlite3Db& database) : mDb(database), mEventQuery(database), mAnswers(database)
{
}

void EventLogSearch::Foresee(std::int32_t firstId, std::int32_t lastId, const EventRows::Questions& questions)
{
    mAnswers.Foresee(firstId, lastId, questions);
}

void EventLogSearch::LogVersionName(const std::string& versionName)
{
    FT::Log::GetInstance().Output(FT::LEVEL_DEBUG, "FUNc:%s: version name: %s", "AlarmRuleDbHelper::GetEventList",
        versionName.c_str());
}

void EventLogSearch::Refresh()
{
    if (!UnchangedLog::IsIn(mDb, mSnapshot)) {
        mCounts.clear();
        mAnswers.Reset(nullptr);
        mSnapshot.reset();
        mSnapshot = ReadEventLog(mDb);
        mAnswers.Reset(mSnapshot);
        mQueries = 0;
        mRowsOfIds.reset();
    }
}

EventLogSearch::Reading EventLogSearch::Visit(
    const Query& query, const std::string& versionName, const Visitor& visitor)
{
    OpenVisit visit{query, versionName, visitor,
        {query.firstId, query.lastId, query.startTime,
            mAnswers.Foresee(query.firstId, query.lastId, query.questions)}, TimeUtil::GetLastMoment()};
    visit.shared = std::make_shared<EventRows::Visit>(EventRows::Visit{query.questions});
    Refresh();
    // Without a snapshot, query each id, which logs its own failure. If the log becomes readable, continue with its
    // snapshot.
    std::int64_t id = query.firstId;
    for (const std::int64_t end = query.GetLoggedEnd(); mSnapshot == nullptr; ++id) {
        if (id >= end) {
            return Reading::UNREADABLE;
        }
        if (VisitByQuery(visit, static_cast<std::int32_t>(id))) {
            return visit.reading;
        }
        Refresh();
    }
    VisitIds(visit, id);
    return visit.reading;
}

// Whether the snapshot has all rows, but for those of ids that need a query of their own.
bool EventLogSearch::IsWhole() const
{
    return mSnapshot != nullptr && !mSnapshot->GetOrigin().isEachIdAsked && mSnapshot->GetOrigin().breakError.empty() &&
        mSnapshot->GetOrigin().damage.empty();
}

std::optional<std::int64_t> EventLogSearch::GetFirstTime() const
{
    const std::optional<std::uint32_t> time = IsWhole() ? mSnapshot->GetFirstTime() : std::nullopt;
    return time && *time <= TimeUtil::GetLastMoment() ? std::optional<std::int64_t>(*time) : std::nullopt;
}

std::vector<std::int64_t> EventLogSearch::ListUnseen(std::int32_t firstId, std::int32_t lastId) const
{
    return IsWhole() ? mSnapshot->ListUnseen(firstId, lastId) : std::vector<std::int64_t>();
}

void EventLogSearch::ReadAhead()
{
    Refresh();
    if (mSnapshot != nullptr) {
        mAnswers.ReadForeseen();
    }
}

bool EventLogSearch::HasUnseen(std::int32_t firstId, std::int32_t lastId, std::int64_t start) const
{
    return IsWhole() && mSnapshot->HasUnseen(firstId, lastId, start, TimeUtil::GetLastMoment());
}

std::optional<std::uint64_t> EventLogSearch::CountRows(
    std::int32_t firstId, std::int32_t lastId, std::int64_t start, std::int64_t end) const
{
    if (!IsWhole()) {
        return std::nullopt;
    }
    const auto countSince = [this, last = TimeUtil::GetLastMoment()](const Entry& entry, std::int64_t time) {
        return mSnapshot->Count(mSnapshot->RangeSince(entry, time, last), {time, std::nullopt, last});
    };
    std::uint64_t count = 0;
    const std::size_t last = mSnapshot->FirstEntryFrom(lastId + std::int64_t{1});
    for (std::size_t number = mSnapshot->FirstEntryFrom(firstId); number < last; ++number) {
        const Entry entry = mSnapshot->GetEntry(number);
        if (entry.needsQuery) {
            return std::nullopt;
        }
        count += countSince(entry, start) - countSince(entry, std::max(start, end));
    }
    return count;
}

std::shared_ptr<RowCounts> EventLogSearch::CountsFor(const EventLogSnapshot::Filter& filter)
{
    const auto known = std::find_if(
        mCounts.begin(), mCounts.end(), [&filter](const auto& counts) { return counts->GetFilter() == filter; });
    if (known != mCounts.end()) {
        std::rotate(known, known + 1, mCounts.end());
        return mCounts.back();
    }
    // Keep at least two, as the current visit uses two.
    const std::size_t room = COUNT_BYTES_A_ROW * mSnapshot->GetRowCount() / sizeof(std::uint32_t);
    if (mCounts.size() >= std::clamp<std::size_t>(room / (mSnapshot->GetEntryCount() + 1), 2, MOST_COUNTS)) {
        mCounts.erase(mCounts.begin());
    }
    mCounts.push_back(std::make_shared<RowCounts>(mSnapshot, filter));
    return mCounts.back();
}

bool EventLogSearch::VisitIds(OpenVisit& visit, std::int64_t firstId)
{
    const EventLogSnapshot& snapshot = *mSnapshot;
    visit.shared->snapshot = mSnapshot;
    const EventLogSnapshot::Origin& origin = snapshot.GetOrigin();
    const std::int64_t last =
        visit.last >= origin.lastMoment ? std::numeric_limits<std::int64_t>::max() : visit.last;
    visit.found = CountsFor({visit.query.startTime, std::nullopt, last});
    visit.counts = visit.query.fromUpdate
        ? CountsFor({visit.query.startTime, snapshot.NumberOfVersion(visit.versionName), last}) : visit.found;
    const bool isBroken = origin.isEachIdAsked || !origin.breakError.empty();
    if (!origin.damage.empty()) {
        StatementTrouble::Tell(origin.damage, mDb.path);
    }
    if (isBroken || !origin.damage.empty()) {
        visit.reading = snapshot.GetEntryCount() == 0 ? Reading::UNREADABLE : Reading::BROKEN_OFF;
    }
    mAnswers.Prepare(visit.asked);
    const std::int64_t end = visit.query.lastId + std::int64_t{1};
    // An id that may have rows is asked, however many there are.
    const bool mayOthersHaveRows = origin.isEachIdAsked && !origin.areAllIdsKnown;
    const std::int64_t loggedEnd = mayOthersHaveRows ? end : isBroken ? visit.query.GetLoggedEnd() : firstId;
    std::int64_t id = firstId;
    for (std::size_t number = snapshot.FirstEntryFrom(firstId); id < end; ++number) {
        const bool isLast = number == snapshot.GetEntryCount();
        const std::int64_t next = isLast ? end : std::min<std::int64_t>(snapshot.GetIds()[number], end);
        for (; id < std::min(next, loggedEnd); ++id) {
            if (VisitAbsent(visit, static_cast<std::int32_t>(id))) {
                return true;
            }
        }
        if (next < end && VisitEntry(visit, number)) {
            return true;
        }
        id = next + 1;
    }
    return false;
}

// Handles an id without known rows in a log that could not be read to its end.
bool EventLogSearch::VisitAbsent(OpenVisit& visit, std::int32_t eventId)
{
    if (mSnapshot->GetOrigin().isEachIdAsked) {
        return VisitByQuery(visit, eventId);
    }
    LogBreak(mSnapshot->GetOrigin().breakError);
    return false;
}

bool EventLogSearch::VisitEntry(OpenVisit& visit, std::size_t entryNumber)
{
    const Entry entry = mSnapshot->GetEntry(entryNumber);
    if (entry.needsQuery || mSnapshot->GetOrigin().isEachIdAsked) {
        return VisitByQuery(visit, entry.eventId);
    }
    const std::size_t found = visit.found->Of(entryNumber);
    if (found == 0) {
        LogBreak(mSnapshot->GetOrigin().breakError);
        return false;
    }
    const EventLogSnapshot::Filter& filter = visit.counts->GetFilter();
    const bool isBounded = filter.last != std::numeric_limits<std::int64_t>::max();
    EventRows::Known known{isBounded ? mSnapshot->RangeSince(entry, filter.start, filter.last)
                                     : EventLogSnapshot::RangeOf(entry, found), filter, nullptr};
    if (!visit.asked.questions.empty()) {
        known.answers = mAnswers.Find(visit.asked, entry, known.range, known.filter);
        if (known.answers == nullptr) {
            return VisitByQuery(visit, entry.eventId);
        }
    }
    LogBreak(mSnapshot->GetOrigin().breakError);
    LogVersionName(visit.versionName);
    return visit.visitor(
        EventRows(entry.eventId, visit.shared, std::move(known), found, visit.counts->Of(entryNumber)));
}

// Runs the query for an id, among its rows if they are known. False if it breaks off.
bool EventLogSearch::RunQuery(std::int32_t eventId, std::int64_t startTime)
{
    ++mQueries;
    if (mQueries <= FEW_QUERIES || mSnapshot == nullptr || !mSnapshot->GetOrigin().isInTableOrder) {
        mEventQuery.Run(eventId, startTime);
        return mEventQuery.IsWhole();
    }
    return RunAmongRows(eventId, startTime);
}

bool EventLogSearch::RunAmongRows(std::int32_t eventId, std::int64_t startTime)
{
    const auto log = UnchangedLog::Open(mDb, mSnapshot);
    if (log != nullptr && mQueries == FEW_QUERIES + 1) {
        mRowsOfIds = RowsOfIds::Read(*log);
    }
    const auto condition = log != nullptr && mRowsOfIds ? mRowsOfIds->GetCondition(eventId) : std::nullopt;
    if (!condition) {
        mEventQuery.Run(eventId, startTime);
        return mEventQuery.IsWhole();
    }
    mEventQuery.RunAmong(eventId, startTime, *condition);
    if (mEventQuery.IsWhole()) {
        LogBreak(mRowsOfIds->GetScanError());
    }
    return mEventQuery.IsWhole() && mRowsOfIds->GetScanError().empty();
}

bool EventLogSearch::VisitByQuery(OpenVisit& visit, std::int32_t eventId)
{
    if (!RunQuery(eventId, visit.query.startTime) && visit.reading == Reading::WHOLE) {
        visit.reading = Reading::BROKEN_OFF;
    }
    if (mEventQuery.GetCount() == 0) {
        return false;
    }
    LogVersionName(visit.versionName);
    return visit.visitor(EventRows(eventId, visit.shared,
        mEventQuery.GetEvents(visit.query.fromUpdate, visit.versionName), mEventQuery.GetCount()));
}

// Logs the line of a query that fails in the middle.
void EventLogSearch::LogBreak(const std::string& error) const
{
    if (!error.empty()) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: Execute sql failed: %s",
            "FT::sql::SqlOperator::Execute", error.c_str());
        StatementTrouble::Tell(error, mDb.path);
    }
}
