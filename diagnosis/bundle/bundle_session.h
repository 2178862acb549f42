#ifndef ARBORIST_DIAGNOSIS_BUNDLE_BUNDLE_SESSION_H
#define ARBORIST_DIAGNOSIS_BUNDLE_BUNDLE_SESSION_H

#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/bundle/bundle.h"
#include "diagnosis/problem.h"
#include "diagnosis/process/library_log.h"
#include "diagnosis/process/process_state.h"
#include "diagnosis/scratch/scratch.h"
#include "diagnosis/text/path_names.h"

struct DetectInfo;

namespace diagnosis {

/// What the command line puts in the place of a bundle's own words. Empty texts leave them.
struct BundleOverrides {
    std::string now;
    std::string tz;
    /// Absolute path of the folder of another rule set.
    std::string rules;
    /// Diagnose this machine with the bundle's rules and device record: its roots in place of those in the bundle.
    bool isLive = false;
};

/// What a bundle is entered for. RUN leaves it untouched: all that the library writes goes to a scratch folder.
/// RECORD writes repair records into it.
enum class BundleUse { RUN, RECORD };

/// Stands in a bundle while it lives: the bundle is the working directory, and its time zone, its moment and its
/// settings are in force for the whole process. One at a time; everything is as before at the end.
class BundleSession {
public:
    BundleSession() = default;
    BundleSession(const BundleSession&) = delete;
    BundleSession& operator=(const BundleSession&) = delete;

    /// Reads bundle.json of a bundle, which is a folder or a zip, and enters it. Otherwise answers why not.
    std::optional<Failure> Enter(const BundlePath& path, const BundleOverrides& overrides,
        BundleUse use = BundleUse::RUN);

    /// What the bundle and the command line say; its settings are the bundle's own.
    const Bundle& GetBundle() const { return mBundle; }
    /// Absolute path of the bundle's folder; of a zip, where it was unpacked.
    const std::string& GetFolder() const { return mFolder; }
    bool IsZip() const { return mIsZip; }
    /// `text` with the paths of the scratch folder as the bundle names them; all that is shown goes through it.
    std::string Shown(const std::string& text) const { return mNames.Shown(text); }
    /// The run's own folder, which is no part of the device.
    const std::string& ScratchPath() const { return mScratch.Path(); }
    /// Of the reading of bundle.json and of the zip.
    const std::vector<Warning>& GetWarnings() const { return mWarnings; }
    /// The moment that is in force, seconds since the epoch.
    std::int64_t Now() const { return mMoment ? *mMoment : std::time(nullptr); }
    /// The bundle as the library's input, without a code rule runner.
    std::shared_ptr<DetectInfo> MakeDetectInfo() const;
    /// Absolute path of a file below the fixed root ("Comms/Lumbra/...") as the library sees it.
    std::string ProgramDataPath(const std::string& file) const;
    /// The same in the bundle itself.
    std::string OwnDataPath(const std::string& file) const;

private:
    std::optional<Failure> Unpack(const BundlePath& path);
    std::optional<Failure> EnterFolder(const BundlePath& path, const BundleOverrides& overrides, BundleUse use);
    std::optional<Failure> CheckRoots(const BundlePath& path) const;
    std::optional<Failure> SetMoment();
    void SetSettings();

    Scratch mScratch;
    PathNames mNames;
    bool mIsZip = false;
    Bundle mBundle;
    std::map<std::string, std::string> mSettings;
    std::vector<Warning> mWarnings;
    std::string mFolder;
    std::optional<std::int64_t> mMoment;
    std::optional<TimeZoneGuard> mZone;
    WorkingDirectory mDirectory;
    PathsShown mPathsShown;
    SettingsInForce mSettingsInForce;
};

} // namespace diagnosis

#endif
