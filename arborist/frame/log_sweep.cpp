#include "arborist/frame/log_sweep.h"

#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "arborist/deduction/judge_tree.h"
#include "arborist/deduction/root_cause_search.h"
#include "arborist/evaluation/sweep/rule_sweep.h"
#include "arborist/frame/stoppable_detection.h"
#include "arborist/frame/stopping.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/loading/rule_set_record.h"
#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"

namespace {

/// Asks the host once for each code rule: the answer is part of what has no history.
class AnswersOnce : public CodeRuleRunner {
public:
    using Ids = std::vector<std::string>;

    explicit AnswersOnce(std::shared_ptr<CodeRuleRunner> runner) : mRunner(std::move(runner)) {}

    bool RunCodeRule(Ids faultDescriptionIds, Ids suggestionIds, Ids repairIds, const std::string& userDefinedInfo) override
    {
        const auto [known, isNew] =
            mAnswers.try_emplace(Question(faultDescriptionIds, suggestionIds, repairIds, userDefinedInfo));
        if (isNew) {
            known->second.first =
                mRunner->RunCodeRule(faultDescriptionIds, suggestionIds, repairIds, userDefinedInfo);
            known->second.second = mRunner->GetOutcome();
        }
        mOutcome = known->second.second;
        return known->second.first;
    }

    Outcome GetOutcome() const override { return mOutcome; }

private:
    using Question = std::tuple<Ids, Ids, Ids, std::string>;

    std::shared_ptr<CodeRuleRunner> mRunner;
    std::map<Question, std::pair<bool, Outcome>> mAnswers;
    Outcome mOutcome = Outcome::ANSWERED;
};

// Folds the statuses of a tree and finds its root causes and its verdict, as a detection does.
void Judge(RuleSweep::Tree& swept, std::size_t number, std::int64_t moment, SweepObserver& observer)
{
    FaultTree& tree = *swept.tree;
    tree.Reset();
    std::vector<Evidence::Check> checks;
    checks.reserve(swept.events.size());
    for (const RuleSweep::SweptEvent& place : swept.events) {
        if (place.isTrue) {
            place.event->SetResult(EventStatus::TRUE);
        }
        checks.push_back(place.check);
    }
    tree.Check();
    RootCauseSearch search(tree);
    const std::size_t count = search.Find(RootCauseSearch::LimitOfSettings()).size();
    std::vector<Evidence::RootCause> causes;
    for (std::size_t cause = 0; cause < count; ++cause) {
        causes.push_back(search.RecordOf(cause));
    }
    const bool isFault = !causes.empty();
    observer.OnTreeJudged(moment, number, {tree.GetId(), isFault, JudgeTree(tree, isFault, checks)}, causes);
    swept.isChanged = false;
}

void JudgeChanged(RuleSweep& sweep, std::int64_t moment, SweepObserver& observer)
{
    for (std::size_t number = 0; number < sweep.GetTrees().size(); ++number) {
        if (sweep.GetTrees()[number].isChanged) {
            Judge(sweep.GetTrees()[number], number, moment, observer);
        }
    }
}

} // namespace

LogSweep::LogSweep(const std::shared_ptr<DetectInfo>& detectInfo)
    : mDetectInfo(std::make_shared<DetectInfo>(*detectInfo)), mStop(std::make_unique<StopRequest>())
{
    if (mDetectInfo->mCodeRuleRunner != nullptr) {
        mDetectInfo->mCodeRuleRunner = std::make_shared<AnswersOnce>(mDetectInfo->mCodeRuleRunner);
    }
}

LogSweep::~LogSweep() = default;

void LogSweep::RequestStop() noexcept
{
    mStop->Request();
}

bool LogSweep::Run(const SweepRequest& request, SweepObserver& observer)
{
    const StoppableDetection stoppable(*mStop);
    const auto ruleSet = std::make_shared<FaultTreeParser>(mDetectInfo);
    ruleSet->StartParse();
    observer.OnRuleSetRead(RuleSetRecordOf(*ruleSet));
    if (!ruleSet->IsParseDone() || ruleSet->GetFaultTrees().empty()) {
        return false;
    }
    std::optional<RuleSweep> sweep;
    try {
        sweep.emplace(mDetectInfo, ruleSet, request,
            [&observer](Evidence::Trouble trouble) { observer.OnTrouble(std::move(trouble)); });
        observer.OnPlan(sweep->Plan());
        sweep->Run([&](std::int64_t moment) { JudgeChanged(*sweep, moment, observer); },
            [&](std::int64_t moment, const Evidence::Event& event) { observer.OnEventDecided(moment, event); });
    } catch (const DetectionStopped&) {
        observer.OnStopped(sweep ? sweep->GetMoment() : request.from);
    }
    return true;
}
