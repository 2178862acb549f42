#include "diagnosis/process/local_time.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace diagnosis {

std::optional<std::tm> LocalTime(std::int64_t seconds)
{
    const std::time_t time = seconds;
    std::tm date = {};
    return localtime_r(&time, &date) == nullptr ? std::nullopt : std::optional(date);
}

std::int64_t OffsetAt(std::int64_t seconds)
{
    const auto date = LocalTime(seconds);
    return date ? date->tm_gmtoff : 0;
}

std::int64_t MomentOf(std::tm local)
{
    local.tm_isdst = -1;
    return std::mktime(&local);
}

bool HasZone(const std::string& name)
{
    static const std::string legal = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_+-/";
    if (name.empty() || name[0] == '/' || name.find_first_not_of(legal) != std::string::npos) {
        return false;
    }
    const char* folder = std::getenv("TZDIR");
    const auto path = std::filesystem::path(folder == nullptr ? "/usr/share/zoneinfo" : folder) / name;
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored)) {
        return false;
    }
    char magic[4] = {};
    std::ifstream(path, std::ios::binary).read(magic, sizeof magic);
    return std::string(magic, sizeof magic) == "TZif";
}

bool FollowsRule(const std::string&)
{
    return true;
}

std::vector<std::string> ZonesInForce()
{
    constexpr char LOCAL[] = "/etc/localtime";
    if (const char* zone = std::getenv("TZ")) {
        return {*zone == ':' ? zone + 1 : zone};
    }
    std::vector<std::string> zones;
    std::error_code error;
    const std::string path = std::filesystem::canonical(LOCAL, error).string();
    constexpr std::string_view FOLDER = "/zoneinfo/";
    if (const auto folder = path.find(FOLDER); folder != std::string::npos) {
        zones.push_back(path.substr(folder + FOLDER.size()));
    }
    // If it is a copy instead of a link, its last line has the rule.
    std::ifstream file(LOCAL, std::ios::binary);
    std::string rule;
    for (std::string line; std::getline(file, line);) {
        rule = line;
    }
    zones.push_back(rule);
    return zones;
}

} // namespace diagnosis
