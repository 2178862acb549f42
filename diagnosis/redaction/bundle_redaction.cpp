#include "diagnosis/redaction/bundle_redaction.h"

#include <algorithm>
#include <utility>

#include "arborist/frame/settings.h"
#include "diagnosis/redaction/hash_key.h"

namespace diagnosis {

namespace {

constexpr char DEVICE_PREFIX[] = "device.";

// The text that a key of RedactableKeys names, without those of the device record.
std::string* TextOf(Bundle& bundle, const std::string& key)
{
    const std::pair<std::string, std::string*> texts[] = {{"deviceId", &bundle.deviceId},
        {"reservedText", &bundle.reservedText}, {"logLocation", &bundle.logLocation},
        {std::string("settings.") + Settings::VERSION_NAME, &bundle.settings[Settings::VERSION_NAME]}};
    for (const auto& [name, text] : texts) {
        if (name == key) {
            return text;
        }
    }
    return nullptr;
}

// Replaces one key. False if its value is empty.
bool Replace(const std::string& hashKey, const std::string& key, Bundle& bundle)
{
    if (std::string* const text = TextOf(bundle, key)) {
        *text = HashedValue(hashKey, *text);
        return !text->empty();
    }
    const auto values = DeviceAttributes(bundle.device);
    for (std::size_t attribute = 0; attribute < values.size(); ++attribute) {
        const auto& [name, value] = values[attribute];
        if (DEVICE_PREFIX + std::string(name) == key && !value.empty()) {
            (bundle.device.*DEVICE_ATTRIBUTES[attribute].set)(HashedValue(hashKey, value));
            return true;
        }
    }
    return false;
}

} // namespace

void RedactBundle(const Redaction& redaction, Bundle& bundle, RedactionReport& report)
{
    for (const std::string& key : redaction.bundleKeys) {
        if (std::find(report.bundleKeys.begin(), report.bundleKeys.end(), key) != report.bundleKeys.end()) {
            continue; // listed twice
        }
        if (Replace(redaction.key, key, bundle)) {
            report.bundleKeys.push_back(key);
        } else {
            report.notThere.push_back("bundle.json: " + key);
        }
    }
}

bool IsRedactedNode(const Redaction& redaction, const std::string& path)
{
    // No file has a longer path, and matching takes stack for each character.
    static constexpr std::size_t LONGEST_PATH = 4095;
    return path.size() <= LONGEST_PATH && std::any_of(redaction.nodes.begin(), redaction.nodes.end(),
        [&path](const NodePattern& node) { return std::regex_match(path, node.pattern); });
}

std::string RedactedNodeText(const Redaction& redaction, const std::string& text)
{
    const std::string value = text.substr(0, text.find_last_not_of("\r\n") + 1);
    return value.empty() ? text : HashedValue(redaction.key, value) + "\n";
}

} // namespace diagnosis
