#include "diagnosis/capture/bundle_capture.h"

#include <filesystem>
#include <fstream>

#include <strings.h>

#include "arborist/frame/arborist.h"
#include "diagnosis/archive/zip_writer.h"
#include "diagnosis/bundle/bundle_file.h"
#include "diagnosis/bundle/bundle_overlay.h"
#include "diagnosis/bundle/repair_records.h"
#include "diagnosis/bundle/moment.h"
#include "diagnosis/bundle/rule_paths.h"
#include "diagnosis/capture/capture_redaction.h"
#include "diagnosis/capture/captured_files.h"
#include "diagnosis/detection/detection.h"
#include "diagnosis/evidence/detection_recorder.h"
#include "diagnosis/log_db/slice_log.h"
#include "diagnosis/scratch/new_file.h"
#include "diagnosis/sqlite/database_files.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t SECONDS_OF_A_DAY = 86400;

using Problem = std::optional<Failure>;

std::string InsideOr(const std::string& path, const char* otherwise)
{
    return Inside(path).value_or(otherwise);
}

/// One capture of a bundle that is entered.
class Capture {
public:
    Capture(const BundleSession& session, const CaptureOptions& options, const std::string& folder)
        : mSession(session), mOptions(options), mOwn(session.GetBundle()),
          mAside(fs::path(folder).parent_path().generic_string()), mFiles(folder, ZipLimits{}, {mAside, session.ScratchPath()}),
          mRedaction(options.redaction.get(), mFiles)
    {
    }

    Problem Run()
    {
        if (auto failure = LookAtRules()) {
            return failure;
        }
        MakeRelative();
        for (const auto step : {&Capture::AddRules, &Capture::AddNodeFiles, &Capture::AddFolders,
                 &Capture::AddDatabases, &Capture::RedactNodeFiles, &Capture::AddDescription}) {
            if (auto failure = (this->*step)()) {
                return failure;
            }
        }
        mRedacted = mRedaction.Finish(mOwn, mRuleSet);
        return std::nullopt;
    }

    void Tell(CaptureReport& report) const
    {
        for (const auto* warnings : {&mWarnings, &mFiles.GetWarnings()}) {
            report.warnings.insert(report.warnings.end(), warnings->begin(), warnings->end());
        }
        report.files = mFiles.Files();
        report.bytes = mFiles.Bytes();
        report.names = mFiles.GetNames();
        report.redaction = mRedacted;
    }

private:
    // Runs a detection, which shows whether the rules can be used and runs the code rules of this device.
    Problem LookAtRules()
    {
        const auto recorder = std::make_shared<DetectionRecorder>();
        const auto answers = std::make_shared<CodeAnswers>(mOwn.codeAnswers, mOptions.codeRunner);
        const auto info = mSession.MakeDetectInfo();
        info->mCodeRuleRunner = answers;
        try {
            Arborist engine(info);
            engine.SetObserver(recorder);
            mOptions.codeRunner.path.empty() ? static_cast<void>(engine.IsRunRule("any code"))
                                             : static_cast<void>(engine.StartDetection());
        } catch (...) {
            return FailureInFlight(recorder->GetRuleSet());
        }
        mCaptured = mOwn;
        if (!mOptions.codeRunner.path.empty()) {
            mCaptured.codeAnswers.insert(answers->GetAnswers().begin(), answers->GetAnswers().end());
            mWarnings = answers->GetWarnings();
        }
        mRuleSet = SummariseRuleSet(mOwn);
        return RuleSetFailure(recorder->GetRuleSet(), mOwn);
    }

    const std::string& OwnSetting(const char* key) const
    {
        static const std::string NONE;
        const auto setting = mOwn.settings.find(key);
        return setting == mOwn.settings.end() ? NONE : setting->second;
    }

    void MakeRelative()
    {
        mCaptured.ruleFileDir = InsideOr(mOwn.ruleFileDir, "rules");
        auto& settings = mCaptured.settings;
        settings[Settings::PROGRAM_DATA_DIR] = InsideOr(OwnSetting(Settings::PROGRAM_DATA_DIR), "programdata");
        for (const auto& [key, folder] : {std::pair(Settings::APP_DATABASE_DIR, "databases"),
                 std::pair(Settings::APP_FILE_DIR, "appfiles")}) {
            // Keep an empty setting: it has a meaning of its own.
            settings[key] = OwnSetting(key).empty() ? "" : InsideOr(OwnSetting(key), folder);
        }
        const std::string& root = OwnSetting(Settings::DEVICE_ROOT_DIR);
        settings[Settings::DEVICE_ROOT_DIR] = InsideOr(root, "device");
    }

