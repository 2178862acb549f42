#include "arborist/evaluation/rule_engine.h"
#include "arborist/frame/detect_info.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/common_part.h"
#include "arborist/stores/common_part/common_part_db_helper.h"
#include "arborist/utilities/device_paths.h"

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
        // What can't be built leaves a table missing or empty; the rules that ask for it deal with that.
        CommonPartDbHelper::GetInstance().IsSuccessCreateJankDb(DevicePaths::EventLog(), part);
    }
    if (!block->GetDefDbTableCommonList().empty()) {
        part->SetCombineCommon(block);
        mCommonPart = part;
        CommonPartDbHelper::GetInstance().CopyDbAndCreateTable(part);
    }
}
