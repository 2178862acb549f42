#include "diagnosis/bundle/bundle.h"

namespace diagnosis {

std::vector<std::pair<const char*, std::string>> DeviceAttributes(const DeviceDetails& device)
{
    return {{"DeviceType", device.GetDeviceType()}, {"Product", device.GetProduct()},
        {"Platform", device.GetPlatform()}, {"CpuName", device.GetCpuName()}, {"RamSize", device.GetRamSize()},
        {"Resolution", device.GetResolution()}, {"BatteryCapacity", device.GetBatteryCapacity()}};
}

} // namespace diagnosis
