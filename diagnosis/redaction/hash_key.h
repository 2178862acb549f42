#ifndef ARBORIST_DIAGNOSIS_REDACTION_HASH_KEY_H
#define ARBORIST_DIAGNOSIS_REDACTION_HASH_KEY_H

#include <optional>
#include <string>

namespace diagnosis {

/// The least number of bytes of a key: shorter ones can be found by trying all.
inline constexpr std::size_t SHORTEST_KEY = 16;

/// Reads a key: all bytes of the file, a line end included. On failure returns nothing and sets `problem` to the path
/// and the reason on one line.
std::optional<std::string> ReadHashKey(const std::string& path, std::string& problem);

/// The keyed hash in place of a value. The empty value stays empty, as it gives nothing away.
std::string HashedValue(const std::string& key, const std::string& value);

/// How results name the device that a bundle is of.
struct DeviceNames {
    /// The key under which the id is hashed; empty for none, so that no device has a name.
    std::string key;
    /// Shows the id as it is.
    bool isPlain = false;

    /// The name of the device with this id; empty for none.
    std::string Of(const std::string& deviceId) const;
};

} // namespace diagnosis

#endif
