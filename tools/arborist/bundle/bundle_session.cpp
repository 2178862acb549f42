#include "tools/arborist/bundle/bundle_session.h"

#include <filesystem>

#include "tools/arborist/bundle/bundle_file.h"

namespace command {

namespace fs = std::filesystem;

namespace {

// Settings belong to the process: one bundle must not see those of the bundle before.
void EmptySettings()
{
    for (const char* key : {Settings::APP_DATABASE_DIR, Settings::APP_FILE_DIR, Settings::VERSION_NAME,
             Settings::PROGRAM_DATA_DIR, Settings::DEVICE_ROOT_DIR, Settings::CURRENT_TIME}) {
        SetFaultTreeProperty(key, "");
    }
}

} // namespace

BundleSession::~BundleSession()
{
    EmptySettings();
    if (!mFolderBefore.empty()) {
        std::error_code ignored;
        fs::current_path(mFolderBefore, ignored);
    }
}

std::optional<Failure> BundleSession::Enter(const BundlePath& path, const BundleOverrides& overrides)
{
    if (auto failure = ReadBundleFile(path, mBundle, mWarnings)) {
        return failure;
    }
    mBundle.now = overrides.now.empty() ? mBundle.now : overrides.now;
    mBundle.tz = overrides.tz.empty() ? mBundle.tz : overrides.tz;
    mZone = std::make_unique<TimeZoneGuard>(mBundle.tz);
    if (auto failure = SetMoment()) {
        return failure;
    }
    std::error_code error;
    mFolder = fs::canonical(path.absolute, error).string();
    const std::string before = fs::current_path(error).string();
    fs::current_path(path.absolute, error);
    if (error) {
        return Failure{"no_bundle", path.given + ": can't be entered: " + error.message()};
    }
    mFolderBefore = before;
    SetSettings();
    return std::nullopt;
}

std::optional<Failure> BundleSession::SetMoment()
{
    if (mBundle.now.empty()) {
        return std::nullopt;
    }
    mMoment = ParseMoment(mBundle.now);
    if (!mMoment || !FormatMoment(*mMoment)) {
        return Failure{"bad_bundle", "the moment \"" + mBundle.now + "\" does not exist in the time zone"
            + (mBundle.tz.empty() ? "" : " " + mBundle.tz)};
    }
    return std::nullopt;
}

void BundleSession::SetSettings() const
{
    EmptySettings();
    for (const auto& [key, value] : mBundle.settings) {
        SetFaultTreeProperty(key, value);
    }
    SetFaultTreeProperty(Settings::CURRENT_TIME, mMoment ? std::to_string(*mMoment) : "");
}

std::shared_ptr<DetectInfo> BundleSession::MakeDetectInfo() const
{
    auto info = std::make_shared<DetectInfo>();
    info->mDetectScene = mBundle.detectScene;
    info->mTreeTag = mBundle.treeTag;
    info->mRuleFileDir = mBundle.ruleFileDir;
    info->mReservedText = mBundle.reservedText;
    info->mLogLocation = mBundle.logLocation;
    info->mDeviceDetails = std::make_shared<DeviceDetails>(mBundle.device);
    info->mRuleFilePrefix = mBundle.ruleFilePrefix;
    return info;
}

std::string BundleSession::ProgramDataPath(const std::string& file) const
{
    const auto root = mBundle.settings.find(Settings::PROGRAM_DATA_DIR);
    const std::string path = root == mBundle.settings.end() || root->second.empty() ? "/var/lib/arborist" : root->second;
    return (fs::path(mFolder) / path / file).string();
}

} // namespace command
