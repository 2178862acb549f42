#ifndef ARBORIST_DIAGNOSIS_BUNDLE_BUNDLE_SESSION_H
#define ARBORIST_DIAGNOSIS_BUNDLE_BUNDLE_SESSION_H

#include <cstdint>
#include <ctime>
#include <functional>
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

/// The root causes of one tree that a detection looks for, those of the first cut sets: a small bundle may have a tree with
/// more of them than any memory takes.
inline constexpr int MOST_ROOT_CAUSES = 100'000;

/// Values of the command line that replace those of a bundle; an empty text replaces nothing.
struct BundleOverrides {
    std::string now;
    /// Hides what is later than this moment, and takes it for now.
    std::string asOf;
    std::string tz;
    /// Absolute path of the folder of another rule set.
    std::string rules;
    /// Diagnose this machine with the bundle's rules and device record: its roots in place of those in the bundle.
    bool isLive = false;
    /// Seconds that a detection may take; 0 for no limit.
    double timeLimit = 0;
    /// Asked while a zip is unpacked: see UnpackZip. May be null.
    std::function<bool()> isToEnd = {};
};

/// The purpose of entering a bundle. RUN doesn't change it: the library writes into a scratch folder. RECORD writes
/// repair records into it.
enum class BundleUse { RUN, RECORD };

/// As long as it exists, the bundle is the working directory, and its time zone, current time and settings are in force
/// for the whole process. One at a time; the end restores everything.
class BundleSession {
public:
    BundleSession() = default;
    BundleSession(const BundleSession&) = delete;
    BundleSession& operator=(const BundleSession&) = delete;

    /// Reads the bundle.json of a bundle, a folder or a zip, and enters it. Returns the failure, if any.
    std::optional<Failure> Enter(const BundlePath& path, const BundleOverrides& overrides,
        BundleUse use = BundleUse::RUN);

    /// For another detection of the same bundle: takes the rules of `folder`, an absolute path, in place of those so
    /// far, and puts the library's own databases back to what the bundle has. The bundle must be entered to RUN.
    std::optional<Failure> TakeRules(const std::string& folder);
    /// Makes the moment of entering the current time of all detections, if the bundle has none of its own.
    void HoldMoment();

    /// The bundle with the values of the command line; its settings are the bundle's own.
    const Bundle& GetBundle() const { return mBundle; }
    /// Absolute path of the bundle's folder; for a zip, of the folder into which it was unpacked.
    const std::string& GetFolder() const { return mFolder; }
    bool IsZip() const { return mIsZip; }
    /// `text` with paths in the scratch folder replaced by those of the bundle. Pass everything through it that is
    /// shown.
    std::string Shown(const std::string& text) const { return mNames.Shown(text); }
    /// The scratch folder, which is no part of the device.
    const std::string& ScratchPath() const { return mScratch.Path(); }
    /// Warnings from reading bundle.json and the zip.
    const std::vector<Warning>& GetWarnings() const { return mWarnings; }
    /// The current time of the bundle in seconds since the epoch.
    std::int64_t Now() const { return mMoment ? *mMoment : std::time(nullptr); }
    /// The moment after which nothing counts; nothing without one.
    std::optional<std::int64_t> AsOf() const { return mBundle.asOf.empty() ? std::nullopt : mMoment; }
    /// The library's input for the bundle, without a code rule runner.
    std::shared_ptr<DetectInfo> MakeDetectInfo() const;
    /// Absolute path at which the library finds a file below the fixed root ("Comms/Lumbra/...").
    std::string ProgramDataPath(const std::string& file) const;
    /// The path of the same file in the bundle itself.
    std::string OwnDataPath(const std::string& file) const;

private:
    std::optional<Failure> Unpack(const BundlePath& path, const BundleOverrides& overrides);
    std::optional<Failure> EnterFolder(const BundlePath& path, const BundleOverrides& overrides, BundleUse use);
    std::optional<Failure> CheckBounds(const BundlePath& path, const BundleOverrides& overrides);
    void SetZone(const std::string& zone);
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
    double mTimeLimit = 0;
    std::optional<TimeZoneGuard> mZone;
    WorkingDirectory mDirectory;
    PathsShown mPathsShown;
    SettingsInForce mSettingsInForce;
};

} // namespace diagnosis

#endif
