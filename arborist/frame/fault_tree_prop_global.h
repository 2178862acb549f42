#ifndef ARBORIST_FRAME_FAULT_TREE_PROP_GLOBAL_H
#define ARBORIST_FRAME_FAULT_TREE_PROP_GLOBAL_H

#include <functional>
#include <map>
#include <string>
#include <string_view>

/// The process-wide map behind SetFaultTreeProperty. Created thread-safely on first use, not locked afterwards.
class FaultTreePropGlobal {
public:
    FaultTreePropGlobal(const FaultTreePropGlobal&) = delete;
    FaultTreePropGlobal& operator=(const FaultTreePropGlobal&) = delete;

    static FaultTreePropGlobal& GetInstance();

    /// The value of `key`, or a copy of `defaultValue` when it was never set.
    std::string GetFaultTreeProperty(std::string_view key, std::string_view defaultValue) const;

    /// Inserts or assigns and answers true; with `overwrite` false and the key present, false and nothing changes.
    bool SetFaultTreeProperty(const std::string& key, const std::string& value, bool overwrite);

private:
    FaultTreePropGlobal() = default;
    ~FaultTreePropGlobal() = default;

    std::map<std::string, std::string, std::less<>> mProperties;
};

#endif
