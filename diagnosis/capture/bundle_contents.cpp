#include "diagnosis/capture/bundle_contents.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <limits>

#include "arborist/frame/arborist.h"
#include "arborist/frame/rule_set_summary.h"
#include "diagnosis/bundle/bundle_overlay.h"
#include "diagnosis/bundle/repair_records.h"
#include "diagnosis/bundle/rule_paths.h"
#include "diagnosis/detection/detection.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

using State = BundleFinding::State;

bool HasBadPattern(const Evidence::RuleSet& ruleSet)
{
    return std::any_of(ruleSet.databases.begin(), ruleSet.databases.end(),
        [](const Evidence::ExternalDatabase& database) { return !IsFileNamePattern(database.pattern); });
}

// Loads the rule set without running any rule. What a detection would make of the pattern of a file name that is none
// depends on the files of the device, and is tried.
void Load(const std::shared_ptr<DetectInfo>& info, const DetectionRecorder& recorder, Arborist& engine)
{
    engine.IsRunRule("any code"); // any query loads the rule set
    if (HasBadPattern(recorder.GetRuleSet())) {
        info->mDetectScene = std::numeric_limits<std::int32_t>::min(); // no rule names it
        engine.StartDetection();
    }
}

void LoadRules(const BundleSession& session, BundleLook look, BundleContents& contents)
{
    const auto recorder = std::make_shared<DetectionRecorder>();
    try {
        const auto info = session.MakeDetectInfo();
        Arborist engine(info);
        engine.SetObserver(recorder);
        Load(info, *recorder, engine);
        contents.ruleSetFailure = RuleSetFailure(recorder->GetRuleSet(), session.GetBundle());
    } catch (...) {
        contents.ruleSetFailure = FailureInFlight(recorder->GetRuleSet());
    }
    contents.ruleFiles = recorder->GetRuleSet().files;
    if (look == BundleLook::FOR_MISTAKES) {
        WarningList mistakes = recorder->GetWarnings().List();
        AddRuleSetWarnings(session.GetBundle(), contents.ruleSetFailure, mistakes);
        contents.ruleSetWarnings = mistakes.Told();
    }
}

std::vector<NamedPath> LookFor(const BundleSession& session, const std::vector<std::string>& paths)
{
    const auto& settings = session.GetBundle().settings;
    const auto root = settings.find(Settings::DEVICE_ROOT_DIR);
    std::vector<NamedPath> found;
    for (const std::string& path : paths) {
        std::error_code error;
        const std::string place = PathOnDevice(root == settings.end() ? "" : root->second, path);
        found.push_back({path, fs::exists(fs::path(session.GetFolder()) / place, error)});
    }
    return found;
}

void LookInto(const BundleSession& session, BundleLook look, BundleContents& contents)
{
    contents.isZip = session.IsZip();
    contents.description = session.GetBundle();
    contents.now = session.Now();
    LoadRules(session, look, contents);
    const std::string log = session.ProgramDataPath(EVENT_LOG);
    std::error_code error;
    contents.hasLog = fs::exists(log, error);
    if (contents.hasLog) {
        contents.logFailure = InspectEventLog(log, contents.log);
    }
    std::vector<RepairRecord> records;
    contents.repairFailure = ReadRepairRecords(session.ProgramDataPath(REPAIR_RECORDS), records);
    contents.repairRecords = records.size();
    for (auto* failure : {&contents.ruleSetFailure, &contents.logFailure, &contents.repairFailure}) {
        if (*failure) {
            (*failure)->message = session.Shown((*failure)->message);
        }
    }
    for (Warning& warning : contents.ruleSetWarnings) {
        warning.message = session.Shown(warning.message);
        warning.file = session.Shown(warning.file);
    }
    const RuleSetSummary ruleSet = SummariseRuleSet(session.GetBundle());
    contents.nodeFiles = LookFor(session, ruleSet.nodeFiles);
    contents.searchedFolders = LookFor(session, ruleSet.searchedFolders);
}

BundleFinding Finding(const std::string& sound, const std::optional<Failure>& failure)
{
    return failure ? BundleFinding{State::BROKEN, CodeWord(failure->code), {failure->message}, failure->status}
                   : BundleFinding{State::SOUND, "", {sound}};
}

BundleFinding Missing(const std::string& code, const std::string& message)
{
    return {State::MISSING, code, {message}, ExitStatus::SUCCESS, ExitStatus::INPUT};
}

void CheckPaths(const std::vector<NamedPath>& paths, const std::string& kind, std::vector<BundleFinding>& findings)
{
    std::size_t there = 0;
    for (const NamedPath& path : paths) {
        there += path.isThere ? 1U : 0U;
        if (!path.isThere) {
            findings.push_back(Missing("missing_path", kind + " " + path.path + " is not there"));
        }
    }
    findings.push_back({State::SOUND, "", {kind + ": " + std::to_string(there) + " of " + std::to_string(paths.size())
        + " are there"}});
}

} // namespace

std::size_t RuleSetCount(const BundleContents& contents, Evidence::RuleSetFileType type)
{
    for (const Evidence::RuleSetFile& file : contents.ruleFiles) {
        if (file.type == type) {
            return file.count;
        }
    }
    return 0;
}

BundleContents LookIntoBundle(const BundlePath& bundle, const BundleOverrides& overrides, BundleLook look)
{
    BundleContents contents;
    contents.bundle = bundle.given;
    try {
        BundleSession session;
        contents.failure = session.Enter(bundle, overrides);
        contents.warnings = session.GetWarnings();
        if (!contents.failure) {
            LookInto(session, look, contents);
        }
    } catch (...) {
        contents.failure = FailureInFlight({});
    }
    return contents;
}

const char* StateWord(State state)
{
    return state == State::SOUND ? "ok"
        : state == State::DOUBTFUL ? "warning"
        : state == State::MISSING  ? "missing"
                                   : "broken";
}

std::vector<BundleFinding> CheckBundle(const BundleContents& contents)
{
    std::vector<BundleFinding> findings = {Finding("bundle.json can be used", contents.failure)};
    if (contents.failure) {
        return findings;
    }
    for (const Warning& warning : contents.warnings) {
        findings.push_back(Missing(CodeWord(warning.code), warning.message));
    }
    findings.push_back(Finding("the rule set can be used", contents.ruleSetFailure));
    for (const Warning& warning : contents.ruleSetWarnings) {
        findings.push_back(
            {State::DOUBTFUL, CodeWord(warning.code), static_cast<const Remark&>(warning), ExitStatus::SUCCESS,
                StrictStatus(warning.code)});
    }
    if (contents.hasLog) {
        findings.push_back(Finding("the event log can be read", contents.logFailure));
    } else {
        findings.push_back(Missing("missing_log", "the event log is not there"));
    }
    findings.push_back(Finding("the repair records can be read", contents.repairFailure));
    CheckPaths(contents.nodeFiles, "node file", findings);
    CheckPaths(contents.searchedFolders, "searched folder", findings);
    return findings;
}

} // namespace diagnosis
