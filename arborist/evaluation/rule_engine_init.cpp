#include "arborist/evaluation/rule_engine.h"
#include "arborist/frame/detect_info.h"
#include "arborist/loading/fault_tree_parser.h"
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

} // namespace

void RuleEngine::Init()
{
    CommonPartDbHelper::GetInstance().Init();
    InitCommonPart();
}

void RuleEngine::InitCommonPart()
{
    const auto block = mFaultTreeParser == nullptr ? nullptr : mFaultTreeParser->GetCommonPart();
    if (block == nullptr) {
        return;
    }
    const auto part = std::make_shared<CommonPart>();
    if (!block->GetThresholdLumbraList().empty()) {
        part->SetCombineCommon(block);
        if (mDeviceDetails != nullptr) {
            part->SetThreshold(mDeviceDetails->GetCpuName(), mDeviceDetails->GetRamSize(),
                mDeviceDetails->GetResolution(), mDeviceDetails->GetBatteryCapacity());
        }
        mCommonPart = part;
        TellThresholds(*block);
        // What can't be built leaves a table missing or empty; the rules that ask for it deal with that.
        CommonPartDbHelper::GetInstance().IsSuccessCreateJankDb(DevicePaths::EventLog(), part);
    }
    if (!block->GetDefDbTableCommonList().empty()) {
        part->SetCombineCommon(block);
        mCommonPart = part;
        TellExternalDatabases(*block);
        CommonPartDbHelper::GetInstance().CopyDbAndCreateTable(part);
    }
}

void RuleEngine::TellThresholds(const CommonPart::CombineCommonPart& block) const
{
    if (mObserver == nullptr) {
        return;
    }
    const bool areSet = AreAttributesKnown(mDeviceDetails.get());
    for (const auto& bean : block.GetThresholdLumbraList()) {
        if (bean != nullptr) {
            mObserver->OnThresholds(
                {bean->GetName(), bean->GetSystemParamMap().size(), bean->GetThresholdMap().size(), areSet});
        }
    }
}

void RuleEngine::TellExternalDatabases(const CommonPart::CombineCommonPart& block) const
{
    if (mObserver == nullptr) {
        return;
    }
    for (const auto& bean : block.GetDefDbTableCommonList()) {
        if (bean != nullptr) {
            mObserver->OnExternalDatabase({bean->GetName(), bean->GetDbName()});
        }
    }
}
