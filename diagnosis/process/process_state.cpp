#include "diagnosis/process/process_state.h"

#include <cstdlib>
#include <filesystem>

#include "arborist/frame/settings.h"
#include "diagnosis/process/environment.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

void EmptySettings()
{
    for (const char* key : Settings::ALL) {
        SetFaultTreeProperty(key, "");
    }
}

} // namespace

TimeZoneGuard::TimeZoneGuard(const std::string& zone) : mIsChanged(!zone.empty())
{
    if (mIsChanged) {
        if (const char* before = std::getenv("TZ")) {
            mBefore = before;
        }
        SetZoneVariable(zone);
    }
}

TimeZoneGuard::~TimeZoneGuard()
{
    if (mIsChanged) {
        mBefore ? SetZoneVariable(*mBefore) : RemoveZoneVariable();
    }
}

std::error_code WorkingDirectory::Enter(const std::string& folder)
{
    std::error_code error;
    const std::string before = fs::current_path(error).generic_string();
    fs::current_path(folder, error);
    if (!error) {
        mBefore = before;
    }
    return error;
}

WorkingDirectory::~WorkingDirectory()
{
    if (!mBefore.empty()) {
        std::error_code ignored;
        fs::current_path(mBefore, ignored);
    }
}

void SettingsInForce::Set(const std::map<std::string, std::string>& settings)
{
    EmptySettings();
    for (const auto& [key, value] : settings) {
        SetFaultTreeProperty(key, value);
    }
}

SettingsInForce::~SettingsInForce()
{
    EmptySettings();
}

void KeepTemporaryFilesIn(const std::string& folder)
{
    SetVariable("TMPDIR", folder);
}

} // namespace diagnosis
