#include "diagnosis/bundle/bundle_session.h"

#include <filesystem>
#include <map>

#include "diagnosis/archive/zip_reader.h"
#include "diagnosis/bundle/bundle_bounds.h"
#include "diagnosis/bundle/bundle_file.h"
#include "diagnosis/bundle/bundle_overlay.h"
#include "diagnosis/bundle/moment.h"
#include "diagnosis/bundle/repair_records.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

// The folders that may be the bundle: an archive often contains the folder of the bundle instead of its files.
std::vector<std::string> FoldersWithBundleFile(const fs::path& unpacked)
{
    std::error_code error;
    if (fs::exists(unpacked / "bundle.json", error)) {
        return {unpacked.generic_string()};
    }
    std::vector<std::string> folders;
    for (const fs::directory_entry& entry : fs::directory_iterator(unpacked, error)) {
        if (fs::exists(entry.path() / "bundle.json", error)) {
            folders.push_back(entry.path().generic_string());
        }
    }
    return folders.empty() ? std::vector{unpacked.generic_string()} : folders;
}

std::string DataPath(const std::string& folder, const std::map<std::string, std::string>& settings,
    const std::string& file)
{
    const auto root = settings.find(Settings::PROGRAM_DATA_DIR);
    const bool isSet = root != settings.end() && !root->second.empty();
    return (fs::path(folder) / (isSet ? root->second : MACHINE_DATA) / file).generic_string();
}

} // namespace

std::optional<Failure> BundleSession::Enter(const BundlePath& path, const BundleOverrides& overrides, BundleUse use)
{
    if (path.given.find('\0') != std::string::npos) {
        return Failure{FailureCode::NO_BUNDLE, path.given + ": no such folder or zip; a path holds no NUL character"};
    }
    mIsZip = diagnosis::IsZip(path.absolute);
    if (mIsZip && use == BundleUse::RECORD) {
        return Failure{FailureCode::BUNDLE_IS_ZIP, path.given + ": nothing can be recorded in a zip; unpack it first"};
    }
    if (mIsZip && overrides.isLive) {
        return Failure{FailureCode::BUNDLE_IS_ZIP, path.given + ": is a capture of a device; --live takes a folder"};
    }
    if (mIsZip || use == BundleUse::RUN) {
        if (auto failure = mScratch.MakeOrReuse()) {
            return failure;
        }
    }
    if (!mIsZip) {
        return EnterFolder(path, overrides, use);
    }
    if (auto failure = Unpack(path, overrides)) {
        return failure;
    }
    return EnterFolder({path.given, mFolder}, overrides, use);
}

std::optional<Failure> BundleSession::Unpack(const BundlePath& path, const BundleOverrides& overrides)
{
    const fs::path unpacked = mScratch.Path("bundle");
    std::error_code error;
    fs::create_directory(unpacked, error);
    if (auto failure =
            UnpackZip(path.absolute, path.given, unpacked.generic_string(), mWarnings, {}, overrides.isToEnd)) {
        return failure;
    }
    const auto folders = FoldersWithBundleFile(unpacked);
    if (folders.size() > 1) {
        return Failure{FailureCode::NO_BUNDLE_JSON, path.given + ": holds " + std::to_string(folders.size())
            + " bundles; unpack it and name one"};
    }
    mFolder = folders.front();
    mNames.Add(mFolder, path.given);
    mNames.Add(unpacked.generic_string(), path.given);
    return std::nullopt;
}

void BundleSession::SetZone(const std::string& zone)
{
    if (!zone.empty() && !mBundle.tz.empty() && zone != mBundle.tz) {
        mWarnings.emplace_back(WarningCode::ZONE_DIFFERS, "local times are those of " + zone
            + ", and the bundle was recorded in " + mBundle.tz + ": its days begin at another moment");
    }
    mBundle.tz = zone.empty() ? mBundle.tz : zone;
    mZone.emplace(mBundle.tz);
}

