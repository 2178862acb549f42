#include "diagnosis/sweep/sweep.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include "arborist/frame/log_sweep.h"
#include "diagnosis/bundle/bundle_overlay.h"
#include "diagnosis/bundle/moment.h"
#include "diagnosis/detection/detection.h"
#include "diagnosis/evidence/warning_list.h"
#include "diagnosis/log_db/log_density.h"
#include "diagnosis/process/interruption.h"
#include "diagnosis/sweep/rule_texts.h"
#include "diagnosis/text/near_match.h"

namespace diagnosis {

namespace {

constexpr std::size_t DENSITY_PARTS = 240;

std::string Sentence(const SweepPlan::Unswept& rule)
{
    const std::string subject = "the rule \"" + rule.ruleName + "\" of \"" + rule.eventId + "\" is not swept: ";
    if (rule.reason == "log_damaged") {
        return subject + "the event log is damaged";
    }
    if (rule.reason == "odd_times") {
        return subject + "its events have times that are no whole seconds";
    }
    if (rule.reason == "too_many_moments") {
        return subject + "its derived tables change at " + std::to_string(rule.moments)
            + (rule.moments == 1 ? " moment" : " moments") + "; --table-moments allows more";
    }
    if (rule.reason == "reads_clock") {
        return subject + "its statement reads the clock";
    }
    return subject + (rule.reason == "fixed_table" ? "its statement reads the time in a table of one fixed row"
                                                   : "its statement calculates an occurrence_time of its own");
}

/// One sweep of a bundle that is entered.
class Sweep {
public:
    Sweep(const BundleSession& session, const SweepOptions& options, SweepReport& report)
        : mSession(session), mOptions(options), mReport(report), mLog(session.ProgramDataPath(EVENT_LOG)),
          mInfo(session.MakeDetectInfo()), mAnswers(AnswerCodeRules(session.GetBundle(), options.codeRunner, *mInfo))
    {
    }

    void Run()
    {
        RuleTexts texts = ReadRuleTexts(mSession.GetBundle());
        mReport.failure = texts.areRead ? UnknownName(texts.trees, texts.rules) : std::nullopt;
        if (!mReport.failure) {
            mReport.failure = SetRange();
        }
        if (mReport.failure) {
            return;
        }
        SweepRequest request{mReport.from, mReport.until, mOptions.mostTableMoments};
        request.unsweptRules = std::move(texts.rulesOfTheClock);
        request.tree = mOptions.tree;
        request.rule = mOptions.rule;
        mRecorder.GetWarnings().LookBefore(mSession);
        try {
            LogSweep sweep(mInfo);
            std::optional<StoppedBySignal> stoppable;
            if (mOptions.stopsOnSignal) {
                stoppable.emplace(sweep);
            }
            sweep.Run(request, mRecorder);
            mReport.failure = RuleSetFailure(mRecorder.GetRuleSet(), mSession.GetBundle());
        } catch (...) {
            mReport.failure = FailureInFlight(mRecorder.GetRuleSet());
        }
        if (!mReport.failure) {
            EndWhereStopped();
        }
        if (!mReport.failure) {
            TakeAnswers(texts.eventsOfTrees);
        }
    }

private:
    void EndWhereStopped()
    {
        const auto stopped = mRecorder.GetStopped();
        if (!stopped) {
            return;
        }
        if (*stopped <= mReport.from) {
            mReport.failure =
                Failure{FailureCode::TIMEOUT, mReport.bundle + ": the sweep was stopped before it had its first answer"};
            return;
        }
        mReport.warnings.push_back({WarningCode::STOPPED, "the sweep was stopped: it ends before " + MomentText(*stopped)
            + " instead of at " + MomentText(mReport.until)});
        mReport.until = *stopped - 1;
    }

    std::optional<Failure> SetRange()
    {
        const LoggedSpan span = SpanOfLog(mLog, mLogProblem);
        if (!std::filesystem::exists(mLog)) { // the sweep may create an empty one
            mLogProblem.clear();
        }
        const std::int64_t now = mSession.Now();
        const auto read = [](const std::string& text, auto ofDay) { return IsDay(text) ? ofDay(text) : ParseMoment(text); };
        const auto from = mOptions.from.empty() ? span.first.value_or(now) : read(mOptions.from, FirstSecondOf);
        const auto until =
            mOptions.until.empty() ? std::max(now, span.last.value_or(now)) : read(mOptions.until, LastSecondOf);
        for (const auto& [text, moment] : {std::pair(&mOptions.from, from), std::pair(&mOptions.until, until)}) {
            if (!moment) {
                return Failure{FailureCode::BAD_MOMENT, "the moment \"" + *text + "\" does not exist in the time zone"};
            }
        }
        if (*from > *until) {
            return Failure{FailureCode::BAD_MOMENT, "the sweep would end at " + MomentText(*until) + ", before it begins at "
                + MomentText(*from)};
        }
        mReport.from = *from;
        mReport.until = *until;
        return std::nullopt;
    }

