#ifndef ARBORIST_STORES_EVENT_LOG_ANSWER_SEGMENTS_H
#define ARBORIST_STORES_EVENT_LOG_ANSWER_SEGMENTS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "arborist/stores/event_log/answer_table.h"
#include "arborist/stores/event_log/event_log_snapshot.h"
#include "arborist/stores/event_log/requests.h"

/// Consecutive entries with the same questions.
struct AnswerSegment {
    /// A question, the column for its answers, and the index of its key.
    struct Target {
        AnswerColumn* column;
        const RowQuestion* question;
        std::size_t key;
    };

    void Add(AnswerColumn& column, const RowQuestion& question);

    std::vector<std::string> keys;
    std::vector<Target> targets;
};

/// Divides the entries of a snapshot into segments for one reading.
class AnswerSegments {
public:
    /// Takes as many requests of `wanted`, from the first on, as there is room for, and creates their columns in
    /// `table`.
    AnswerSegments(const EventLogSnapshot& snapshot, const Requests& requests,
        const std::vector<Requests::Request>& wanted, AnswerTable& table);

    /// Null for an entry without questions.
    const AnswerSegment* OfEntry(std::size_t entry) const
    {
        return mSegmentOfEntry[entry] == 0 ? nullptr : &mSegments[mSegmentOfEntry[entry] - 1];
    }

private:
    // A request with numbers of entries in place of ids.
    struct EntryRange {
        Requests::Number question;
        std::uint32_t first;
        std::uint32_t end;

        auto operator<=>(const EntryRange&) const = default;
    };
    struct Boundary;

    std::vector<EntryRange> RangesWithRoom(const Requests& requests, const std::vector<Requests::Request>& wanted) const;
    std::vector<Boundary> BoundariesOf(std::vector<EntryRange> ranges) const;
    bool HasRoomFor(const std::vector<Boundary>& boundaries) const;
    void MakeSegments(const std::vector<Boundary>& boundaries, const Requests& requests, AnswerTable& table);

    const EventLogSnapshot& mSnapshot;
    std::vector<AnswerSegment> mSegments;
    std::vector<std::uint32_t> mSegmentOfEntry; // its number, from 1
};

#endif
