#include "arborist/evaluation/common_part_preparation.h"

#include "arborist/frame/detect_info.h"
#include "arborist/frame/detection_observer.h"
#include "arborist/model/common_part.h"
#include "arborist/stores/common_part/common_part_db_helper.h"
#include "arborist/utilities/device_paths.h"

namespace {

// The attributes without which CommonPart::SetThreshold does nothing.
bool AreAttributesKnown(const DeviceDetails* device)
{
    return device != nullptr && !device->GetCpuName().empty() && !device->GetRamSize().empty()
        && !device->GetResolution().empty() && !device->GetBatteryCapacity().empty();
}

void TellThresholds(const CommonPart::CombineCommonPart& block, bool areSet, DetectionObserver& observer)
{
    for (const auto& bean : block.GetThresholdLumbraList()) {
        if (bean != nullptr) {
            observer.OnThresholds(
                {bean->GetName(), bean->GetSystemParamMap().size(), bean->GetThresholdMap().size(), areSet});
        }
    }
}

void TellExternalDatabases(const CommonPart::CombineCommonPart& block, DetectionObserver& observer)
{
    for (const auto& bean : block.GetDefDbTableCommonList()) {
        if (bean != nullptr) {
            observer.OnExternalDatabase({bean->GetName(), bean->GetDbName()});
        }
    }
}

} // namespace

void PrepareCommonPart(const std::shared_ptr<CommonPart>& part, const DeviceDetails* device,
                       DetectionObserver* observer)
{
    const auto block = part->GetCombineCommon();
    if (!block->GetThresholdLumbraList().empty()) {
        if (device != nullptr) {
            part->SetThreshold(device->GetCpuName(), device->GetRamSize(), device->GetResolution(),
                device->GetBatteryCapacity());
        }
        if (observer != nullptr) {
            TellThresholds(*block, AreAttributesKnown(device), *observer);
        }
        CommonPartDbHelper::GetInstance().IsSuccessCreateJankDb(DevicePaths::EventLog(), part);
    }
    if (!block->GetDefDbTableCommonList().empty()) {
        if (observer != nullptr) {
            TellExternalDatabases(*block, *observer);
        }
        CommonPartDbHelper::GetInstance().CopyDbAndCreateTable(part);
    }
}
