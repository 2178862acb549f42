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

/// Works out from what moment on a check looks at the event log: what happened before the device was last reset,
/// updated or repaired says nothing about the device as it is now.
///
/// Shares ownership of what it is given. Used by one thread at a time.
class StartTimes {
public:
    /// Start words: what a window doesn't reach back beyond.
    static constexpr std::string_view FROM_RESET_OR_UPDATE = "1";
    static constexpr std::string_view FROM_UPDATE = "2";
    static constexpr std::string_view FROM_RESET = "3";
    static constexpr std::string_view ALL = "4";
    /// Member of an event's user-defined text that names a repair.
    static constexpr char REPAIR_ID[] = "Repairid";

    /// Reset and update times are asked of `resetTimes`, repairs of the rule set and of the repair database. Without a
    /// parser no repair counts.
    StartTimes(std::shared_ptr<ResetTimeParser> resetTimes, std::shared_ptr<FaultTreeParser> faultTreeParser);

    /// Seconds since the epoch: `days` before now (0 stands for 30), or the last reset or update where `word` takes it
    /// into account, or the last repair of the event, whichever is latest. "1" and every unknown word take reset and
    /// update. `current` is the event whose rules are being asked, and may be null; the repair that its user-defined
    /// text names counts if its id is `eventId`. `record`, if there is one, is filled.
    std::int64_t GetDetectStartTime(std::int32_t days, const std::string& word, const std::string& eventId,
                                    const Event* current, Evidence::Start* record = nullptr) const;

    /// Whether a check with this start word counts the events of the current version only.
    static bool IsDetectFromUpdate(const std::string& word);

private:
    struct RepairTime {
        std::int64_t time = 0;
        std::string repairId;
    };

    RepairTime GetRepairTimeByEventId(const std::string& eventId, const Event* current) const;
    std::int64_t GetRepairTimeFromDb(const std::string& repairId) const;

    std::shared_ptr<ResetTimeParser> mResetTimes;
    std::shared_ptr<FaultTreeParser> mFaultTreeParser;
    std::shared_ptr<RepairDates> mRepairDates;
};

#endif
