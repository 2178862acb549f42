#include "diagnosis/process/local_time.h"

#include <cstdio>
#include <cstdlib>

#include <windows.h>

#include "arborist/utilities/platform.h"
#include "arborist/utilities/posix_zone.h"

namespace diagnosis {

namespace {

// The names of a rule have no meaning; the system's have letters that a rule can't have.
constexpr char STANDARD[] = "STD";
constexpr char SUMMER[] = "DST";

// Minutes west of Greenwich, as a rule has them: "-1", "3:30".
std::string OffsetText(long minutes)
{
    const long size = minutes < 0 ? -minutes : minutes;
    std::string text = (minutes < 0 ? "-" : "") + std::to_string(size / 60);
    return size % 60 == 0 ? text : text + (size % 60 < 10 ? ":0" : ":") + std::to_string(size % 60);
}

// The day and the time on which clocks change in every year, of which the system has the week in wDay.
std::string ChangeText(const SYSTEMTIME& change)
{
    char text[64];
    std::snprintf(text, sizeof text, ",M%d.%d.%d/%d:%02d:%02d", change.wMonth, change.wDay, change.wDayOfWeek,
        change.wHour, change.wMinute, change.wSecond);
    return text;
}

// The rule of the year that it is: those of other years may differ, and a rule can't say so.
std::string RuleOfSystem()
{
    TIME_ZONE_INFORMATION zone{};
    if (GetTimeZoneInformation(&zone) == TIME_ZONE_ID_INVALID) {
        return "";
    }
    const std::string rule = STANDARD + OffsetText(zone.Bias + zone.StandardBias);
    if (zone.DaylightDate.wMonth == 0) {
        return rule;
    }
    return rule + SUMMER + OffsetText(zone.Bias + zone.DaylightBias) + ChangeText(zone.DaylightDate)
        + ChangeText(zone.StandardDate);
}

} // namespace

std::optional<std::tm> LocalTime(std::int64_t seconds)
{
    std::tm local = {};
    return Platform::LocalTime(seconds, local) ? std::optional(local) : std::nullopt;
}

std::int64_t OffsetAt(std::int64_t seconds)
{
    const auto local = LocalTime(seconds);
    return local ? Calendar::SecondsOf(*local) - seconds : 0;
}

std::int64_t MomentOf(std::tm local)
{
    const std::int64_t shown = Calendar::SecondsOf(local);
    const std::int64_t close = shown - OffsetAt(shown); // off by a change of the clocks in between
    return shown - OffsetAt(close);
}

// Windows has names of its own for zones, and the C library reads none of them.
bool HasZone(const std::string&)
{
    return false;
}

bool FollowsRule(const std::string& rule)
{
    return PosixZone::Of(rule).has_value();
}

std::vector<std::string> ZonesInForce()
{
    const char* zone = std::getenv("TZ");
    return zone != nullptr && FollowsRule(zone) ? std::vector<std::string>{zone} : std::vector{RuleOfSystem()};
}

} // namespace diagnosis
