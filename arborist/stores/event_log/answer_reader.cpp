#include "arborist/stores/event_log/answer_reader.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

#include <json/value.h>

#include "arborist/stores/event_log/answer_segments.h"
#include "arborist/stores/event_log/id_dictionary.h"
#include "arborist/stores/event_log/json_members.h"
#include "arborist/stores/sql/sql_cursor.h"
#include "arborist/stores/sql/sql_scan.h"
#include "arborist/utilities/json_text.h"

namespace {

using FT::sql::SqlCursor;
using Entry = EventLogSnapshot::Entry;

// Stores the answers of a row's text to the questions of its segment.
class TextReader {
public:
    void Take(const AnswerSegment& segment, std::uint32_t row, std::string_view extra)
    {
        if (extra.empty()) {
            return;
        }
        if (ReadPlainMembers(extra, segment.keys, mMembers)) {
            for (const AnswerSegment::Target& target : segment.targets) {
                Answer(target, row, mMembers[target.key]);
            }
            return;
        }
        Json::Value root;
        std::string error;
        const bool isJson = ParseJson(extra, root, error);
        for (const AnswerSegment::Target& target : segment.targets) {
            const std::string& key = segment.keys[target.key];
            if (isJson && IsMemberReadable(root, key)) {
                Answer(target, row, MemberText(root, key));
            } else {
                target.column->SetAskAgain(row); // each reading logs an error, or tells trouble
            }
        }
    }

private:
    static void Answer(const AnswerSegment::Target& target, std::uint32_t row, std::string_view member)
    {
        const std::optional<std::int32_t> answer = target.question->AnswerInSilence(member);
        if (answer) {
            target.column->Set(row, *answer);
        } else {
            target.column->SetAskAgain(row);
        }
    }

    std::vector<std::string_view> mMembers; // of one row; a member to reuse its memory
};

// Maps rows of the table to rows of the snapshot. As both the table and each entry are sorted by row id, a row of the
// table can only be the next row of its entry.
class RowFinder {
public:
    RowFinder(const EventLogSnapshot& snapshot, const AnswerSegments& segments, std::int64_t since)
        : mSnapshot(snapshot), mNextOfEntry(snapshot.GetEntryCount())
    {
        mEntryOfId.max_load_factor(0.8F);
        mEntryOfId.reserve(snapshot.GetEntryCount());
        for (std::uint32_t number = 0; number < mNextOfEntry.size(); ++number) {
            const Entry entry = snapshot.GetEntry(number);
            mEntryOfId.emplace(entry.eventId, number);
            mNextOfEntry[number] = entry.end;
            if (segments.OfEntry(number) != nullptr && !entry.needsQuery) {
                Want(number, entry, since);
            }
        }
    }

    std::int64_t GetFirstRowId() const { return mFirstRowId; }
    std::int64_t GetLastRowId() const { return mLastRowId; }
    bool HasMetAll() const { return mRowsToMeet == 0; }

    struct Found { std::uint32_t entry; std::uint32_t row; };
    std::optional<Found> Find(std::int64_t eventId, std::int64_t rowId)
    {
        const auto entry = mEntryOfId.find(static_cast<std::int32_t>(eventId));
        if (entry == mEntryOfId.end()) {
            return std::nullopt;
        }
        const std::uint32_t end = mSnapshot.GetEntry(entry->second).end;
        std::uint32_t& next = mNextOfEntry[entry->second];
        while (next != end && mSnapshot.GetRowId(next) < rowId) {
            ++next;
        }
        if (next == end || mSnapshot.GetRowId(next) != rowId) {
            return std::nullopt;
        }
        --mRowsToMeet;
        return Found{entry->second, next++};
    }

private:
    void Want(std::uint32_t number, const Entry& entry, std::int64_t since)
    {
        const std::uint32_t first = mSnapshot.RangeSince(entry, since).begin;
        if (first != entry.end) {
            mNextOfEntry[number] = first;
            mFirstRowId = std::min(mFirstRowId, mSnapshot.GetRowId(first));
            mLastRowId = std::max(mLastRowId, mSnapshot.GetRowId(entry.end - 1));
            mRowsToMeet += entry.end - first;
        }
    }

