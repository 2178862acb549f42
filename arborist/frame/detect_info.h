#ifndef ARBORIST_FRAME_DETECT_INFO_H
#define ARBORIST_FRAME_DETECT_INFO_H

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "arborist/arborist_export.h"

/// Interface that a host implements to carry out code rules: tests that only the host can run.
class ARBORIST_EXPORT CodeRuleRunner {
public:
    virtual ~CodeRuleRunner() = default;

    /// Carries out the test, on the detection's thread, and returns true if the fault is present. The ids are those of the
    /// first event that uses the rule; `userDefinedInfo` is the rule's own text. An exception leaves StartDetection.
    virtual bool RunCodeRule(std::vector<std::string> faultDescriptionIds, std::vector<std::string> suggestionIds,
        std::vector<std::string> repairIds, const std::string& userDefinedInfo) = 0;

    /// How the last RunCodeRule ended.
    enum class Outcome {
        ANSWERED,
        NOBODY_THERE, ///< no test is available: treated like a host without a runner
        BROKEN_OFF, ///< a test was tried and gave no answer
    };
    /// Says whether the last return value of RunCodeRule is a real answer; ANSWERED by default. The return value decides
    /// the rule in any case, but with another outcome than ANSWERED the check of the rule is open (Evidence::IsOpen).
    virtual Outcome GetOutcome() const { return Outcome::ANSWERED; }
};

/// Attributes of the device. All are texts; an empty text means that the attribute is not known.
class DeviceDetails {
public:
    /// A device whose attributes are all unknown.
    DeviceDetails() = default;
    /// A device with these attributes.
    DeviceDetails(std::string deviceType, std::string product, std::string platform, std::string cpuName,
        std::string ramSize, std::string resolution, std::string batteryCapacity)
        : mDeviceType(std::move(deviceType)), mProduct(std::move(product)), mPlatform(std::move(platform)),
          mCpuName(std::move(cpuName)), mRamSize(std::move(ramSize)), mResolution(std::move(resolution)),
          mBatteryCapacity(std::move(batteryCapacity))
    {
    }

    /// The attribute as it was set.
    ///@{
    std::string GetDeviceType() const { return mDeviceType; }
    std::string GetProduct() const { return mProduct; }
    std::string GetPlatform() const { return mPlatform; }
    std::string GetCpuName() const { return mCpuName; }
    std::string GetRamSize() const { return mRamSize; }
    std::string GetResolution() const { return mResolution; }
    std::string GetBatteryCapacity() const { return mBatteryCapacity; }
    ///@}

    /// Replaces the attribute.
    ///@{
    void SetDeviceType(const std::string& deviceType) { mDeviceType = deviceType; }
    void SetProduct(const std::string& product) { mProduct = product; }
    void SetPlatform(const std::string& platform) { mPlatform = platform; }
    void SetCpuName(const std::string& cpuName) { mCpuName = cpuName; }
    void SetRamSize(const std::string& ramSize) { mRamSize = ramSize; }
    void SetResolution(const std::string& resolution) { mResolution = resolution; }
    void SetBatteryCapacity(const std::string& batteryCapacity) { mBatteryCapacity = batteryCapacity; }
    ///@}

private:
    std::string mDeviceType;
    std::string mProduct;
    std::string mPlatform;
    std::string mCpuName;
    std::string mRamSize;
    std::string mResolution;
    std::string mBatteryCapacity;
};

/// Input of a detection. The host fills it and shares its ownership; the library only reads it.
struct DetectInfo {
    /// Number of the detection scene. A rule runs only if its "detectScene" text contains this number in decimal.
    std::int32_t mDetectScene = 0;
    /// Tree tag: the name of the element that is read in every section of both XML files.
    std::string mTreeTag;
    /// Directory of the rule set's XML files, without a trailing separator.
    std::string mRuleFileDir;
    /// For the host's own use; the library never reads it.
    std::string mReservedText;
    /// Directory of the recovery logs. No detection reads it today.
    std::string mLogLocation;
    /// The device for which rules are filtered and thresholds are chosen. Null fails each filter that needs an attribute.
    std::shared_ptr<DeviceDetails> mDeviceDetails;
    /// Carries out the code rules. May be null: code rules then answer false, and their checks are open.
    std::shared_ptr<CodeRuleRunner> mCodeRuleRunner;
    /// If not empty, both XML files are looked up under this prefix, "_" and their name.
    std::string mRuleFilePrefix;
};

#endif
