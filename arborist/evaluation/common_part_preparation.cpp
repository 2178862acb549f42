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

bool HasThresholds(const ThresholdOrLumbraBean& bean)
{
    return !(bean.GetSystemParamMap().empty() && bean.GetThresholdMap().empty());
}

bool IsWithoutTable(const ThresholdOrLumbraBean& bean)
{
    return bean.GetTableState() == ThresholdOrLumbraBean::TableState::NOT_BUILT;
}

// Reports trouble of this kind for each bean to which `isConcerned` applies.
void TellBeans(const CommonPart::CombineCommonPart& block, Evidence::Trouble::Kind kind,
    bool (*isConcerned)(const ThresholdOrLumbraBean& bean))
{
    for (const auto& bean : block.GetThresholdLumbraList()) {
        if (bean != nullptr && isConcerned(*bean)) {
            TroubleWatch::Tell(kind, {}, {bean->GetName(), {}, bean->GetLine()});
        }
    }
}

} // namespace

void PrepareCommonPart(const std::shared_ptr<CommonPart>& part, const std::string& ruleFile,
    const DeviceDetails* device, DetectionObserver* observer)
{
    const auto block = part->GetCombineCommon();
    std::optional<TroubleWatch> watch;
    if (observer != nullptr) {
        watch.emplace([&](Evidence::Trouble trouble) {
            trouble.file = trouble.line == 0 ? trouble.file : ruleFile; // an entry of the rule file has a line
            observer->OnTrouble(std::move(trouble));
        });
    }
    if (!block->GetThresholdLumbraList().empty()) {
        if (device != nullptr) {
            part->SetThreshold(device->GetCpuName(), device->GetRamSize(), device->GetResolution(),
                device->GetBatteryCapacity());
        }
        if (!AreAttributesKnown(device)) {
            TellBeans(*block, Evidence::Trouble::Kind::NO_THRESHOLDS, HasThresholds);
        }
        CommonPartDbHelper::GetInstance().IsSuccessCreateJankDb(DevicePaths::EventLog(), part, observer != nullptr);
        TellBeans(*block, Evidence::Trouble::Kind::TABLE_NOT_BUILT, IsWithoutTable);
    }
    if (!block->GetDefDbTableCommonList().empty()) {
        CommonPartDbHelper::GetInstance().CopyDbAndCreateTable(part);
    }
}