    const EventLogSnapshot& mSnapshot;
    IdDictionary mEntryOfId;
    std::vector<std::uint32_t> mNextOfEntry; // the end for entries without questions
    std::int64_t mFirstRowId = std::numeric_limits<std::int64_t>::max();
    std::int64_t mLastRowId = std::numeric_limits<std::int64_t>::min();
    std::size_t mRowsToMeet = 0;
};

} // namespace

AnswerReader::AnswerReader(const UnchangedLog& log, const Requests& requests)
    : mDb(log.GetDatabase()), mSnapshot(log.GetSnapshot()), mRequests(requests)
{
}

std::shared_ptr<const AnswerTable> AnswerReader::ReadAll(
    const std::vector<Requests::Request>& wanted, std::int64_t since) const
{
    auto table = std::make_shared<AnswerTable>(since);
    const AnswerSegments segments(mSnapshot, mRequests, wanted, *table);
    RowFinder finder(mSnapshot, segments, since);
    TextReader reader;
    const std::string& rowName = mSnapshot.GetOrigin().rowName;
    std::string error;
    // Rows that can't be searched are met by reading all.
    const std::string range = " where " + rowName + " between " + std::to_string(finder.GetFirstRowId()) + " and " +
        std::to_string(finder.GetLastRowId());
    FT::sql::ScanRows(mDb, rowName + ", event_id, extra",
        "from event_info" + (mSnapshot.GetOrigin().canSearchEvents ? range : " not indexed"),
        [&](const FT::sql::ScannedRow& row) {
            if (const auto found = finder.Find(row.GetInteger(1), row.GetInteger(0))) {
                reader.Take(*segments.OfEntry(found->entry), found->row, row.GetText(2));
            }
        }, error);
    return finder.HasMetAll() ? table : nullptr;
}

std::optional<std::vector<std::shared_ptr<const AnswerColumn>>> AnswerReader::ReadOneByOne(const Entry& entry,
    const RowBits& rows, const std::vector<Requests::Number>& questions) const
{
    AnswerSegment segment;
    std::vector<std::shared_ptr<const AnswerColumn>> columns;
    for (const Requests::Number number : questions) {
        const RowQuestion& question = mRequests.GetQuestion(number);
        auto column = std::make_shared<AnswerColumn>(entry.begin, entry.end, question.IsNumber());
        segment.Add(*column, question);
        columns.push_back(std::move(column));
    }
    std::vector<std::uint32_t> numbers;
    rows.ForEach([&numbers](std::uint32_t row) { numbers.push_back(row); });
    TextReader reader;
    const bool isRead =
        ReadEach(numbers, [&](std::uint32_t row, std::string_view extra) { reader.Take(segment, row, extra); });
    return isRead ? std::optional(std::move(columns)) : std::nullopt;
}

std::optional<RowTexts> AnswerReader::ReadTexts(const std::vector<std::uint32_t>& rows) const
{
    RowTexts texts;
    const bool isRead =
        ReadEach(rows, [&texts](std::uint32_t row, std::string_view extra) { texts.emplace(row, extra); });
    return isRead ? std::optional(std::move(texts)) : std::nullopt;
}

template <typename Take>
bool AnswerReader::ReadEach(const std::vector<std::uint32_t>& rows, Take take) const
{
    SqlCursor extras(mDb, "select extra from event_info where " + mSnapshot.GetOrigin().rowName + " = ?1");
    bool isRead = extras.IsReady() && mSnapshot.GetOrigin().canSearchEvents;
    for (std::size_t place = 0; isRead && place < rows.size(); ++place) {
        extras.Restart(mSnapshot.GetRowId(rows[place]));
        isRead = extras.Step();
        if (isRead) {
            take(rows[place], extras.GetText(0));
        }
    }
    return isRead;
}
