#ifndef ARBORIST_FRAME_FAULT_TREE_PROP_GLOBAL_H
#define ARBORIST_FRAME_FAULT_TREE_PROP_GLOBAL_H

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

/// The process-wide map behind SetFaultTreeProperty. Its creation is thread-safe; later calls are not.
class FaultTreePropGlobal {
public:
    FaultTreePropGlobal(const FaultTreePropGlobal&) = delete;
    FaultTreePropGlobal& operator=(const FaultTreePropGlobal&) = delete;

    static FaultTreePropGlobal& GetInstance();

    /// Returns the value of `key`, or a copy of `defaultValue` if it was never set.
    std::string GetFaultTreeProperty(std::string_view key, std::string_view defaultValue) const;

    /// The value of `key` as a number; none if it is not a decimal number of 64 bits from its first to its last character.
    std::optional<std::int64_t> GetNumber(std::string_view key) const;

    /// Sets the value and returns true; returns false and changes nothing if the key is present and `overwrite` is
    /// false.
    bool SetFaultTreeProperty(const std::string& key, const std::string& value, bool overwrite);

private:
    FaultTreePropGlobal() = default;
    ~FaultTreePropGlobal() = default;

    std::map<std::string, std::string, std::less<>> mProperties;
};

#endif
