#include "arborist/evaluation/start_times.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <json/value.h>

#include "arborist/frame/evidence.h"
#include "arborist/frame/log.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/event.h"
#include "arborist/stores/repairs/repair_dates.h"
#include "arborist/stores/repairs/reset_time_parser.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/json_text.h"
#include "arborist/utilities/time_util.h"

namespace {

constexpr std::int32_t DEFAULT_DAYS = 30;
constexpr std::uint32_t SECONDS_OF_DAY = 86400;

// The product has 32 bits and wraps: some 24,855 days on, the window's length changes its sign.
std::int64_t SecondsOf(std::int32_t days)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(days == 0 ? DEFAULT_DAYS : days) * SECONDS_OF_DAY);
}

std::int64_t DaysBefore(std::int64_t now, std::int32_t days)
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(now) - static_cast<std::uint64_t>(SecondsOf(days)));
}

Evidence::Moment MomentOf(std::int64_t seconds)
{
    constexpr std::size_t LENGTH = sizeof("2024-05-13 14:00:00") - 1;
    const std::string local = seconds == 0 ? "" : TimeUtil::GetFormatTime(seconds);
    const bool isDate = local.size() == LENGTH && local.find_first_of("Y-") != 0;
    return {seconds, isDate ? local : ""};
}

std::string RepairIdOf(const Event& event, std::string& unreadable)
{
    if (event.GetUserDefined().empty()) {
        return {};
    }
    Json::Value root;
    std::string error;
    const bool isJson = ParseJson(event.GetUserDefined(), root, error);
    if (!isJson) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: parse userDefinedJson err. %s ",
            "RuleHelper::GetRepairIdFromCurEvent", error.c_str());
    }
    if (!isJson || !IsMemberReadable(root, StartTimes::REPAIR_ID)) {
        unreadable = "the repair id in the user-defined text of " + event.GetId();
    }
    return MemberText(root, StartTimes::REPAIR_ID);
}

} // namespace

StartTimes::StartTimes(std::shared_ptr<ResetTimeParser> resetTimes, std::shared_ptr<FaultTreeParser> faultTreeParser)
    : mResetTimes(std::move(resetTimes)), mFaultTreeParser(std::move(faultTreeParser)),
      mRepairDates(std::make_shared<RepairDates>())
{
}

bool StartTimes::IsDetectFromUpdate(const std::string& word)
{
    return word == FROM_UPDATE || word == FROM_RESET_OR_UPDATE;
}

std::int64_t StartTimes::GetDetectStartTime(std::int32_t days, const std::string& word, const std::string& eventId,
                                            const Event* current, Evidence::Start* record) const
{
    const std::int32_t period = days == 0 ? DEFAULT_DAYS : days;
    const std::int64_t periodStart = DaysBefore(TimeUtil::GetTimeOfDay(), period);
    std::int64_t start = periodStart;
    auto floor = Evidence::Floor::PERIOD;
    const auto raise = [&start, &floor](std::int64_t time, Evidence::Floor to) {
        floor = time > start ? to : floor;
        start = std::max(start, time);
    };
    const std::int64_t reset = ResetTimeFor(word);
    const std::int64_t update = UpdateTimeFor(word);
    if (reset != 0) {
        raise(reset, Evidence::Floor::RESET);
    }
    if (update != 0) {
        raise(update, Evidence::Floor::UPDATE);
    }
    RepairTime repair = GetRepairTimeByEventId(eventId, current);
    raise(repair.time, Evidence::Floor::REPAIR);
    if (record != nullptr) {
        *record = {MomentOf(start), MomentOf(periodStart), MomentOf(reset), MomentOf(update), MomentOf(repair.time),
            floor, period, word, std::move(repair.repairId), std::move(repair.unreadable)};
    }
    return start;
}

// Any word that isn't known takes both.
std::int64_t StartTimes::ResetTimeFor(const std::string& word) const
{
    return word == FROM_UPDATE || word == ALL ? 0 : mResetTimes->GetResetTime();
}

std::int64_t StartTimes::UpdateTimeFor(const std::string& word) const
{
    return word == FROM_RESET || word == ALL ? 0 : mResetTimes->GetUpdateTime();
}

StartTimes::Floors StartTimes::GetFloors(
    std::int32_t days, const std::string& word, const std::string& eventId, const Event* current) const
{
    Floors floors{SecondsOf(days), std::max<std::int64_t>({ResetTimeFor(word), UpdateTimeFor(word), 0})};
    std::string unreadable;
    VisitRepairs(eventId, current, unreadable, [&](const std::string& repairId) {
        const std::int64_t time = GetRepairTimeFromDb(repairId, unreadable);
        if (time > 0) {
            floors.repairs.push_back(time);
        }
    });
    std::sort(floors.repairs.begin(), floors.repairs.end());
    return floors;
}

template <typename Consider>
void StartTimes::VisitRepairs(
    const std::string& eventId, const Event* current, std::string& unreadable, Consider consider) const
{
    if (eventId.empty() || mFaultTreeParser == nullptr) {
        return;
    }
    const std::vector<std::string> repairIds = mFaultTreeParser->GetRepairListById(eventId);
    // Without repairs of its own the event's user-defined text isn't asked either.
    if (repairIds.empty()) {
        return;
    }
    std::for_each(repairIds.begin(), repairIds.end(), consider);
    if (current != nullptr && current->GetId() == eventId) {
        consider(RepairIdOf(*current, unreadable));
    }
}

StartTimes::RepairTime StartTimes::GetRepairTimeByEventId(const std::string& eventId, const Event* current) const
{
    RepairTime latest;
    VisitRepairs(eventId, current, latest.unreadable, [&](const std::string& repairId) {
        const std::int64_t time = GetRepairTimeFromDb(repairId, latest.unreadable);
        if (time > latest.time) {
            latest.time = time;
            latest.repairId = repairId;
        }
    });
    return latest;
}

std::int64_t StartTimes::GetRepairTimeFromDb(const std::string& repairId, std::string& unreadable) const
{
    if (repairId.empty()) {
        return 0;
    }
    const StatementTrouble kind(Evidence::Trouble::Kind::REPAIRS_UNREADABLE);
    const std::string date = mRepairDates->Query(repairId);
    const std::int64_t time = date.empty() ? 0 : TimeUtil::StrToTimeStamp(date, "%Y-%m-%d %H:%M:%S");
    if (mRepairDates->HasFailed() || (time == 0 && !date.empty())) {
        unreadable = repairId;
    }
    if (!date.empty() && time > TimeUtil::GetLastMoment()) {
        // The store keeps the latest date alone: when the repair was carried out before is not known any more.
        TroubleWatch::Tell(
            Evidence::Trouble::Kind::REPAIR_HISTORY_LOST, date, {repairId, DevicePaths::RepairDatabase()});
        return 0;
    }
    return time;
}
