#include "diagnosis/detection/detection.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <new>
#include <regex>
#include <set>
#include <utility>

#include "arborist/frame/arborist.h"
#include "diagnosis/bundle/moment.h"
#include "diagnosis/bundle/rule_paths.h"
#include "diagnosis/detection/bad_pattern.h"
#include "diagnosis/evidence/detection_recorder.h"
#include "diagnosis/process/interruption.h"
#include "diagnosis/text/near_match.h"

namespace diagnosis {

namespace {

using State = Evidence::RuleSetFileState;

rule_source::RuleSetPaths RulePaths(const Bundle& bundle)
{
    return {TreeFilePath(bundle), RuleFilePath(bundle)};
}

std::string FileTrouble(const Evidence::RuleSetFile& file)
{
    if (file.state == State::MISSING) {
        return file.path + ": no such file";
    }
    const std::string place = file.line > 0 ? ":" + std::to_string(file.line) : "";
    return file.path + place + ": " + (file.message.empty() ? "is no XML that can be read" : file.message);
}

// The message names the tag that was probably meant, but not if the tag exists and only has no tree.
std::string NoTree(const std::string& treeFile, const Bundle& bundle)
{
    std::set<std::string> tags;
    for (const RuleSetSummary::Tag& tag : SummariseRuleSet(bundle).tags) {
        tags.insert(tag.name);
    }
    tags.erase(bundle.treeTag);
    return treeFile + ": no tree under the tag \"" + bundle.treeTag + "\""
        + DidYouMean(bundle.treeTag, {tags.begin(), tags.end()});
}

void ShowPaths(const BundleSession& session, Evidence::Rule& rule)
{
    rule.logProblem = session.Shown(rule.logProblem);
    if (auto* const command = std::get_if<Evidence::Command>(&rule.part)) {
        for (Evidence::Statement& statement : command->statements) {
            statement.database = session.Shown(statement.database);
            statement.error = session.Shown(statement.error);
        }
    } else if (auto* const node = std::get_if<Evidence::Node>(&rule.part)) {
        for (Evidence::NodeFile& file : node->files) {
            file.path = session.Shown(file.path);
        }
    }
}

// Renames files to their names in the bundle: the run kept them elsewhere. Messages may quote the library or SQLite.
void ShowPaths(const BundleSession& session, DetectionReport& report)
{
    for (Warning& warning : report.warnings) {
        warning.message = session.Shown(warning.message);
        warning.file = session.Shown(warning.file);
    }
    if (report.failure) {
        report.failure->message = session.Shown(report.failure->message);
    }
    for (TreeReport& tree : report.trees) {
        for (Evidence::OpenCheck& open : tree.verdict.open) {
            open.detail = session.Shown(open.detail);
        }
        for (Evidence::Event& event : tree.tree.evidence) {
            for (Evidence::Alternative& alternative : event.alternatives) {
                for (Evidence::Rule& rule : alternative.rules) {
                    ShowPaths(session, rule);
                }
            }
        }
    }
}

// None if they can't be read, which the detection warns of.
std::vector<RepairRecord> RepairsOnRecord(const BundleSession& session)
{
    std::vector<RepairRecord> records;
    if (ReadRepairRecords(session.ProgramDataPath(REPAIR_RECORDS), records, LIMITS_OF_LINES)) {
        return {};
    }
    if (session.AsOf()) {
        TakeLaterRepairs(records, *session.AsOf());
    }
    return records;
}

// Whether the failure says itself what is wrong with the files of the rule set.
bool IsOfTheFiles(const std::optional<Failure>& failure)
{
    static constexpr FailureCode CODES[] = {
        FailureCode::RULE_FILE_MISSING, FailureCode::RULE_FILE_MALFORMED, FailureCode::NO_TREE};
    return failure && std::find(std::begin(CODES), std::end(CODES), failure->code) != std::end(CODES);
}

void AddMistakes(const RuleSetWarnings& found, const Bundle& bundle, WarningList& warnings)
{
    found.AddTo(warnings);
    found.AddEmptyAttributes(bundle.device, warnings);
}

/// Stops a detection that was to end before it began: the engine knows only what comes later.
class StoppableRecorder : public DetectionRecorder {
public:
    StoppableRecorder(Detail detail, bool keepsCutSets, StopSwitch* stop)
        : DetectionRecorder(detail, keepsCutSets), mStop(stop)
    {
    }

