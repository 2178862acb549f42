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

/// A run of consecutive entries to which the same questions are put.
struct AnswerSegment {
    /// Where the answers of a question go, and which of the keys it looks at.
    struct Target {
        AnswerColumn* column;
        const RowQuestion* question;
        std::size_t key;
    };

    void Add(AnswerColumn& column, const RowQuestion& question);

    std::vector<std::string> keys;
    std::vector<Target> targets;
};

/// Divides the entries of a snapshot into segments, for the time of one reading.
class AnswerSegments {
public:
    /// For those requests of `wanted` for which there is room, the first ones first. Makes their columns in `table`.
    AnswerSegments(const EventLogSnapshot& snapshot, const Requests& requests,
        const std::vector<Requests::Request>& wanted, AnswerTable& table);

    /// Null for an entry to which no question is put.
    const AnswerSegment* OfEntry(std::size_t entry) const
    {
        return mSegmentOfEntry[entry] == 0 ? nullptr : &mSegments[mSegmentOfEntry[entry] - 1];
    }

private:
    // A request in numbers of entries.
    struct Run {
        Requests::Number question;
        std::uint32_t first;
        std::uint32_t end;

        auto operator<=>(const Run&) const = default;
    };
    struct Boundary;

    std::vector<Run> RunsWithRoom(const Requests& requests, const std::vector<Requests::Request>& wanted) const;
    std::vector<Boundary> BoundariesOf(std::vector<Run> runs) const;
    bool HasRoomFor(const std::vector<Boundary>& boundaries) const;
    void MakeSegments(const std::vector<Boundary>& boundaries, const Requests& requests, AnswerTable& table);

    const EventLogSnapshot& mSnapshot;
    std::vector<AnswerSegment> mSegments;
    std::vector<std::uint32_t> mSegmentOfEntry; // its number, from 1
};

#endif
