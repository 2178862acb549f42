#ifndef ARBORIST_EVALUATION_START_TIMES_H
#define ARBORIST_EVALUATION_START_TIMES_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class Event;
class FaultTreeParser;
class RepairDates;
class ResetTimeParser;
namespace Evidence {
struct Start;
}

/// Computes the start time of a check: events from before the device was last reset, updated or repaired don't describe
/// the device as it is now.
///
/// Shares ownership of its arguments. Not thread-safe.
class StartTimes {
public:
    /// Start words: the events beyond which a window doesn't reach back.
    static constexpr std::string_view FROM_RESET_OR_UPDATE = "1";
    static constexpr std::string_view FROM_UPDATE = "2";
    static constexpr std::string_view FROM_RESET = "3";
    static constexpr std::string_view ALL = "4";
    /// Member of an event's user-defined text that names a repair.
    static constexpr char REPAIR_ID[] = "Repairid";

    /// `resetTimes` provides reset and update times; the rule set and the repair database provide repairs. Without a
    /// parser no repair counts.
    StartTimes(std::shared_ptr<ResetTimeParser> resetTimes, std::shared_ptr<FaultTreeParser> faultTreeParser);

    /// Seconds since the epoch: the latest of `days` before now (0 means 30), the last reset or update if `word`
    /// includes it, and the last repair of the event. "1" and every unknown word include reset and update. `current` is
    /// the event whose rules are running, and may be null; the repair in its user-defined text counts if its id is
    /// `eventId`. Fills `record` if it is not null.
    std::int64_t GetDetectStartTime(std::int32_t days, const std::string& word, const std::string& eventId,
                                    const Event* current, Evidence::Start* record = nullptr) const;

    /// All that determines the start of a check, whatever moment is now: the latest of `period` seconds before now, of
    /// `always`, and of those of `repairs`, in ascending order, that lie not after now.
    struct Floors {
        std::int64_t period = 0;
        std::int64_t always = 0;
        std::vector<std::int64_t> repairs = {};
    };
    /// The arguments are those of GetDetectStartTime. Has the repairs up to the last moment that counts.
    Floors GetFloors(
        std::int32_t days, const std::string& word, const std::string& eventId, const Event* current) const;

    /// True if a check with this start word counts only events of the current version.
    static bool IsDetectFromUpdate(const std::string& word);

private:
    struct RepairTime {
        std::int64_t time = 0;
        std::string repairId;
        /// See Evidence::Start.
        std::string unreadable;
    };

    // Calls `consider` with each repair id that counts for an event.
    template <typename Consider>
    void VisitRepairs(
        const std::string& eventId, const Event* current, std::string& unreadable, Consider consider) const;
    RepairTime GetRepairTimeByEventId(const std::string& eventId, const Event* current) const;
    // 0 if the start word leaves them out.
    std::int64_t ResetTimeFor(const std::string& word) const;
    std::int64_t UpdateTimeFor(const std::string& word) const;
    std::int64_t GetRepairTimeFromDb(const std::string& repairId, std::string& unreadable) const;

    std::shared_ptr<ResetTimeParser> mResetTimes;
    std::shared_ptr<FaultTreeParser> mFaultTreeParser;
    std::shared_ptr<RepairDates> mRepairDates;
};

#endif
