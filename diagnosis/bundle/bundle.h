#ifndef ARBORIST_DIAGNOSIS_BUNDLE_BUNDLE_H
#define ARBORIST_DIAGNOSIS_BUNDLE_BUNDLE_H

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "arborist/frame/detect_info.h"
#include "arborist/frame/settings.h"

namespace diagnosis {

/// A bundle's path as the command line gives it, for messages and results, and its absolute path.
struct BundlePath {
    std::string given;
    std::string absolute;
};

/// Makes the path absolute. Call it before a bundle is entered, which changes the working directory.
BundlePath MakeBundlePath(const std::string& given);
/// The absolute path of a folder with another rule set, in normal form; for the same moment.
std::string MakeRulesPath(const std::string& given);

/// The content of bundle.json: a device, a rule set and the time of a recording. Relative paths are inside the bundle.
struct Bundle {
    std::int32_t detectScene = 0;
    std::string treeTag;
    std::string ruleFileDir = "rules";
    std::string ruleFilePrefix;
    std::string logLocation;
    std::string reservedText;
    /// Tells one device from all others, as a serial number does; empty where it is not known. Shown as DeviceNames
    /// says, and nowhere else.
    std::string deviceId;
    DeviceDetails device;
    /// Values by the names of Settings. By default both roots are folders inside the bundle, which carries its own
    /// device and data.
    std::map<std::string, std::string> settings = {
        {Settings::PROGRAM_DATA_DIR, "programdata"}, {Settings::DEVICE_ROOT_DIR, "device"}};
    /// "YYYY-MM-DD HH:MM:SS" or seconds; empty for the real time.
    std::string now;
    /// The same for the moment after which nothing counts; empty for no such moment. Not a key of bundle.json.
    std::string asOf;
    /// Empty for the zone of this machine.
    std::string tz;
    /// Recorded answers of code rules by the rule's user-defined text.
    std::map<std::string, bool> codeAnswers;
};

/// An attribute of a device by its name in bundle.json.
struct DeviceAttribute {
    const char* name;
    void (DeviceDetails::*set)(const std::string& value);
};
inline constexpr DeviceAttribute DEVICE_ATTRIBUTES[] = {{"DeviceType", &DeviceDetails::SetDeviceType},
    {"Product", &DeviceDetails::SetProduct}, {"Platform", &DeviceDetails::SetPlatform},
    {"CpuName", &DeviceDetails::SetCpuName}, {"RamSize", &DeviceDetails::SetRamSize},
    {"Resolution", &DeviceDetails::SetResolution}, {"BatteryCapacity", &DeviceDetails::SetBatteryCapacity}};

/// The attributes of a device with their values, by the names and in the order of bundle.json.
std::vector<std::pair<const char*, std::string>> DeviceAttributes(const DeviceDetails& device);

} // namespace diagnosis

#endif
