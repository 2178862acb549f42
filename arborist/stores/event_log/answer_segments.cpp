#include "arborist/stores/event_log/answer_segments.h"

#include <algorithm>
#include <map>
#include <set>

namespace {

// Bytes that answers may take: a fixed part, and a part for each row of the log.
constexpr std::size_t ROOM = 16384;
constexpr std::size_t ROOM_FOR_A_ROW = 5;
// Targets that the segments may have: a fixed number, and one more for so many rows of the log. They exist only during
// a reading.
constexpr std::size_t TARGETS = 2048;
constexpr std::size_t ROWS_FOR_A_TARGET = 32;

} // namespace

void AnswerSegment::Add(AnswerColumn& column, const RowQuestion& question)
{
    const auto known = std::find(keys.begin(), keys.end(), question.GetKey());
    targets.push_back({&column, &question, static_cast<std::size_t>(known - keys.begin())});
    if (known == keys.end()) {
        keys.push_back(question.GetKey());
    }
}

// The begin or the end of a range.
struct AnswerSegments::Boundary {
    std::uint32_t entry;
    bool isBegin;
    EntryRange range;
};

AnswerSegments::AnswerSegments(const EventLogSnapshot& snapshot, const Requests& requests,
    const std::vector<Requests::Request>& wanted, AnswerTable& table)
    : mSnapshot(snapshot), mSegmentOfEntry(snapshot.GetEntryCount())
{
    std::vector<EntryRange> ranges = RangesWithRoom(requests, wanted);
    std::vector<Boundary> boundaries = BoundariesOf(ranges);
    while (!HasRoomFor(boundaries)) {
        ranges.resize(ranges.size() / 2);
        boundaries = BoundariesOf(ranges);
    }
    MakeSegments(boundaries, requests, table);
}

std::vector<AnswerSegments::EntryRange> AnswerSegments::RangesWithRoom(
    const Requests& requests, const std::vector<Requests::Request>& wanted) const
{
    std::size_t room = ROOM + ROOM_FOR_A_ROW * mSnapshot.GetRowCount();
    std::vector<EntryRange> ranges;
    std::set<EntryRange> known;
    for (const Requests::Request& request : wanted) {
        const auto first = static_cast<std::uint32_t>(mSnapshot.FirstEntryFrom(request.firstId));
        const auto end = static_cast<std::uint32_t>(mSnapshot.FirstEntryFrom(std::int64_t{request.lastId} + 1));
        const EntryRange range{request.question, first, end};
        if (first >= end || !known.insert(range).second) {
            continue;
        }
        const std::uint32_t rows = mSnapshot.GetEntry(end - 1).end - mSnapshot.GetEntry(first).begin;
        if (rows == 0) {
            continue; // entries may have no rows in the snapshot; a column is found by its first row
        }
        const std::size_t size = AnswerColumn::SizeFor(rows, requests.GetQuestion(range.question).IsNumber());
        if (size <= room) {
            room -= size;
            ranges.push_back(range);
        }
    }
    return ranges;
}

// Joins overlapping ranges of the same question.
std::vector<AnswerSegments::Boundary> AnswerSegments::BoundariesOf(std::vector<EntryRange> ranges) const
{
    std::sort(ranges.begin(), ranges.end());
    std::vector<Boundary> boundaries;
    for (std::size_t place = 0; place < ranges.size();) {
        EntryRange range = ranges[place];
        for (++place; place < ranges.size() && ranges[place].question == range.question && ranges[place].first <= range.end;
             ++place) {
            range.end = std::max(range.end, ranges[place].end);
        }
        boundaries.push_back({range.first, true, range});
        boundaries.push_back({range.end, false, range});
    }
    std::sort(boundaries.begin(), boundaries.end(),
        [](const Boundary& left, const Boundary& right) { return left.entry < right.entry; });
    return boundaries;
}

bool AnswerSegments::HasRoomFor(const std::vector<Boundary>& boundaries) const
{
    const std::size_t most = TARGETS + mSnapshot.GetRowCount() / ROWS_FOR_A_TARGET;
    std::size_t open = 0;
    std::size_t targets = 0;
    for (const Boundary& boundary : boundaries) {
        if (boundary.isBegin) {
            ++open;
        } else {
            --open;
        }
        targets += open;
    }
    return targets <= most;
}

void AnswerSegments::MakeSegments(
    const std::vector<Boundary>& boundaries, const Requests& requests, AnswerTable& table)
{
    std::map<Requests::Number, AnswerColumn*> open;
    // The last boundary is the end of the last range: behind it nothing is open.
    for (std::size_t place = 0; place + 1 < boundaries.size(); ++place) {
        const auto& [entry, isBegin, range] = boundaries[place];
        if (isBegin) {
            open[range.question] = table.Add(range.question, mSnapshot.GetEntry(range.first).begin,
                mSnapshot.GetEntry(range.end - 1).end, requests.GetQuestion(range.question).IsNumber()).get();
        } else {
            open.erase(range.question);
        }
        const std::uint32_t next = boundaries[place + 1].entry;
        if (open.empty() || next == entry) {
            continue;
        }
        AnswerSegment& segment = mSegments.emplace_back();
        for (const auto& [question, column] : open) {
            segment.Add(*column, requests.GetQuestion(question));
        }
        std::fill(mSegmentOfEntry.begin() + entry, mSegmentOfEntry.begin() + next,
            static_cast<std::uint32_t>(mSegments.size()));
    }
}
