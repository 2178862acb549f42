#include "diagnosis/bundle/bundle.h"

#include <filesystem>

namespace diagnosis {

BundlePath MakeBundlePath(const std::string& given)
{
    std::error_code error;
    return {given, std::filesystem::absolute(given, error).generic_string()};
}

std::string MakeRulesPath(const std::string& given)
{
    std::error_code error;
    return std::filesystem::absolute(given, error).lexically_normal().generic_string();
}

std::vector<std::pair<const char*, std::string>> DeviceAttributes(const DeviceDetails& device)
{
    return {{"DeviceType", device.GetDeviceType()}, {"Product", device.GetProduct()},
        {"Platform", device.GetPlatform()}, {"CpuName", device.GetCpuName()}, {"RamSize", device.GetRamSize()},
        {"Resolution", device.GetResolution()}, {"BatteryCapacity", device.GetBatteryCapacity()}};
}

} // namespace diagnosis