    std::string InBundle(const std::string& path) const { return (fs::path(mSession.GetFolder()) / path).generic_string(); }

    // SourceOf is where the device has a rule's path; RootOf is the folder that its links must not leave, empty for
    // this machine.
    std::string SourceOf(const std::string& path) const
    {
        return InBundle(PathOnDevice(OwnSetting(Settings::DEVICE_ROOT_DIR), path));
    }
    std::string RootOf(const std::string& path) const
    {
        const std::string& root = OwnSetting(Settings::DEVICE_ROOT_DIR);
        std::error_code error;
        return root.empty() ? "" : fs::canonical(InBundle(path.front() == '/' ? root : ""), error).generic_string();
    }

    Problem AddRules()
    {
        for (const auto& [source, target] : {std::pair(TreeFilePath(mOwn), TreeFilePath(mCaptured)),
                 std::pair(RuleFilePath(mOwn), RuleFilePath(mCaptured))}) {
            if (auto failure = mFiles.AddFile(InBundle(source), target)) {
                return failure;
            }
        }
        return std::nullopt;
    }

    // The name of a rule's path in the capture; nothing, with a warning, for one that would be outside.
    std::optional<std::string> NameOf(const std::string& path)
    {
        const auto name = Inside(NameOnDevice(mCaptured.settings[Settings::DEVICE_ROOT_DIR], path));
        if (!name) {
            mWarnings.push_back({WarningCode::NOT_CAPTURED, path + ": leads out of the bundle, and is left out"});
        }
        return name;
    }

    Problem AddNodeFiles()
    {
        for (const std::string& path : mRuleSet.nodeFiles) {
            const auto name = NameOf(path);
            auto failure = name ? mFiles.AddNodeFile(SourceOf(path), *name) : std::nullopt;
            if (failure) {
                return failure;
            }
        }
        return std::nullopt;
    }

    Problem AddFolders()
    {
        for (const std::string& path : mRuleSet.searchedFolders) {
            const auto name = NameOf(path);
            auto failure = name ? mFiles.AddFolder(SourceOf(path), *name, RootOf(path)) : std::nullopt;
            if (failure) {
                return failure;
            }
        }
        return std::nullopt;
    }

    Problem AddDatabases()
    {
        for (const char* file : {EVENT_LOG, DERIVED_DATABASE, REPAIR_RECORDS}) {
            const std::string source = mSession.OwnDataPath(file);
            const std::string name = mCaptured.settings[Settings::PROGRAM_DATA_DIR] + "/" + file;
            std::error_code error;
            if (!fs::is_regular_file(source, error)) {
                continue;
            }
            if (file == DERIVED_DATABASE && mRedaction.TouchesLog()) {
                mRedaction.LeaveDerivedDatabaseOut(source);
                continue;
            }
            auto failure = file == EVENT_LOG ? AddLog(source, mFiles.Path(name))
                                             : CopyDatabase(source, mFiles.Path(name));
            if (file == REPAIR_RECORDS && !failure) {
                ForgetLaterRepairs(mFiles.Path(name));
            }
            failure = failure ? failure : mFiles.Count(name);
            if (failure) {
                return failure;
            }
        }
        return std::nullopt;
    }

    Problem AddLog(const std::string& source, const std::string& target)
    {
        if (!mRedaction.TouchesLog()) {
            return AddPlainLog(source, target);
        }
        const std::string plain = (fs::path(mAside) / "plain_log.db").generic_string();
        auto failure = AddPlainLog(source, plain);
        failure = failure ? failure : mRedaction.WriteLog(plain, target);
        if (failure && failure->message.rfind(plain, 0) == 0) {
            failure->message.replace(0, plain.size(), source);
        }
        return failure;
    }

    Problem RedactNodeFiles()
    {
        return mRedaction.ReplaceNodeFiles(mRuleSet.nodeFiles, [this](const std::string& path) {
            return Inside(NameOnDevice(mCaptured.settings[Settings::DEVICE_ROOT_DIR], path));
        });
    }

    Problem AddPlainLog(const std::string& source, const std::string& target) const
    {
        LogSlice slice;
        slice.asOf = mSession.AsOf();
        if (mOptions.isWindowOnly && mRuleSet.longestWindow) {
            slice.from = mSession.Now() - *mRuleSet.longestWindow * SECONDS_OF_A_DAY;
            slice.keepsLastBefore = true;
        }
        return slice.from || slice.asOf ? SliceEventLog(source, target, slice) : CopyDatabase(source, target);
    }