std::optional<Failure> BundleSession::EnterFolder(const BundlePath& path, const BundleOverrides& overrides,
    BundleUse use)
{
    if (auto failure = ReadBundleFile(path, mBundle, mWarnings)) {
        return failure;
    }
    mBundle.asOf = overrides.asOf;
    mBundle.now = !overrides.asOf.empty() ? overrides.asOf : overrides.now.empty() ? mBundle.now : overrides.now;
    SetZone(overrides.tz);
    mBundle.ruleFileDir = overrides.rules.empty() ? mBundle.ruleFileDir : overrides.rules;
    if (auto failure = SetMoment()) {
        return failure;
    }
    std::error_code error;
    mFolder = fs::canonical(path.absolute, error).generic_string();
    if (overrides.isLive) {
        mBundle.settings[Settings::PROGRAM_DATA_DIR] = "";
        mBundle.settings[Settings::DEVICE_ROOT_DIR] = "";
    }
    if (auto failure = CheckBounds(path, overrides)) {
        return failure;
    }
    mSettings = mBundle.settings;
    if (use == BundleUse::RUN) {
        if (auto failure = LayOverlay(mFolder, mScratch, mSettings, mNames)) {
            failure->message = mNames.Shown(failure->message);
            return failure;
        }
    }
    if (const std::error_code reason = mDirectory.Enter(path.absolute)) {
        return Failure{FailureCode::NO_BUNDLE, path.given + ": can't be entered: " + reason.message()};
    }
    mPathsShown.Show(mNames);
    mTimeLimit = overrides.timeLimit;
    SetSettings();
    return std::nullopt;
}

// A zip comes from elsewhere and must not choose files of this machine; who keeps a folder may share rules among several.
std::optional<Failure> BundleSession::CheckBounds(const BundlePath& path, const BundleOverrides& overrides)
{
    const auto outside = overrides.isLive ? std::nullopt : PlaceOutside(mFolder, mBundle);
    if (outside) {
        return Failure{FailureCode::OUTSIDE_BUNDLE, path.given + ": " + *outside + " is a link that leads out of the bundle"};
    }
    if (!overrides.rules.empty() || !AreRulesOutside(mFolder, mBundle)) {
        return std::nullopt;
    }
    const std::string message = "the rules in \"" + mBundle.ruleFileDir + "\" are not inside the bundle";
    if (mIsZip) {
        return Failure{FailureCode::OUTSIDE_BUNDLE, path.given + ": " + message + "; --rules takes those of another folder"};
    }
    mWarnings.push_back({WarningCode::RULES_OUTSIDE, message});
    return std::nullopt;
}

std::optional<Failure> BundleSession::SetMoment()
{
    if (mBundle.now.empty()) {
        return std::nullopt;
    }
    mMoment = ParseMoment(mBundle.now);
    if (!mMoment || !FormatMoment(*mMoment)) {
        return Failure{FailureCode::BAD_BUNDLE, "the moment \"" + mBundle.now + "\" does not exist in the time zone"
            + (mBundle.tz.empty() ? "" : " " + mBundle.tz)};
    }
    return std::nullopt;
}

std::optional<Failure> BundleSession::TakeRules(const std::string& folder)
{
    mBundle.ruleFileDir = folder;
    const auto root = mBundle.settings.find(Settings::PROGRAM_DATA_DIR);
    auto failure = LayDatabasesAnew(mFolder, mScratch, root == mBundle.settings.end() ? "" : root->second);
    if (failure) {
        failure->message = mNames.Shown(failure->message);
    }
    return failure;
}

void BundleSession::HoldMoment()
{
    mMoment = Now();
    SetSettings();
}

void BundleSession::SetSettings()
{
    auto settings = mSettings;
    settings[Settings::CURRENT_TIME] = mMoment ? std::to_string(*mMoment) : "";
    settings[Settings::AS_OF] = mBundle.asOf.empty() ? "" : settings[Settings::CURRENT_TIME];
    settings[Settings::TIME_LIMIT] = mTimeLimit > 0 ? std::to_string(mTimeLimit) : "";
    settings[Settings::CAUSE_LIMIT] = std::to_string(MOST_ROOT_CAUSES);
    // The databases that a detection writes are removed with the scratch folder.
    settings[Settings::TEMPORARY_STORES] = mScratch.IsMade() ? "1" : "";
    mSettingsInForce.Set(settings);
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
    return DataPath(mFolder, mSettings, file);
}

std::string BundleSession::OwnDataPath(const std::string& file) const
{
    return DataPath(mFolder, mBundle.settings, file);
}

} // namespace diagnosis
