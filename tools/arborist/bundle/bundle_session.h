#ifndef ARBORIST_TOOLS_BUNDLE_BUNDLE_SESSION_H
#define ARBORIST_TOOLS_BUNDLE_BUNDLE_SESSION_H

#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/arborist/bundle/bundle.h"
#include "tools/arborist/bundle/moment.h"
#include "tools/arborist/problem.h"

struct DetectInfo;

namespace command {

/// What the command line puts in the place of a bundle's own words. Empty texts leave them.
struct BundleOverrides {
    std::string now;
    std::string tz;
};

/// Stands in a bundle while it lives: the bundle is the working directory, and its time zone, its moment and its
/// settings are in force for the whole process. One at a time; everything is as before at the end.
class BundleSession {
public:
    BundleSession() = default;
    ~BundleSession();
    BundleSession(const BundleSession&) = delete;
    BundleSession& operator=(const BundleSession&) = delete;

    /// Reads bundle.json of a bundle and enters it. Otherwise answers why not.
    std::optional<Failure> Enter(const BundlePath& path, const BundleOverrides& overrides);

    const Bundle& GetBundle() const { return mBundle; }
    /// Of the reading of bundle.json.
    const std::vector<Warning>& GetWarnings() const { return mWarnings; }
    /// The moment that is in force, seconds since the epoch.
    std::int64_t Now() const { return mMoment ? *mMoment : std::time(nullptr); }
    /// The bundle as the library's input, without a code rule runner.
    std::shared_ptr<DetectInfo> MakeDetectInfo() const;
    /// Absolute path of a file below the fixed root ("Comms/Lumbra/...").
    std::string ProgramDataPath(const std::string& file) const;

private:
    std::optional<Failure> SetMoment();
    void SetSettings() const;

    Bundle mBundle;
    std::vector<Warning> mWarnings;
    std::string mFolder;
    std::string mFolderBefore;
    std::unique_ptr<TimeZoneGuard> mZone;
    std::optional<std::int64_t> mMoment;
};

} // namespace command

#endif
