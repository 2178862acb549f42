#include "arborist/evaluation/sweep/moment_in_force.h"

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/settings.h"

namespace {

std::string Setting(const char* key)
{
    return FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(key, "");
}

void SetBoth(const std::string& now, const std::string& last)
{
    FaultTreePropGlobal::GetInstance().SetFaultTreeProperty(Settings::CURRENT_TIME, now, true);
    FaultTreePropGlobal::GetInstance().SetFaultTreeProperty(Settings::AS_OF, last, true);
}

} // namespace

MomentInForce::MomentInForce() : mNow(Setting(Settings::CURRENT_TIME)), mLast(Setting(Settings::AS_OF)) {}

MomentInForce::~MomentInForce()
{
    SetBoth(mNow, mLast);
}

void MomentInForce::Set(std::int64_t now, std::int64_t last)
{
    SetBoth(std::to_string(now), std::to_string(last));
}
