#include "diagnosis/lint/device_profiles.h"

#include "diagnosis/text/file_text.h"

namespace diagnosis::lint {

namespace {

bool ReadText(const Json::Value& object, const char* key, std::string& text)
{
    const Json::Value& value = object[key];
    text = value.isString() ? value.asString() : "";
    return value.isNull() || value.isString();
}

bool ReadScenes(const Json::Value& scenes, std::vector<int>& target)
{
    if (!scenes.isNull() && !scenes.isArray()) {
        return false;
    }
    for (const Json::Value& scene : scenes) {
        if (!scene.isInt()) {
            return false;
        }
        target.push_back(scene.asInt());
    }
    return true;
}

// A bundle has its device below "device" and its only scene beside it.
std::optional<DeviceProfile> ReadProfile(const Json::Value& object)
{
    if (!object.isObject()) {
        return std::nullopt;
    }
    const bool isBundle = object.isMember("detectScene");
    const Json::Value device = isBundle ? object["device"] : object;
    DeviceProfile profile;
    if (isBundle && object["detectScene"].isInt()) {
        profile.scenes.push_back(object["detectScene"].asInt());
    }
    if (isBundle && device.isNull()) {
        return profile;
    }
    const bool isRead = device.isObject() && ReadText(device, "Product", profile.product)
        && ReadText(device, "Platform", profile.platform) && ReadText(device, "DeviceType", profile.deviceType)
        && ReadScenes(device["scenes"], profile.scenes);
    return isRead ? std::optional(profile) : std::nullopt;
}

} // namespace

std::optional<std::vector<DeviceProfile>> ReadDeviceProfiles(const std::string& path, std::string& problem)
{
    const auto json = ReadJsonFile(path, problem);
    if (!json) {
        return std::nullopt;
    }
    Json::Value list = *json;
    if (!list.isArray()) {
        list = Json::Value(Json::arrayValue);
        list.append(*json);
    }
    std::vector<DeviceProfile> profiles;
    for (const Json::Value& object : list) {
        const auto profile = ReadProfile(object);
        if (!profile) {
            problem = path + ": is no device profile with texts \"Product\", \"Platform\", \"DeviceType\" and a list of "
                "numbers \"scenes\"";
            return std::nullopt;
        }
        profiles.push_back(*profile);
    }
    return profiles;
}

} // namespace diagnosis::lint