    void TakeAnswers(const std::vector<std::set<std::string>>& eventsOfTrees)
    {
        mRecorder.Close(mReport.until);
        mRecorder.TellGrounds(eventsOfTrees);
        mReport.plan = mRecorder.GetPlan();
        mReport.trees = mRecorder.TakeTrees();
        mReport.rules = mRecorder.TakeRules();
        mReport.density = DensityOfLog(mLog, mReport.from, mReport.until, DENSITY_PARTS);
        TakeWarnings();
        Select();
    }

    // Those of a detection, of which each is told once, and what the sweep itself lacks.
    void TakeWarnings()
    {
        WarningList all;
        all.Add(mReport.warnings);
        mRecorder.GetWarnings().LookAfter(mSession, mReport.until, mReport.until);
        all.Add(mRecorder.GetWarnings().List());
        if (mAnswers != nullptr) {
            all.Add(mAnswers->GetWarnings());
        }
        AddRuleSetWarnings(mSession.GetBundle(), mReport.failure, all);
        mReport.warnings = all.ToldOnce();
        if (!mLogProblem.empty() && (mOptions.from.empty() || mOptions.until.empty())) {
            mReport.warnings.push_back({WarningCode::EVENT_LOG_UNREADABLE,
                "the first and the last row of the event log can't be told, only --from and --until: " + mLogProblem});
        }
        for (Warning& warning : mReport.warnings) {
            warning.message = mSession.Shown(warning.message);
            warning.file = mSession.Shown(warning.file);
        }
        AddUnswept();
    }

    void AddUnswept()
    {
        for (const SweepPlan::Unswept& rule : mReport.plan.unswept) {
            if (rule.reason != "not_asked_for") {
                mReport.warnings.push_back({WarningCode::NOT_SWEPT,
                    {.message = Sentence(rule), .rule = rule.ruleName, .event = rule.eventId}});
            }
        }
    }

    // The failure if --tree or --rule names none of these.
    std::optional<Failure> UnknownName(const std::vector<std::string>& trees, const std::vector<std::string>& rules) const
    {
        const auto isKnown = [](const std::string& name, const std::vector<std::string>& names) {
            return name.empty() || std::count(names.begin(), names.end(), name) != 0;
        };
        if (!isKnown(mOptions.tree, trees)) {
            return Failure{FailureCode::NO_SUCH_TREE, mReport.bundle + ": has no tree \"" + mOptions.tree + "\""
                + DidYouMean(mOptions.tree, trees)};
        }
        if (!isKnown(mOptions.rule, rules)) {
            return Failure{FailureCode::NO_SUCH_RULE, mReport.bundle + ": no event asks a rule \"" + mOptions.rule + "\""
                + DidYouMean(mOptions.rule, rules)};
        }
        return std::nullopt;
    }

    // Leaves what --tree and --rule name.
    void Select()
    {
        std::vector<std::string> trees;
        std::vector<std::string> rules;
        for (const SweptTree& tree : mReport.trees) {
            trees.push_back(tree.id);
        }
        for (const SweptRule& rule : mReport.rules) {
            rules.push_back(rule.name);
        }
        mReport.failure = UnknownName(trees, rules);
        std::erase_if(mReport.trees, [this](const SweptTree& tree) {
            return !mOptions.tree.empty() ? tree.id != mOptions.tree : !mOptions.rule.empty();
        });
        std::erase_if(mReport.rules, [this](const SweptRule& rule) {
            return !mOptions.rule.empty() ? rule.name != mOptions.rule : !mOptions.tree.empty();
        });
    }

    const BundleSession& mSession;
    const SweepOptions& mOptions;
    SweepReport& mReport;
    std::string mLog;
    std::string mLogProblem;
    std::shared_ptr<DetectInfo> mInfo;
    std::shared_ptr<CodeAnswers> mAnswers;
    SweepRecorder mRecorder;
};

} // namespace

SweepReport RunSweep(const BundlePath& bundle, const SweepOptions& options)
{
    SweepReport report;
    report.bundle = bundle.given;
    try {
        BundleSession session;
        report.failure = session.Enter(bundle, options.overrides);
        report.warnings = session.GetWarnings();
        if (!report.failure) {
            report.tz = session.GetBundle().tz;
            Sweep(session, options, report).Run();
        }
        if (report.failure) {
            report.failure->message = session.Shown(report.failure->message);
        }
    } catch (...) {
        report.failure = FailureInFlight({});
    }
    return report;
}

} // namespace diagnosis
