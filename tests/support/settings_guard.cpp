#include "tests/support/settings_guard.h"

#include "arborist/frame/settings.h"

namespace {

void EmptyAll()
{
    for (const char* key : Settings::ALL) {
        SetFaultTreeProperty(key, "");
    }
}

} // namespace

SettingsGuard::SettingsGuard()
{
    EmptyAll();
}

SettingsGuard::~SettingsGuard()
{
    EmptyAll();
}

void SettingsGuard::Set(const std::string& key, const std::string& value) const
{
    SetFaultTreeProperty(key, value);
}