    // As of a moment, the bundle is the device as it was then.
    void ForgetLaterRepairs(const std::string& path)
    {
        if (!mSession.AsOf()) {
            return;
        }
        for (const RepairRecord& record : DeleteLaterRepairs(path, *mSession.AsOf())) {
            mWarnings.push_back({WarningCode::REPAIR_HISTORY_LOST, "the repair \"" + record.id + "\" was recorded later, at "
                + record.date + ": it is left out, and an earlier date of it is not kept"});
        }
    }

    Problem AddDescription()
    {
        mRedaction.ReplaceKeys(mCaptured);
        mCaptured.now = MomentText(mSession.Now());
        mCaptured.tz = mCaptured.tz.empty() ? ZoneOfThisMachine() : mCaptured.tz;
        std::ofstream file(mFiles.Path("bundle.json"), std::ios::binary);
        file << BundleText(mCaptured);
        return file.flush() ? mFiles.Count("bundle.json") : Failure{FailureCode::NOT_PACKED, "bundle.json: can't be written"};
    }

    const BundleSession& mSession;
    const CaptureOptions& mOptions;
    const Bundle& mOwn;
    Bundle mCaptured;
    RuleSetSummary mRuleSet;
    // A folder for what is no part of the capture, around it.
    std::string mAside;
    CapturedFiles mFiles;
    CaptureRedaction mRedaction;
    std::optional<RedactionReport> mRedacted;
    std::vector<Warning> mWarnings;
};

/// The target of a capture: its path as given, and its absolute path.
struct Target {
    std::string given;
    std::string place;
    bool isZip;
};

Target MakeTarget(const std::string& given)
{
    std::error_code error;
    fs::path place = fs::absolute(given, error).lexically_normal();
    place = place.has_filename() ? place : place.parent_path(); // "folder/"
    return {given, place.generic_string(), strcasecmp(place.extension().string().c_str(), ".zip") == 0};
}

Failure NotPacked(const Target& target, const std::string& reason)
{
    return {FailureCode::NOT_PACKED, target.given + ": " + reason};
}

Problem PutZip(const std::string& folder, const Target& target)
{
    NewFile file;
    auto problem = file.Make(target.place);
    if (!problem) {
        if (auto failure = PackZip(folder, file.TemporaryPath(), target.given)) {
            return failure;
        }
        problem = file.PutInPlace();
    }
    return problem ? std::optional(NotPacked(target, *problem)) : std::nullopt;
}

Problem PutFolder(const std::string& folder, const Target& target)
{
    std::error_code error;
    fs::rename(folder, target.place, error);
    return error ? std::optional(NotPacked(target, "can't be put in place: " + error.message())) : std::nullopt;
}

Problem MakeStage(Scratch& scratch, const BundlePath& bundle, const Target& target)
{
    std::error_code error;
    if (target.isZip) {
        return IsOneFile(bundle.absolute, target.place) ? NotPacked(target, "is the bundle that is read")
                                                        : scratch.Make();
    }
    if (fs::exists(fs::symlink_status(target.place, error))) {
        return NotPacked(target, "exists already");
    }
    // Beside the target, so that it can be moved there in one step.
    const auto reason = scratch.MakeIn(fs::path(target.place).parent_path().generic_string());
    return reason ? std::optional(NotPacked(target, "can't be written: " + *reason)) : std::nullopt;
}

Problem CaptureInto(const std::string& folder, const BundlePath& bundle, const CaptureOptions& options,
    CaptureReport& report)
{
    BundleSession session;
    auto failure = session.Enter(bundle, options.overrides);
    report.warnings = session.GetWarnings();
    if (failure) {
        return failure;
    }
    Capture capture(session, options, folder);
    failure = capture.Run();
    capture.Tell(report);
    for (Warning& warning : report.warnings) {
        warning.message = session.Shown(warning.message);
    }
    if (failure) {
        failure->message = session.Shown(failure->message);
    }
    return failure;
}

} // namespace

CaptureReport CaptureBundle(const BundlePath& bundle, const std::string& given, const CaptureOptions& options)
{
    CaptureReport report;
    try {
        std::error_code error;
        const Target target = MakeTarget(given);
        Scratch scratch;
        report.failure = MakeStage(scratch, bundle, target);
        const std::string stage = report.failure ? "" : scratch.Path("bundle");
        fs::create_directory(stage, error);
        report.failure = report.failure ? report.failure : CaptureInto(stage, bundle, options, report);
        if (!report.failure) {
            report.failure = target.isZip ? PutZip(stage, target) : PutFolder(stage, target);
        }
    } catch (...) {
        report.failure = FailureInFlight({});
    }
    return report;
}

} // namespace diagnosis
