#include "diagnosis/capture/bundle_contents.h"

#include <filesystem>

#include "arborist/frame/arborist.h"
#include "diagnosis/bundle/bundle_overlay.h"
#include "diagnosis/bundle/repair_records.h"
#include "diagnosis/bundle/rule_paths.h"
#include "diagnosis/detection/detection.h"

namespace diagnosis {

namespace fs = std::filesystem;

namespace {

using State = BundleFinding::State;

void LoadRules(const BundleSession& session, BundleContents& contents)
{
    const auto recorder = std::make_shared<DetectionRecorder>(false);
    try {
        Arborist engine(session.MakeDetectInfo());
        engine.SetObserver(recorder);
        // Any query loads the rule set; this one runs no rule.
        engine.IsRunRule("any code");
        contents.ruleSetFailure = RuleSetFailure(recorder->GetRuleSet(), session.GetBundle());
    } catch (...) {
        contents.ruleSetFailure = FailureInFlight(recorder->GetRuleSet());
    }
    contents.ruleFiles = recorder->GetRuleSet().files;
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

void LookInto(const BundleSession& session, BundleContents& contents)
{
    contents.isZip = session.IsZip();
    contents.description = session.GetBundle();
    contents.now = session.Now();
    LoadRules(session, contents);
    const std::string log = session.ProgramDataPath(EVENT_LOG);
    std::error_code error;
    contents.hasLog = fs::exists(log, error);
    if (contents.hasLog) {
        contents.logFailure = InspectEventLog(log, contents.log);
    }
    std::vector<RepairRecord> records;
    contents.repairFailure = ReadRepairRecords(session.ProgramDataPath(REPAIR_RECORDS), records);
    contents.repairRecords = records.size();
    for (auto* failure : {&contents.logFailure, &contents.repairFailure}) {
        if (*failure) {
            (*failure)->message = session.Shown((*failure)->message);
        }
    }
    const RuleSetSummary ruleSet = SummariseRuleSet(session.GetBundle());
    contents.nodeFiles = LookFor(session, ruleSet.nodeFiles);
    contents.searchedFolders = LookFor(session, ruleSet.searchedFolders);
}

BundleFinding Finding(const std::string& sound, const std::optional<Failure>& failure)
{
    return failure ? BundleFinding{State::BROKEN, failure->code, failure->message, failure->status}
                   : BundleFinding{State::SOUND, "", sound};
}

void CheckPaths(const std::vector<NamedPath>& paths, const std::string& kind, std::vector<BundleFinding>& findings)
{
    std::size_t there = 0;
    for (const NamedPath& path : paths) {
        there += path.isThere ? 1U : 0U;
        if (!path.isThere) {
            findings.push_back({State::MISSING, "missing_path", kind + " " + path.path + " is not there"});
        }
    }
    findings.push_back({State::SOUND, "", kind + ": " + std::to_string(there) + " of " + std::to_string(paths.size())
        + " are there"});
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

BundleContents LookIntoBundle(const BundlePath& bundle, const BundleOverrides& overrides)
{
    BundleContents contents;
    contents.bundle = bundle.given;
    try {
        BundleSession session;
        contents.failure = session.Enter(bundle, overrides);
        contents.warnings = session.GetWarnings();
        if (!contents.failure) {
            LookInto(session, contents);
        }
    } catch (...) {
        contents.failure = FailureInFlight({});
    }
    return contents;
}

const char* StateWord(State state)
{
    return state == State::SOUND ? "ok" : state == State::MISSING ? "missing" : "broken";
}

std::vector<BundleFinding> CheckBundle(const BundleContents& contents)
{
    std::vector<BundleFinding> findings = {Finding("bundle.json can be used", contents.failure)};
    if (contents.failure) {
        return findings;
    }
    for (const Warning& warning : contents.warnings) {
        findings.push_back({State::MISSING, warning.code, warning.message});
    }
    findings.push_back(Finding("the rule set can be used", contents.ruleSetFailure));
    if (contents.hasLog) {
        findings.push_back(Finding("the event log can be read", contents.logFailure));
    } else {
        findings.push_back({State::MISSING, "missing_log", "the event log is not there"});
    }
    findings.push_back(Finding("the repair records can be read", contents.repairFailure));
    CheckPaths(contents.nodeFiles, "node file", findings);
    CheckPaths(contents.searchedFolders, "searched folder", findings);
    return findings;
}

} // namespace diagnosis