    void OnRuleSetRead(Evidence::RuleSet ruleSet) override
    {
        DetectionRecorder::OnRuleSetRead(std::move(ruleSet));
        if (mStop != nullptr) {
            mStop->AskAgain();
        }
    }

private:
    StopSwitch* mStop;
};

/// One detection with its observers.
class Detection {
public:
    Detection(const BundleSession& session, const DetectionOptions& options)
        : mSession(session), mOptions(options), mInfo(session.MakeDetectInfo()),
          mRecorder(std::make_shared<StoppableRecorder>(DetailOf(options), options.isForLine, options.stop)),
          mAnswers(AnswerCodeRules(session.GetBundle(), options.codeRunner, *mInfo)),
          mHeld(options.ruleSets == nullptr ? nullptr : options.ruleSets->FindHeld(
              mInfo->mRuleFileDir, mInfo->mRuleFilePrefix, mInfo->mTreeTag)),
          mLoaded(mHeld == nullptr ? nullptr : mHeld->loaded)
    {
    }

    void Run(DetectionReport& report)
    {
        DetectionWarnings& warnings = mRecorder->GetWarnings();
        warnings.LookBefore(mSession);
        try {
            TakeDigest(report);
            Arborist engine(mInfo, mLoaded);
            engine.SetObserver(mRecorder);
            std::optional<StoppedBySignal> stoppable;
            if (mOptions.stopsOnSignal) {
                stoppable.emplace(engine);
            }
            const StopSwitch::Running running(mOptions.stop, engine);
            const auto results = engine.StartDetection();
            report.failure = RuleSetFailure(mRecorder->GetRuleSet(), mSession.GetBundle());
            if (!report.failure) {
                report.trees = mRecorder->TakeTrees();
                for (std::size_t tree = 0; tree < results.size(); ++tree) {
                    report.trees.at(tree).SetResult(results[tree]);
                }
            }
        } catch (...) {
            report.failure = FailureInFlight(mRecorder->GetRuleSet());
            report.trees.clear();
        }
        if (!report.failure) {
            warnings.LookAfter(mSession);
        }
        TakeWarnings(report);
    }

private:
    static DetectionRecorder::Detail DetailOf(const DetectionOptions& options)
    {
        using Detail = DetectionRecorder::Detail;
        return options.withExplanation ? Detail::EVIDENCE : options.withTrees ? Detail::EVENTS : Detail::VERDICT;
    }

    // A rule set that is not held is read for it, and loaded if the memory keeps loaded ones.
    void TakeDigest(DetectionReport& report)
    {
        if (!mOptions.isForLine) {
            return;
        }
        if (mHeld != nullptr) {
            report.ruleSet = mHeld->digest;
            return;
        }
        mFiles = Read();
        report.ruleSet = mFiles->GetDigest();
        if (mOptions.ruleSets != nullptr) {
            mLoaded = mOptions.ruleSets->KeptOrLoad(*mInfo, RulePaths(mSession.GetBundle()), *mFiles);
        }
    }

    RuleSetReading Read() const
    {
        const rule_source::RuleSetPaths paths = RulePaths(mSession.GetBundle());
        if (mOptions.ruleSets != nullptr) {
            return mOptions.ruleSets->Read(paths);
        }
        auto contents = rule_source::ReadRuleSetContents(paths);
        std::string digest = mOptions.isForLine ? rule_source::DigestOfTexts(contents) : "";
        return {std::move(contents), std::move(digest)};
    }

    // What lint finds in the rule set, of which nothing is read again.
    std::shared_ptr<const RuleSetWarnings> Check()
    {
        if (mHeld != nullptr) {
            return mHeld->warnings;
        }
        RuleSetReading files = mFiles ? std::move(*mFiles) : Read();
        const Bundle& bundle = mSession.GetBundle();
        return mOptions.ruleSets == nullptr
            ? CheckRuleSet(std::move(files.contents), bundle.treeTag)
            : mOptions.ruleSets->Check(RulePaths(bundle), bundle.treeTag, std::move(files));
    }

    // A failed detection has no results, so warnings about the reliability of results are left out.
    void TakeWarnings(DetectionReport& report)
    {
        WarningList all;
        all.Add(report.warnings);
        if (!report.failure) {
            all.Add(mRecorder->GetWarnings().List());
        }
        if (!report.failure && mAnswers != nullptr) {
            all.Add(mAnswers->GetWarnings());
        }
        if (mOptions.checksRuleSet && !IsOfTheFiles(report.failure)) {
            AddMistakes(*Check(), mSession.GetBundle(), all);
        }
        report.warnings = all.Told();
    }

