#include "arborist/frame/fault_tree_prop_global.h"

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
