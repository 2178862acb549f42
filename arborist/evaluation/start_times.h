#ifndef ARBORIST_EVALUATION_START_TIMES_H
#define ARBORIST_EVALUATION_START_TIMES_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

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

    /// True if a check with this start word counts only events of the current version.
    static bool IsDetectFromUpdate(const std::string& word);

private:
    struct RepairTime {
        std::int64_t time = 0;
        std::string repairId;
        /// See Evidence::Start.
        std::string unreadable;
    };

    RepairTime GetRepairTimeByEventId(const std::string& eventId, const Event* current) const;
    std::int64_t GetRepairTimeFromDb(const std::string& repairId, std::string& unreadable) const;

    std::shared_ptr<ResetTimeParser> mResetTimes;
    std::shared_ptr<FaultTreeParser> mFaultTreeParser;
    std::shared_ptr<RepairDates> mRepairDates;
};

#endif