    const BundleSession& mSession;
    const DetectionOptions& mOptions;
    std::shared_ptr<DetectInfo> mInfo;
    std::shared_ptr<DetectionRecorder> mRecorder;
    std::shared_ptr<CodeAnswers> mAnswers;
    // What earlier detections left of the rule set; null for none.
    const HeldRuleSet* mHeld;
    std::shared_ptr<LoadedRuleSet> mLoaded;
    // The files of a rule set that is not held, once they are read.
    std::optional<RuleSetReading> mFiles;
};

class Stopwatch {
public:
    double Seconds() const { return std::chrono::duration<double>(Clock::now() - mStart).count(); }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point mStart = Clock::now();
};

DetectionReport EmptyReport(const BundlePath& bundle, const DetectionOptions& options)
{
    DetectionReport report;
    report.bundle = bundle.given;
    report.withTrees = options.withTrees;
    report.withExplanation = options.withExplanation;
    return report;
}

// Runs a detection in a session that was entered, unless that failed.
void RunEntered(const BundleSession& session, const DetectionOptions& options, DetectionReport& report)
{
    report.warnings = session.GetWarnings();
    report.device = options.deviceNames.Of(session.GetBundle().deviceId);
    if (report.failure) {
        return;
    }
    report.subject = session.GetBundle();
    report.subject.deviceId.clear();
    report.moment = FormatMoment(session.Now()).value_or("");
    Detection(session, options).Run(report);
    ShowPaths(session, report);
    if (options.isForLine && !report.failure) {
        report.repaired = RepairsOnRecord(session);
    }
}

} // namespace

bool DetectionReport::IsFault() const
{
    return std::any_of(trees.begin(), trees.end(), [](const TreeReport& tree) { return tree.IsFault(); });
}

bool DetectionReport::IsUndecided() const
{
    return std::any_of(trees.begin(), trees.end(), [](const TreeReport& tree) { return tree.IsUndecided(); });
}

bool DetectionReport::HasUnusableRule() const
{
    return std::any_of(trees.begin(), trees.end(), [](const TreeReport& tree) {
        return tree.verdict.checks.Of(Evidence::Check::RULE_UNUSABLE) != 0;
    });
}

void AddRuleSetWarnings(const Bundle& bundle, const std::optional<Failure>& failure, WarningList& warnings)
{
    if (!IsOfTheFiles(failure)) {
        AddMistakes(*CheckRuleSet(rule_source::ReadRuleSetContents(RulePaths(bundle)), bundle.treeTag), bundle, warnings);
    }
}

std::optional<Failure> RuleSetFailure(const Evidence::RuleSet& ruleSet, const Bundle& bundle)
{
    std::optional<Failure> failure;
    std::string treeFile = "the rule set";
    bool hasTrees = false;
    for (const Evidence::RuleSetFile& file : ruleSet.files) {
        if (file.state != State::LOADED) {
            const auto code =
                file.state == State::MISSING ? FailureCode::RULE_FILE_MISSING : FailureCode::RULE_FILE_MALFORMED;
            // If both files are faulty, the code is that of the first, and the message names both.
            failure = failure ? Failure{failure->code, failure->message + "; " + FileTrouble(file), failure->status}
                              : Failure{code, FileTrouble(file)};
        } else if (file.type == Evidence::RuleSetFileType::TREES) {
            treeFile = file.path;
            hasTrees = file.count > 0;
        }
    }
    if (!failure && !hasTrees) {
        failure = Failure{FailureCode::NO_TREE, NoTree(treeFile, bundle)};
    }
    return failure;
}

std::optional<Failure> FailureInFlight(const Evidence::RuleSet& ruleSet)
{
    try {
        throw;
    } catch (const std::regex_error& error) {
        return Failure{FailureCode::BAD_PATTERN, BadPatternMessage(ruleSet, error.what())};
    } catch (const std::bad_alloc&) {
        return Failure{FailureCode::OUT_OF_MEMORY, "memory ran out"};
    } catch (const std::exception& error) {
        return Failure{FailureCode::INTERNAL, std::string("internal error: ") + error.what()};
    } catch (...) {
        return Failure{FailureCode::INTERNAL, "internal error"};
    }
}

DetectionReport RunDetection(const BundlePath& bundle, const DetectionOptions& options)
{
    const Stopwatch watch;
    const StopSwitch::Call call(options.stop);
    DetectionReport report = EmptyReport(bundle, options);
    try {
        BundleSession session;
        report.failure = session.Enter(bundle, options.overrides);
        RunEntered(session, options, report);
    } catch (...) {
        report.failure = FailureInFlight({});
    }
    report.seconds = watch.Seconds();
    return report;
}

std::vector<DetectionReport> RunDetections(
    const BundlePath& bundle, const DetectionOptions& options, const std::vector<std::string>& rules)
{
    std::vector<DetectionReport> reports;
    DetectionOptions first = options;
    first.overrides.rules = rules.empty() ? "" : rules.front();
    BundleSession session;
    std::optional<Failure> failure;
    try {
        failure = session.Enter(bundle, first.overrides);
        if (!failure) {
            session.HoldMoment();
        }
    } catch (...) {
        failure = FailureInFlight({});
    }
    for (const std::string& folder : rules) {
        const Stopwatch watch;
        DetectionReport& report = reports.emplace_back(EmptyReport(bundle, options));
        try {
            report.failure = failure || reports.size() == 1 ? failure : session.TakeRules(folder);
            RunEntered(session, options, report);
        } catch (...) {
            report.failure = FailureInFlight({});
        }
        report.seconds = watch.Seconds();
    }
    return reports;
}

} // namespace diagnosis
