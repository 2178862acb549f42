#include "diagnosis/lint/reading/device_filter.h"

#include <algorithm>
#include <string>

namespace diagnosis::lint {

namespace {

using rule_source::Rule;

// An unknown text may have any value.
bool MayHold(std::string_view filter, const std::string& text)
{
    return filter.empty() || text.empty() || filter.find(text) != std::string_view::npos;
}

bool MayHaveScene(std::string_view filter, const std::vector<int>& scenes)
{
    return scenes.empty() || std::any_of(scenes.begin(), scenes.end(), [filter](int scene) {
        return filter.find(std::to_string(scene)) != std::string_view::npos;
    });
}

} // namespace

const char* RejectedBy(const Rule& rule, const DeviceProfile& device)
{
    const bool isBlack = !device.product.empty() && rule.blackProducts.find(device.product) != std::string_view::npos;
    return isBlack                                        ? "blackProducts"
        : !MayHold(rule.production, device.product)       ? "production"
        : !MayHaveScene(rule.detectScene, device.scenes)  ? "detectScene"
        : !MayHold(rule.platform, device.platform)        ? "platform"
        : !MayHold(rule.deviceType, device.deviceType)    ? "deviceType"
                                                          : nullptr;
}

} // namespace diagnosis::lint
