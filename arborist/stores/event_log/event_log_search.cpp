#include "arborist/stores/event_log/event_log_search.h"

#include <algorithm>
#include <utility>

#include "arborist/frame/log.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/stores/event_log/answer_reader.h"
#include "arborist/stores/event_log/event_log_reader.h"
#include "arborist/stores/event_log/log_state.h"
#include "arborist/utilities/time_util.h"

namespace {

// One pass over all rows costs as much as reading one row in this many by itself.
constexpr std::size_t WORTH_READING_ALL = 32;
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
    std::vector<Requests::Number> questions{};
    // Shared, so that they outlive the call of the visitor that uses them.
    std::shared_ptr<RowCounts> found{}; // since the start, of any version
    std::shared_ptr<RowCounts> counts{};
    LocalDays days{};
    Reading reading = Reading::WHOLE;
};

EventLogSearch::EventLogSearch(const FT::sql::Sqlite3Db& database) : mDb(database), mEventQuery(database) {}

void EventLogSearch::Foresee(std::int32_t firstId, std::int32_t lastId, const EventRows::Questions& questions)
{
    for (const auto& question : questions) {
        mRequests.Add({firstId, lastId, mRequests.NumberOf(question)});
    }
}

void EventLogSearch::TellVersionName(const std::string& versionName)
{
    FT::Log::GetInstance().Output(FT::LEVEL_DEBUG, "FUNc:%s: version name: %s", "AlarmRuleDbHelper::GetEventList",
        versionName.c_str());
}

bool EventLogSearch::IsCurrent() const
{
    return mSnapshot != nullptr && mSnapshot->GetOrigin().dataVersion != NO_DATA_VERSION &&
        mSnapshot->GetOrigin().lastMoment == TimeUtil::GetLastMoment() &&
        ReadDataVersion(mDb) == mSnapshot->GetOrigin().dataVersion;
}

void EventLogSearch::Refresh()
{
    if (!IsCurrent()) {
        mCounts.clear();
        mAnswers.reset();
        mSnapshot.reset();
        mSnapshot = ReadEventLog(mDb);
        mCanReadAnswers = true;
        mQueries = 0;
        mRowsOfIds.reset();
    }
}

