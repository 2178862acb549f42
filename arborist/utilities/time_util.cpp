#include "arborist/utilities/time_util.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <iomanip>
#include <limits>
#include <optional>
#include <sstream>
#include <thread>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/settings.h"
#include "arborist/utilities/platform.h"
#include "arborist/utilities/string_util.h"

namespace {

constexpr std::size_t TIMESTAMP_DIGITS = 14;

std::chrono::system_clock::duration SinceEpoch()
{
    return std::chrono::system_clock::now().time_since_epoch();
}

bool IsDigit(char letter)
{
    return letter >= '0' && letter <= '9';
}

} // namespace

std::uint64_t TimeUtil::GenerateTimestamp()
{
    return static_cast<std::uint64_t>(GetTimeOfDay());
}

std::int64_t TimeUtil::GetTimeOfDay()
{
    if (const std::optional<std::int64_t> fixed = FaultTreePropGlobal::GetInstance().GetNumber(Settings::CURRENT_TIME)) {
        return *fixed;
    }
    return std::chrono::duration_cast<std::chrono::seconds>(SinceEpoch()).count();
}

std::int64_t TimeUtil::GetLastMoment()
{
    return FaultTreePropGlobal::GetInstance().GetNumber(Settings::AS_OF).value_or(std::numeric_limits<std::int64_t>::max());
}

std::int32_t TimeUtil::GetMillSecOfSec()
{
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(SinceEpoch());
    return static_cast<std::int32_t>(milliseconds.count() % 1000);
}

std::uint64_t TimeUtil::GetNanoTime()
{
    const auto elapsed = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(elapsed).count());
}

void TimeUtil::Sleep(std::uint32_t seconds)
{
    if (seconds != 0) {
        std::this_thread::sleep_for(std::chrono::seconds(seconds));
    }
}

std::string TimeUtil::GetFormatTime(std::int64_t seconds)
{
    std::tm local{};
    if (!Platform::LocalTime(seconds, local)) {
        return "YYYY-MM-DD HH:MM:SS";
    }
    char text[64];
    return std::string(text, std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &local));
}

std::int64_t TimeUtil::StrToTimeStamp(const std::string& text)
{
    if (text.size() != TIMESTAMP_DIGITS || !std::all_of(text.begin(), text.end(), IsDigit)) {
        return 0;
    }
    const auto field = [&text](std::size_t begin, std::size_t length) {
        return StringUtil::StringToInt32Def(text.substr(begin, length), 0);
    };
    std::tm local{};
    local.tm_year = field(0, 4) - 1900;
    local.tm_mon = field(4, 2) - 1;
    local.tm_mday = field(6, 2);
    local.tm_hour = field(8, 2);
    local.tm_min = field(10, 2);
    local.tm_sec = field(12, 2);
    return Platform::MomentOf(local);
}

std::int64_t TimeUtil::StrToTimeStamp(const std::string& text, const std::string& format)
{
    std::tm local{};
    std::istringstream stream(text);
    stream >> std::get_time(&local, format.c_str());
    return stream.fail() ? 0 : Platform::MomentOf(local);
}
