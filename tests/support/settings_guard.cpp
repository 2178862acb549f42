#include "tests/support/settings_guard.h"

#include "arborist/frame/settings.h"

namespace {

void EmptyAll()
{
    for (const char* key : {Settings::APP_DATABASE_DIR, Settings::APP_FILE_DIR, Settings::VERSION_NAME,
             Settings::PROGRAM_DATA_DIR, Settings::DEVICE_ROOT_DIR, Settings::CURRENT_TIME, Settings::TEMPORARY_STORES}) {
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
