#include "arborist/model/common_part.h"

#include <algorithm>
#include <cctype>

#include "arborist/utilities/string_util.h"

namespace {

struct DeviceAttributes {
    const std::string& cpuName;
    const std::string& ramSize;
    const std::string& resolution;
    const std::string& batteryCapacity;
};

const std::string* AttributeByKey(const std::string& key, const DeviceAttributes& device)
{
    if (key == CommonPart::CPU_NAME) {
        return &device.cpuName;
    }
    if (key == CommonPart::RAM_SIZE) {
        return &device.ramSize;
    }
    if (key == CommonPart::RESOLUTION) {
        return &device.resolution;
    }
    return key == CommonPart::BATTERY_DESIGN ? &device.batteryCapacity : nullptr;
}

std::shared_ptr<Param> FindParam(const ParamMap& params, const std::string& id)
{
    const auto found = params.find(id);
    return found == params.end() ? nullptr : found->second;
}

std::string ValueOf(const ParamMap& params, const std::string& id)
{
    const auto param = FindParam(params, id);
    return param == nullptr ? CommonPart::FLAVOR : param->value;
}

void UpdateThreshold(const ThresholdOrLumbraBean& bean, const DeviceAttributes& device)
{
    for (const auto& [id, param] : bean.GetSystemParamMap()) {
        const std::string* attribute = param == nullptr ? nullptr : AttributeByKey(param->key, device);
        if (attribute != nullptr) {
            param->value = *attribute;
        }
    }
}

bool IsConditionMet(const CommonPart& part, const Logic& condition, const ThresholdOrLumbraBean& bean)
{
    const bool isEqual = condition.GetLogic() == CommonPart::LOGIC_TYPE_EQ;
    if (!isEqual && condition.GetLogic() != CommonPart::LOGIC_TYPE_IN) {
        // Any other word, "gt" and the like included, counts as met without a comparison. Rule sets rely on it.
        return true;
    }
    const auto param = FindParam(bean.GetSystemParamMap(), condition.GetParamId());
    if (param == nullptr) {
        return false;
    }
    return isEqual ? param->value == condition.GetValue() : part.IsCheckSet(param->value, condition.GetSetList());
}

bool AllConditionsMet(const CommonPart& part, const ThresholdOrLumbraBean::ThresholdItem& item,
    const ThresholdOrLumbraBean& bean)
{
    const auto& conditions = item.GetConditionList();
    return std::all_of(conditions.begin(), conditions.end(),
        [&](const auto& condition) { return condition != nullptr && IsConditionMet(part, *condition, bean); });
}

// Sets the item's thresholds if all its conditions are met.
void SetForThresholdItem(const CommonPart& part, const ThresholdOrLumbraBean::ThresholdItem& item,
    const ThresholdOrLumbraBean& bean)
{
    if (!AllConditionsMet(part, item, bean)) {
        return;
    }
    for (const auto& threshold : item.GetThresholdList()) {
        const auto param = threshold == nullptr ? nullptr : FindParam(bean.GetThresholdMap(), threshold->GetId());
        if (param != nullptr) {
            param->value = threshold->GetValue();
        }
    }
}

// Whether the name is anywhere in the text; SQL makes no difference between cases.
bool Mentions(const std::string& sql, const std::string& name)
{
    const auto isEqual = [](unsigned char left, unsigned char right) { return std::tolower(left) == std::tolower(right); };
    return std::search(sql.begin(), sql.end(), name.begin(), name.end(), isEqual) != sql.end();
}

// Tries every item, so that a later one overwrites what an earlier one set. An item without conditions never applies.
void HandleThresholdItemList(const CommonPart& part, const ThresholdOrLumbraBean& bean)
{
    for (const auto& item : bean.GetThresholdItemList()) {
        if (item != nullptr && !item->GetConditionList().empty()) {
            SetForThresholdItem(part, *item, bean);
        }
    }
}

} // namespace

std::int32_t ThresholdOrLumbraBean::LumbraDataItem::ParseAlarmIdToInt(const std::string& text)
{
    return text.empty() ? 0 : StringUtil::StringToInt32Def(text, 0, 10);
}

std::shared_ptr<ThresholdOrLumbraBean> CommonPart::FindThresholdBean(const std::string& name) const
{
    if (mCombineCommon == nullptr) {
        return nullptr;
    }
    for (const auto& bean : mCombineCommon->GetThresholdLumbraList()) {
        if (bean != nullptr && bean->GetName() == name) {
            return bean;
        }
    }
    return nullptr;
}

bool CommonPart::AreTablesWhole(const std::string& beanName, const std::string& sql) const
{
    if (mCombineCommon == nullptr) {
        return true;
    }
    const auto& beans = mCombineCommon->GetThresholdLumbraList();
    return std::none_of(beans.begin(), beans.end(), [&](const std::shared_ptr<ThresholdOrLumbraBean>& bean) {
        return bean != nullptr && bean->GetTableState() != ThresholdOrLumbraBean::TableState::WHOLE
            && (bean->GetName() == beanName || Mentions(sql, bean->GetName()));
    });
}

bool CommonPart::IsHasThredCommonPart(const std::string& name) const
{
    return !name.empty() && FindThresholdBean(name) != nullptr;
}

std::string CommonPart::GetSystemValue(const std::string& paramId, const std::string& beanName) const
{
    const auto bean = FindThresholdBean(beanName);
    return bean == nullptr ? FLAVOR : ValueOf(bean->GetSystemParamMap(), paramId);
}

std::string CommonPart::GetThresholdValue(const std::string& paramId, const std::string& beanName) const
{
    const auto bean = FindThresholdBean(beanName);
    return bean == nullptr ? FLAVOR : ValueOf(bean->GetThresholdMap(), paramId);
}

std::optional<DefDbTableBean> CommonPart::GetDefDbCommonPart(const std::string& name) const
{
    if (name.empty() || mCombineCommon == nullptr) {
        return std::nullopt;
    }
    for (const auto& bean : mCombineCommon->GetDefDbTableCommonList()) {
        if (bean != nullptr && bean->GetName() == name) {
            return *bean;
        }
    }
    return std::nullopt;
}

bool CommonPart::IsCheckSet(const std::string& value, const std::vector<std::string>& values) const
{
    return std::find(values.begin(), values.end(), value) != values.end();
}

void CommonPart::SetThreshold(const std::string& cpuName, const std::string& ramSize, const std::string& resolution,
    const std::string& batteryCapacity)
{
    if (cpuName.empty() || ramSize.empty() || resolution.empty() || batteryCapacity.empty() ||
        mCombineCommon == nullptr) {
        return;
    }
    for (const auto& bean : mCombineCommon->GetThresholdLumbraList()) {
        if (bean != nullptr) {
            UpdateThreshold(*bean, DeviceAttributes{cpuName, ramSize, resolution, batteryCapacity});
            HandleThresholdItemList(*this, *bean);
        }
    }
}
