#include "diagnosis/redaction/hash_key.h"

#include "diagnosis/digest/digest.h"
#include "diagnosis/text/file_text.h"

namespace diagnosis {

std::optional<std::string> ReadHashKey(const std::string& path, std::string& problem)
{
    auto key = FileText(path, MOST_WRITTEN_BYTES);
    if (!key) {
        problem = path + ": the key can't be read";
        return std::nullopt;
    }
    if (key->size() > MOST_WRITTEN_BYTES) {
        problem = path + ": " + TOO_LARGE;
        return std::nullopt;
    }
    if (key->size() < SHORTEST_KEY) {
        problem = path + ": a key needs " + std::to_string(SHORTEST_KEY) + " bytes, and this one has "
            + std::to_string(key->size());
        return std::nullopt;
    }
    return key;
}

std::string HashedValue(const std::string& key, const std::string& value)
{
    return value.empty() ? "" : KeyedHash(key, value);
}

std::string DeviceNames::Of(const std::string& deviceId) const
{
    return isPlain ? deviceId : key.empty() ? "" : HashedValue(key, deviceId);
}

} // namespace diagnosis
