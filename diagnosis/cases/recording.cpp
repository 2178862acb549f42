#include "diagnosis/cases/recording.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "arborist/frame/rule_set_summary.h"
#include "diagnosis/bundle/bundle_overlay.h"
#include "diagnosis/bundle/moment.h"
#include "diagnosis/bundle/repair_records.h"
#include "diagnosis/bundle/rule_paths.h"
#include "diagnosis/cases/asked_rows.h"
#include "diagnosis/cases/case_file.h"
#include "diagnosis/cases/case_runner.h"
#include "diagnosis/cases/case_text.h"
#include "diagnosis/cases/difference_text.h"
#include "diagnosis/cases/recorded_databases.h"
#include "diagnosis/detection/detection.h"
#include "diagnosis/log_db/event_log.h"
#include "diagnosis/text/json_writer.h"
#include "diagnosis/text/printable.h"

namespace diagnosis::cases {

namespace fs = std::filesystem;

namespace {

using Problem = std::optional<Failure>;
using JsonByKey = std::map<std::string, std::string>;

Failure Refused(const std::string& reason)
{
    return {FailureCode::NOT_RECORDED, reason};
}

// A case is JSON: its texts must be valid UTF-8 without NUL characters.
bool IsPlainText(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t length = text.front() == '\0' ? 0 : Utf8Length(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::string NameOf(const std::string& bundle)
{
    const fs::path path = (fs::path(bundle) / ".").lexically_normal().parent_path();
    return path.filename().empty() ? bundle : path.filename().generic_string();
}

// Calls `visit` for each rule that a detection ran.
template <typename Visit>
void ForEachRule(const TreeReports& trees, Visit visit)
{
    for (const TreeReport& tree : trees) {
        for (const Evidence::Event& event : tree.tree.evidence) {
            for (const PlacedRule& placed : RulesOf(event)) {
                visit(placed.rule);
            }
        }
    }
}

/// Writes the case of one bundle that was diagnosed and is entered.
class CaseRecorder {
public:
    CaseRecorder(const BundleSession& session, const DetectionReport& report, const RecordOptions& options)
        : mSession(session), mReport(report), mOptions(options), mBundle(session.GetBundle())
    {
    }

    Problem Record()
    {
        AddHead();
        for (const auto step : {&CaseRecorder::AddFiles, &CaseRecorder::AddEvents, &CaseRecorder::AddRepairs,
                 &CaseRecorder::AddDatabases}) {
            if (auto failure = (this->*step)()) {
                return failure;
            }
        }
        AddAnswers();
        AddExpectations();
        return std::nullopt;
    }

    std::string Text() { return mText.Finish(); }

private:
    void AddHead()
    {
        mText.AddText("name", "recorded from " + NameOf(mReport.bundle));
        mText.AddText("note", "recorded, not reviewed: what is expected is what the rules answered");
        mText.Add("reviewed", "false");
        AddRuleSet();
        mText.Add("scene", std::to_string(mBundle.detectScene));
        const std::string now = MomentText(mSession.Now());
        mText.Add("now", now.find(':') == std::string::npos ? now : QuotedJson(now));
        mText.AddText("tz", mBundle.tz.empty() ? ZoneOfThisMachine() : mBundle.tz);
        JsonByKey device;
        for (const auto& [name, value] : DeviceAttributes(mBundle.device)) {
            if (!value.empty()) {
                device[name] = QuotedJson(value);
            }
        }
        mText.AddObject("device", device);
        if (!SettingOf(Settings::VERSION_NAME).empty()) {
            mText.AddText("version", SettingOf(Settings::VERSION_NAME));
        }
        if (SettingOf(Settings::APP_DATABASE_DIR).empty()) {
            mText.AddText("appDatabaseDir", "");
        }
    }

    std::string SettingOf(const char* key) const
    {
        const auto setting = mBundle.settings.find(key);
        return setting == mBundle.settings.end() ? "" : setting->second;
    }

    std::string InBundle(const std::string& path) const { return (fs::path(mSession.GetFolder()) / path).generic_string(); }

    void AddRuleSet()
    {
        std::error_code error;
        const fs::path folder = fs::absolute(mOptions.target, error).parent_path();
        const fs::path rules = fs::path(InBundle(mBundle.ruleFileDir)).lexically_normal();
        mText.AddText("rules", rules.lexically_proximate(fs::weakly_canonical(folder, error)).generic_string());
        if (!mBundle.ruleFilePrefix.empty()) {
            mText.AddText("prefix", mBundle.ruleFilePrefix);
        }
        mText.AddText("tag", mBundle.treeTag);
    }

    Problem AddFiles()
    {
        JsonByKey files;
        std::string unfit;
        ForEachRule(mReport.trees, [&files, &unfit](const Evidence::Rule& rule) {
            const auto* const node = std::get_if<Evidence::Node>(&rule.part);
            for (const auto& file : node == nullptr ? std::vector<Evidence::NodeFile>() : node->files) {
                if (file.readable) {
                    files[file.path] = QuotedJson(file.value);
                    unfit = IsPlainText(file.value) && IsPlainText(file.path) ? unfit : file.path;
                }
            }
        });
        mText.AddObject("files", files);
        const std::string reason = Printable(unfit) + ": holds bytes that are no text, which a case can't hold";
        return unfit.empty() ? std::nullopt : std::optional(Refused(reason));
    }

    Problem AddEvents()
    {
        const std::string log = mSession.OwnDataPath(EVENT_LOG);
        std::error_code error;
        if (!fs::exists(log, error)) {
            mText.Add("events", "null");
            return std::nullopt;
        }
        const rule_source::RuleSetFiles files =
            rule_source::ReadRuleSetFiles(InBundle(mBundle.ruleFileDir), mBundle.ruleFilePrefix);
        const rule_source::RuleSet ruleSet(files, mBundle.treeTag);
        const AskedRows asked(mReport.trees, ruleSet, mSession.Now());
        std::vector<std::string> events;
        auto failure = ShowEventLog(log, false, mSession.AsOf(),
            [this, &events](const ShownEvent& event) {
                if (++mRows <= MOST_RECORDED_ROWS) {
                    events.push_back(EventJson(event));
                }
            },
            [&asked](std::int64_t event, std::int64_t time) { return asked.Contains(event, time); });
        if (!failure && mRows > MOST_RECORDED_ROWS) {
            failure = Refused("the rules asked for " + std::to_string(mRows) + " rows of the event log, and a case holds at"
                " most " + std::to_string(MOST_RECORDED_ROWS) + "; take a part of the log (arborist log slice)");
        }
        mText.AddList("events", events);
        return failure;
    }

    static std::string EventJson(const ShownEvent& event)
    {
        std::string json = "{\"time\": " + event.time + ", \"event\": " + event.event;
        json += event.version == "\"\"" ? "" : ", \"version\": " + event.version;
        json += event.extra == "\"\"" ? "" : ", \"extra\": " + event.extra;
        return json + "}";
    }

    Problem AddRepairs()
    {
        std::vector<RepairRecord> records;
        if (auto failure = ReadRepairRecords(mSession.OwnDataPath(REPAIR_RECORDS), records)) {
            return failure;
        }
        const std::vector<std::string> known = SummariseRuleSet(mBundle).repairIds;
        JsonByKey repairs;
        for (const RepairRecord& record : records) {
            const auto moment = ParseMoment(record.date);
            const bool isHidden = moment && mSession.AsOf() && *moment > *mSession.AsOf();
            if (!isHidden && std::binary_search(known.begin(), known.end(), record.id)) {
                repairs.emplace(record.id, QuotedJson(record.date));
            }
        }
        mText.AddObject("repairs", repairs);
        return std::nullopt;
    }

    // The files that rules asked in their copies, which have the same names.
    Problem AddDatabases()
    {
        std::set<std::string> names;
        ForEachRule(mReport.trees, [&names](const Evidence::Rule& rule) {
            const auto* const command = std::get_if<Evidence::Command>(&rule.part);
            if (command != nullptr && command->hits) {
                for (const Evidence::Statement& statement : command->statements) {
                    names.insert(fs::path(statement.database).filename().generic_string());
                }
            }
        });
        RecordedDatabases databases(names, MOST_RECORDED_ROWS - mRows);
        const std::string root = SettingOf(Settings::DEVICE_ROOT_DIR);
        for (const std::string& folder : SummariseRuleSet(mBundle).searchedFolders) {
            if (names.empty()) {
                break; // no rule asked: what lies there may be anything
            }
            std::error_code error;
            const std::string bounds = fs::canonical(InBundle(folder.starts_with('/') ? root : ""), error).generic_string();
            const std::string source = InBundle(PathOnDevice(root, folder));
            if (auto failure = databases.AddFolder(source, folder, root.empty() ? "" : bounds)) {
                return failure;
            }
        }
        mText.AddObject("databases", databases.Json());
        return std::nullopt;
    }

    void AddAnswers()
    {
        JsonByKey answers;
        ForEachRule(mReport.trees, [&answers](const Evidence::Rule& rule) {
            const auto* const code = std::get_if<Evidence::Code>(&rule.part);
            if (code != nullptr && code->answer && rule.reason == Reason::RUNNER_ANSWERED) {
                answers[rule.name] = *code->answer ? "true" : "false";
            }
        });
        mText.AddObject("answers", answers);
    }

    void AddExpectations()
    {
        JsonByKey causes;
        JsonByKey verdicts;
        JsonByKey statuses;
        std::set<std::string> ambiguous;
        for (const TreeReport& tree : mReport.trees) {
            JsonWriter ids;
            ids.BeginArray();
            for (const auto& cause : tree.result->mRootCauseResults) {
                ids.Text(cause->mNode->mId);
            }
            // Of two trees with one id the first is looked at.
            causes.emplace(tree.Id(), ids.EndArray().Line());
            verdicts.emplace(tree.Id(), QuotedJson(Evidence::TreeVerdictText(tree.verdict.word)));
            for (const RecordedEvent& event : tree.tree.events) {
                const std::string status = QuotedJson(Evidence::StateText(event.status));
                if (event.IsLeaf() && statuses.emplace(event.id, status).first->second != status) {
                    ambiguous.insert(event.id);
                }
            }
        }
        for (const std::string& id : ambiguous) {
            statuses.erase(id);
        }
        mText.Begin("expect");
        mText.AddObject("causes", causes);
        mText.AddObject("verdicts", verdicts);
        mText.AddObject("statuses", statuses);
        mText.End();
    }

    const BundleSession& mSession;
    const DetectionReport& mReport;
    const RecordOptions& mOptions;
    const Bundle& mBundle;
    CaseText mText;
    std::size_t mRows = 0;
};

// A device whose case answers otherwise has something that a case can't describe, such as a damaged log.
Problem ProblemOfReplay(CaseRunner& runner, const std::string& target, const std::string& text)
{
    const CaseFile file = ReadCaseText(target, text);
    if (!file.failures.empty()) {
        return Refused("a case can't hold the bundle: " + file.failures.front().message);
    }
    const CaseOutcome outcome = runner.Run(file.cases.front());
    if (outcome.HasPassed()) {
        return std::nullopt;
    }
    std::string reason = outcome.failure ? outcome.failure->message : DifferenceText(outcome.differences.front(), "");
    std::replace(reason.begin(), reason.end(), '\n', ' ');
    return Refused("a case with what the rules asked for answers otherwise: " + reason);
}

} // namespace

Recording RecordCase(const BundlePath& bundle, const RecordOptions& options)
{
    CaseRunner runner("");
    Recording recording;
    DetectionOptions detection;
    detection.overrides = options.overrides;
    detection.codeRunner = options.codeRunner;
    detection.withExplanation = true;
    const DetectionReport report = RunDetection(bundle, detection);
    recording.warnings = report.warnings;
    recording.failure = report.failure;
    RecordOptions own = options;
    own.target = options.target.empty() ? std::string("recorded") + CASE_FILE_END : options.target;
    std::error_code error;
    own.target = fs::absolute(own.target, error).generic_string();
    if (!recording.failure) {
        BundleSession session;
        recording.failure = session.Enter(bundle, options.overrides);
        if (!recording.failure && session.IsZip() && options.overrides.rules.empty()) {
            recording.failure = Refused(bundle.given + ": is a zip, and a case names the folder of its rule set; give the"
                " folder with --rules");
        }
        if (!recording.failure) {
            CaseRecorder recorder(session, report, own);
            recording.failure = recorder.Record();
            recording.text = recorder.Text();
        }
    }
    if (!recording.failure) {
        recording.failure = ProblemOfReplay(runner, own.target, recording.text);
    }
    recording.text = recording.failure ? "" : recording.text;
    return recording;
}

} // namespace diagnosis::cases
