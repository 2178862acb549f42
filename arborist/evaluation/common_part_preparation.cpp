#include "arborist/evaluation/common_part_preparation.h"

#include <optional>
#include <utility>

#include "arborist/frame/detect_info.h"
#include "arborist/frame/detection_observer.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/model/common_part.h"
#include "arborist/stores/common_part/common_part_db_helper.h"
#include "arborist/utilities/device_paths.h"

namespace {

// True if the attributes are known without which CommonPart::SetThreshold does nothing.
bool AreAttributesKnown(const DeviceDetails* device)
{
    return device != nullptr && !device->GetCpuName().empty() && !device->GetRamSize().empty()
        && !device->GetResolution().empty() && !device->GetBatteryCapacity().empty();
}

void TellThresholds(const CommonPart::CombineCommonPart& block, DetectionObserver& observer)
{
    for (const auto& bean : block.GetThresholdLumbraList()) {
        if (bean != nullptr && !(bean->GetSystemParamMap().empty() && bean->GetThresholdMap().empty())) {
            Evidence::Trouble trouble;
            trouble.kind = Evidence::Trouble::Kind::NO_THRESHOLDS;
            trouble.subject = bean->GetName();
            observer.OnTrouble(std::move(trouble));
        }
    }
}

} // namespace

void PrepareCommonPart(const std::shared_ptr<CommonPart>& part, const DeviceDetails* device,
                       DetectionObserver* observer)
{
    const auto block = part->GetCombineCommon();
    std::optional<TroubleWatch> watch;
    if (observer != nullptr) {
        watch.emplace([observer](Evidence::Trouble trouble) { observer->OnTrouble(std::move(trouble)); });
    }
    if (!block->GetThresholdLumbraList().empty()) {
        if (device != nullptr) {
            part->SetThreshold(device->GetCpuName(), device->GetRamSize(), device->GetResolution(),
                device->GetBatteryCapacity());
        }
        if (observer != nullptr && !AreAttributesKnown(device)) {
            TellThresholds(*block, *observer);
        }
        bool areWhole = true;
        CommonPartDbHelper::GetInstance().IsSuccessCreateJankDb(
            DevicePaths::EventLog(), part, observer == nullptr ? nullptr : &areWhole);
        part->SetTablesWhole(areWhole);
    }
    if (!block->GetDefDbTableCommonList().empty()) {
        CommonPartDbHelper::GetInstance().CopyDbAndCreateTable(part);
    }
}
