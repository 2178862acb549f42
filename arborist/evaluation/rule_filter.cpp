#include "arborist/evaluation/rule_filter.h"

#include <utility>

#include "arborist/frame/detect_info.h"
#include "arborist/model/rule.h"

namespace {

using Reason = Evidence::Reason;

// A plain search on purpose: a product "AB" also matches a text that lists "ABC". Rule files rely on it.
bool Holds(const std::string& ruleText, const std::string& deviceValue)
{
    return ruleText.find(deviceValue) != std::string::npos;
}

} // namespace

RuleFilter::RuleFilter(std::shared_ptr<const DetectInfo> detectInfo) : mDetectInfo(std::move(detectInfo)) {}

std::optional<RuleFilter::Rejection> RuleFilter::Reject(const Rule& rule) const
{
    if (mDetectInfo == nullptr) {
        return Rejection{Reason::FILTERED_PRODUCT, {}, rule.production};
    }
    if (auto rejection = RejectByProduct(rule)) {
        return rejection;
    }
    if (auto rejection = RejectByScene(rule)) {
        return rejection;
    }
    if (auto rejection = RejectByText(Reason::FILTERED_PLATFORM, rule.platform, &DeviceDetails::GetPlatform)) {
        return rejection;
    }
    return RejectByText(Reason::FILTERED_DEVICE_TYPE, rule.deviceType, &DeviceDetails::GetDeviceType);
}

std::optional<RuleFilter::Rejection> RuleFilter::RejectByProduct(const Rule& rule) const
{
    const auto& details = mDetectInfo->mDeviceDetails;
    std::string product = details != nullptr ? details->GetProduct() : std::string();
    // A device without a product name is found in every list, the black list included, as every text contains the empty
    // text.
    if (!rule.blackProducts.empty() && Holds(rule.blackProducts, product)) {
        return Rejection{Reason::FILTERED_BLACK_PRODUCT, std::move(product), rule.blackProducts};
    }
    return RejectByText(Reason::FILTERED_PRODUCT, rule.production, &DeviceDetails::GetProduct);
}

std::optional<RuleFilter::Rejection> RuleFilter::RejectByScene(const Rule& rule) const
{
    std::string scene = std::to_string(mDetectInfo->mDetectScene);
    // Unlike the others, this filter rejects everything if it is not set: a rule without scenes is switched off.
    if (!Holds(rule.detectScene, scene)) {
        return Rejection{Reason::FILTERED_SCENE, std::move(scene), rule.detectScene};
    }
    return std::nullopt;
}

std::optional<RuleFilter::Rejection> RuleFilter::RejectByText(
    Reason reason, const std::string& ruleText, std::string (DeviceDetails::*value)() const) const
{
    if (ruleText.empty()) {
        return std::nullopt;
    }
    const auto& details = mDetectInfo->mDeviceDetails;
    if (details == nullptr) {
        return Rejection{reason, {}, ruleText}; // there is no device to compare with
    }
    std::string deviceValue = ((*details).*value)();
    if (Holds(ruleText, deviceValue)) {
        return std::nullopt;
    }
    return Rejection{reason, std::move(deviceValue), ruleText};
}