EventLogSearch::Reading EventLogSearch::Visit(
    const Query& query, const std::string& versionName, const Visitor& visitor)
{
    OpenVisit visit{query, versionName, visitor};
    for (const auto& question : query.questions) {
        visit.questions.push_back(mRequests.NumberOf(question));
    }
    Foresee(query.firstId, query.lastId, query.questions);
    Refresh();
    // Without a snapshot, query each id, which logs its own failure. If the log becomes readable, continue with its
    // snapshot.
    std::int64_t id = query.firstId;
    for (const std::int64_t end = query.GetToldEnd(); mSnapshot == nullptr; ++id) {
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
    return time ? std::optional<std::int64_t>(*time) : std::nullopt;
}

bool EventLogSearch::HasUnseen(std::int32_t firstId, std::int32_t lastId, std::int64_t start) const
{
    return IsWhole() && mSnapshot->HasUnseen(firstId, lastId, start);
}

std::optional<std::uint64_t> EventLogSearch::CountRows(
    std::int32_t firstId, std::int32_t lastId, std::int64_t start, std::int64_t end) const
{
    if (!IsWhole()) {
        return std::nullopt;
    }
    const auto countSince = [this](const Entry& entry, std::int64_t time) {
        return mSnapshot->Count(mSnapshot->RunSince(entry, time), {time, std::nullopt});
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
    visit.found = CountsFor({visit.query.startTime, std::nullopt});
    visit.counts = visit.query.fromUpdate
        ? CountsFor({visit.query.startTime, snapshot.NumberOfVersion(visit.versionName)}) : visit.found;
    const EventLogSnapshot::Origin& origin = snapshot.GetOrigin();
    const bool isBroken = origin.isEachIdAsked || !origin.breakError.empty();
    if (!origin.damage.empty()) {
        StatementTrouble::Tell(origin.damage, mDb.path);
    }
    if (isBroken || !origin.damage.empty()) {
        visit.reading = snapshot.GetEntryCount() == 0 ? Reading::UNREADABLE : Reading::BROKEN_OFF;
    }
    Prepare(visit);
    const std::int64_t end = visit.query.lastId + std::int64_t{1};
    // An id that may have rows is asked, however many there are.
    const bool mayOthersHaveRows = origin.isEachIdAsked && !origin.areAllIdsKnown;
    const std::int64_t toldEnd = mayOthersHaveRows ? end : isBroken ? visit.query.GetToldEnd() : firstId;
    std::int64_t id = firstId;
    for (std::size_t number = snapshot.FirstEntryFrom(firstId); id < end; ++number) {
        const bool isLast = number == snapshot.GetEntryCount();
        const std::int64_t next = isLast ? end : std::min<std::int64_t>(snapshot.GetIds()[number], end);
        for (; id < std::min(next, toldEnd); ++id) {
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
    TellBreak(mSnapshot->GetOrigin().breakError);
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
        TellBreak(mSnapshot->GetOrigin().breakError);
        return false;
    }
    EventRows::Known known{*mSnapshot, EventLogSnapshot::RunOf(entry, found), visit.counts->GetFilter(), nullptr};
    if (!visit.questions.empty() && !FillAnswers(visit, entry, known)) {
        return VisitByQuery(visit, entry.eventId);
    }
    TellBreak(mSnapshot->GetOrigin().breakError);
    TellVersionName(visit.versionName);
    return visit.visitor(EventRows(entry.eventId, std::move(known), found, visit.counts->Of(entryNumber),
        visit.query.questions, visit.days));
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
    const ReadTransaction transaction(mDb);
    const bool isCurrent = IsCurrent();
    if (isCurrent && mQueries == FEW_QUERIES + 1) {
        mRowsOfIds = RowsOfIds::Read(transaction, *mSnapshot);
    }
    const auto condition = isCurrent && mRowsOfIds ? mRowsOfIds->GetCondition(eventId) : std::nullopt;
    if (!condition) {
        mEventQuery.Run(eventId, startTime);
        return mEventQuery.IsWhole();
    }
    mEventQuery.RunAmong(eventId, startTime, *condition);
    if (mEventQuery.IsWhole()) {
        TellBreak(mRowsOfIds->GetScanError());
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
    TellVersionName(visit.versionName);
    return visit.visitor(EventRows(eventId, mEventQuery.GetEvents(visit.query.fromUpdate, visit.versionName),
        mEventQuery.GetCount(), visit.query.questions));
}

// Logs the line of a query that fails in the middle.
void EventLogSearch::TellBreak(const std::string& error) const
{
    if (!error.empty()) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: Execute sql failed: %s",
            "FT::sql::SqlOperator::Execute", error.c_str());
        StatementTrouble::Tell(error, mDb.path);
    }
}

bool EventLogSearch::HasAnswers(const OpenVisit& visit, std::uint32_t firstRow, std::uint32_t endRow) const
{
    return mAnswers != nullptr && mAnswers->GetSince() <= visit.query.startTime &&
        std::all_of(visit.questions.begin(), visit.questions.end(), [&](Requests::Number question) {
            return mAnswers->Find(question, firstRow, endRow) != nullptr;
        });
}

// Reads the answers of all rows in one pass if the visit needs many of them.
void EventLogSearch::Prepare(const OpenVisit& visit)
{
    const std::size_t first = mSnapshot->FirstEntryFrom(visit.query.firstId);
    const std::size_t end = mSnapshot->FirstEntryFrom(visit.query.lastId + std::int64_t{1});
    if (visit.questions.empty() || first == end || !mCanReadAnswers || !mSnapshot->AreRowIdsAscending()) {
        return;
    }
    const std::uint32_t firstRow = mSnapshot->GetEntry(first).begin;
    const std::uint32_t endRow = mSnapshot->GetEntry(end - 1).end;
    const bool isWorthwhile = (endRow - firstRow) * WORTH_READING_ALL >= mSnapshot->GetRowCount() ||
        !mSnapshot->GetOrigin().canSearchEvents; // then rows can't be read one by one
    if (isWorthwhile && !HasAnswers(visit, firstRow, endRow)) {
        ReadAnswers(visit);
    }
}

// Requests the questions of this visit first, then those that were added after them, as far as there is room.
void EventLogSearch::ReadAnswers(const OpenVisit& visit)
{
    std::vector<Requests::Request> wanted;
    for (const Requests::Number question : visit.questions) {
        wanted.push_back({visit.query.firstId, visit.query.lastId, question});
    }
    const std::vector<Requests::Request> all = mRequests.AllFrom(wanted.back());
    wanted.insert(wanted.end(), all.begin(), all.end());
    mAnswers.reset();
    const ReadTransaction transaction(mDb);
    if (IsCurrent()) {
        mAnswers = AnswerReader(mDb, *mSnapshot, mRequests).ReadAll(wanted, visit.query.startTime);
        mCanReadAnswers = mAnswers != nullptr;
    }
}

// False if the log has changed, or if rows must be asked again in an order that only the id's own query knows.
bool EventLogSearch::FillAnswers(const OpenVisit& visit, const Entry& entry, EventRows::Known& known) const
{
    known.answers = std::make_unique<EventRows::Answers>();
    known.answers->rows = mSnapshot->Select(known.run, known.filter);
    return FillColumns(visit, entry, known) && FillTexts(known);
}

bool EventLogSearch::FillColumns(const OpenVisit& visit, const Entry& entry, EventRows::Known& known) const
{
    if (HasAnswers(visit, entry.begin, entry.end)) {
        for (const Requests::Number question : visit.questions) {
            known.answers->columns.push_back(mAnswers->Find(question, entry.begin, entry.end));
        }
        return true;
    }
    const ReadTransaction transaction(mDb);
    auto columns = IsCurrent()
        ? AnswerReader(mDb, *mSnapshot, mRequests).ReadOneByOne(entry, known.answers->rows, visit.questions)
        : std::nullopt;
    if (columns) {
        known.answers->columns = std::move(*columns);
    }
    return columns.has_value();
}

bool EventLogSearch::FillTexts(EventRows::Known& known) const
{
    const bool isAny = std::any_of(known.answers->columns.begin(), known.answers->columns.end(),
        [](const auto& column) { return column->HasAskedAgain(); });
    std::vector<std::uint32_t> asked;
    const RowBits none;
    (isAny ? known.answers->rows : none).ForEach([&](std::uint32_t row) {
        if (std::any_of(known.answers->columns.begin(), known.answers->columns.end(),
                [row](const auto& column) { return column->IsAskedAgain(row); })) {
            asked.push_back(row);
        }
    });
    if (asked.empty()) {
        return true;
    }
    if (!mSnapshot->GetOrigin().isInTableOrder) {
        return false;
    }
    const ReadTransaction transaction(mDb);
    auto texts = IsCurrent() ? AnswerReader(mDb, *mSnapshot, mRequests).ReadTexts(asked) : std::nullopt;
    if (texts) {
        known.answers->texts = std::move(*texts);
    }
    return texts.has_value();
}
