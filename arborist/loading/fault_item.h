#ifndef ARBORIST_LOADING_FAULT_ITEM_H
#define ARBORIST_LOADING_FAULT_ITEM_H

#include <string>
#include <utility>
#include <vector>

#include "arborist/frame/fault_tree_result.h"

/// One element of a description section of the rule file: the meaning of one fault id.
class FaultItem {
public:
    const std::string& GetFaultItemId() const { return mFaultItemId; }
    /// Ids in file order: of descriptions, suggestions or repairs, depending on the section of the element.
    const std::vector<std::string>& GetResolutionSuggestions() const { return mResolutionSuggestions; }
    const std::vector<FaultTreeResult::RepairInfo>& GetRepairInfo() const { return mRepairInfo; }

    void SetFaultItemId(std::string faultItemId) { mFaultItemId = std::move(faultItemId); }
    void SetResolutionSuggestions(std::vector<std::string> resolutionSuggestions)
    {
        mResolutionSuggestions = std::move(resolutionSuggestions);
    }
    void SetRepairInfo(std::vector<FaultTreeResult::RepairInfo> repairInfo) { mRepairInfo = std::move(repairInfo); }

private:
    std::string mFaultItemId;
    std::vector<std::string> mResolutionSuggestions;
    std::vector<FaultTreeResult::RepairInfo> mRepairInfo;
};

#endif
