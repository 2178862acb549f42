#ifndef ARBORIST_DIAGNOSIS_SWEEP_TIMELINE_H
#define ARBORIST_DIAGNOSIS_SWEEP_TIMELINE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace diagnosis {

/// What something is as of a moment.
enum class SweptState { TRUE, FALSE, NOT_JUDGED };

/// "true", "false", "not_judged".
const char* SweptStateText(SweptState state);

/// Moments in a row, both ends included, with one answer. Times are seconds since the epoch.
struct SweptInterval {
    std::int64_t from = 0;
    std::int64_t until = 0;
    SweptState state = SweptState::NOT_JUDGED;
    /// Of a tree its verdict; otherwise why it is not judged, empty if it is.
    std::string word;

    bool operator==(const SweptInterval&) const = default;
};

/// The answers of one thing at all moments of a sweep, without a gap.
class Timeline {
public:
    /// From this moment on the answer is this one. The moments ascend; a second answer for one moment replaces the
    /// first.
    void Set(std::int64_t from, SweptState state, const std::string& word = {});
    /// Ends the last interval, and leaves out what would begin later. Call it once.
    void Close(std::int64_t until);

    /// Neighbours differ. Their ends are known once the timeline is closed.
    const std::vector<SweptInterval>& GetIntervals() const { return mIntervals; }

    /// The first moment in this state; nothing if there is none.
    std::optional<std::int64_t> GetFirst(SweptState state = SweptState::TRUE) const;
    /// The number of seconds in this state, and how often it begins.
    std::uint64_t GetSeconds(SweptState state = SweptState::TRUE) const;
    std::size_t GetTimes(SweptState state = SweptState::TRUE) const;

private:
    std::vector<SweptInterval> mIntervals;
};

} // namespace diagnosis

#endif
