#include "arborist/frame/fault_tree_prop_global.h"

#include <charconv>
#include <system_error>

#include "arborist/frame/settings.h"

FaultTreePropGlobal& FaultTreePropGlobal::GetInstance()
{
    static FaultTreePropGlobal instance;
    return instance;
}

std::string FaultTreePropGlobal::GetFaultTreeProperty(std::string_view key, std::string_view defaultValue) const
{
    const auto property = mProperties.find(key);
    return property == mProperties.end() ? std::string(defaultValue) : property->second;
}

std::optional<std::int64_t> FaultTreePropGlobal::GetNumber(std::string_view key) const
{
    const auto property = mProperties.find(key);
    if (property == mProperties.end()) {
        return std::nullopt;
    }
    std::int64_t number = 0;
    const char* const end = property->second.data() + property->second.size();
    const auto [stop, error] = std::from_chars(property->second.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

bool FaultTreePropGlobal::SetFaultTreeProperty(const std::string& key, const std::string& value, bool overwrite)
{
    if (!overwrite && mProperties.count(key) != 0) {
        return false;
    }
    mProperties[key] = value;
    return true;
}

void SetFaultTreeProperty(const std::string& key, const std::string& value)
{
    FaultTreePropGlobal::GetInstance().SetFaultTreeProperty(key, value, true);
}
