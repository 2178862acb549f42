#ifndef ARBORIST_FRAME_DETECT_INFO_H
#define ARBORIST_FRAME_DETECT_INFO_H

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "arborist/arborist_export.h"

/// The host's side of a code rule: a test that only the host can carry out.
class ARBORIST_EXPORT CodeRuleRunner {
public:
    virtual ~CodeRuleRunner() = default;

    /// Carries the test out and answers whether the fault is present. Called inside a detection, on its thread.
    /// The ids are those of the first event that uses the rule; `userDefinedInfo` is the rule's own text, unchanged.
    virtual bool RunCodeRule(std::vector<std::string> faultDescriptionIds, std::vector<std::string> suggestionIds,
        std::vector<std::string> repairIds, const std::string& userDefinedInfo) = 0;
};

/// What is known of the device. All texts; an empty one means not known.
class DeviceDetails {
public:
    DeviceDetails() = default;
    DeviceDetails(std::string deviceType, std::string product, std::string platform, std::string cpuName,
        std::string ramSize, std::string resolution, std::string batteryCapacity)
        : mDeviceType(std::move(deviceType)), mProduct(std::move(product)), mPlatform(std::move(platform)),
          mCpuName(std::move(cpuName)), mRamSize(std::move(ramSize)), mResolution(std::move(resolution)),
          mBatteryCapacity(std::move(batteryCapacity))
    {
    }

    std::string GetDeviceType() const { return mDeviceType; }
    std::string GetProduct() const { return mProduct; }
    std::string GetPlatform() const { return mPlatform; }
    std::string GetCpuName() const { return mCpuName; }
    std::string GetRamSize() const { return mRamSize; }
    std::string GetResolution() const { return mResolution; }
    std::string GetBatteryCapacity() const { return mBatteryCapacity; }

    void SetDeviceType(const std::string& deviceType) { mDeviceType = deviceType; }
    void SetProduct(const std::string& product) { mProduct = product; }
    void SetPlatform(const std::string& platform) { mPlatform = platform; }
    void SetCpuName(const std::string& cpuName) { mCpuName = cpuName; }
    void SetRamSize(const std::string& ramSize) { mRamSize = ramSize; }
    void SetResolution(const std::string& resolution) { mResolution = resolution; }
    void SetBatteryCapacity(const std::string& batteryCapacity) { mBatteryCapacity = batteryCapacity; }

private:
    std::string mDeviceType;
    std::string mProduct;
    std::string mPlatform;
    std::string mCpuName;
    std::string mRamSize;
    std::string mResolution;
    std::string mBatteryCapacity;
};

/// What a detection is asked. The host fills it and shares it; the library only reads it.
struct DetectInfo {
    /// Number of the detection scene. A rule runs only if its "detectScene" text holds this number in decimal.
    std::int32_t mDetectScene = 0;
    /// Name of the section that is read in every table of both XML files.
    std::string mTreeTag;
    /// Directory of the rule set's XML files, without a trailing separator.
    std::string mRuleFileDir;
    /// The host's own; never read by the library.
    std::string mReservedText;
    /// Where recovery logs lie.
    std::string mLogLocation;
    std::shared_ptr<DeviceDetails> mDeviceDetails;
    /// May be null: code rules then answer false.
    std::shared_ptr<CodeRuleRunner> mCodeRuleRunner;
    /// When not empty, the XML files are named with this prefix and "_" in front.
    std::string mRuleFilePrefix;
};

#endif
