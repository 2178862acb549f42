#include "arborist/evaluation/rule_decider.h"

#include <utility>

#include "arborist/evaluation/code_rule_engine.h"
#include "arborist/evaluation/rule_check.h"
#include "arborist/evaluation/rule_checker.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/stopping.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/common_part.h"
#include "arborist/model/rule.h"

namespace {

using Evidence::Reason;
using Evidence::Verdict;

Evidence::Rule& AddRecord(Evidence::Alternative& alternative, const std::string& name, const Rule* rule)
{
    Evidence::Rule& record = alternative.rules.emplace_back();
    record.name = name;
    record.SetFamily(FamilyOf(rule));
    return record;
}

// As long as it exists, a checker writes into a record. An exception may end its work.
class RecordOfRule {
public:
    RecordOfRule(RuleChecker& checker, Evidence::Rule* record) : mChecker(checker) { mChecker.SetRecord(record); }
    ~RecordOfRule() { mChecker.SetRecord(nullptr); }
    RecordOfRule(const RecordOfRule&) = delete;
    RecordOfRule& operator=(const RecordOfRule&) = delete;

private:
    RuleChecker& mChecker;
};

// Problems of the event log make a rule's count unreliable: notes them in its record.
void NoteTrouble(const Evidence::Trouble& trouble, Evidence::Rule& record)
{
    const bool isDamage = trouble.kind == Evidence::Trouble::Kind::EVENT_LOG_UNREADABLE;
    if (!isDamage && trouble.kind != Evidence::Trouble::Kind::BAD_EXTRA) {
        return;
    }
    record.Note(isDamage ? Reason::LOG_DAMAGED : Reason::NO_VALUE);
    if (record.logProblem.empty()) {
        record.logProblem = trouble.file + ": " + trouble.words;
    }
}

} // namespace

RuleDecider::RuleDecider(
    std::shared_ptr<FaultTreeParser> ruleSet, std::shared_ptr<RuleHelper> ruleHelper, RuleCheckers checkers)
    : mRuleSet(std::move(ruleSet)), mRuleHelper(std::move(ruleHelper)), mCheckers(std::move(checkers))
{
}

bool RuleDecider::Fires(
    const std::string& ruleName, const std::string& eventId, Evidence::Alternative* alternative)
{
    if (const RuleAnswer* const known = mFindKnown ? mFindKnown(ruleName) : nullptr) {
        if (alternative != nullptr) {
            alternative->rules.push_back(known->record);
        }
        return known->fires;
    }
    const std::shared_ptr<Rule> rule = mRuleSet->GetRuleByRuleName(ruleName);
    if (alternative == nullptr) {
        return AskIfSupported(rule, eventId, nullptr);
    }
    Evidence::Rule& record = AddRecord(*alternative, ruleName, rule.get());
    const bool fires = AskIfSupported(rule, eventId, &record);
    record.check = CheckOfRule(record);
    return fires;
}

void RuleDecider::SkipInGroup(const std::string& ruleName, Evidence::Alternative& alternative) const
{
    AddRecord(alternative, ruleName, mRuleSet->GetRuleByRuleName(ruleName).get()).reason = Reason::GROUP_ENDED;
}

bool RuleDecider::AskIfSupported(
    const std::shared_ptr<Rule>& rule, const std::string& eventId, Evidence::Rule* record)
{
    if (rule == nullptr) {
        if (record != nullptr) {
            record->reason = Reason::NO_SUCH_RULE;
        }
        return false;
    }
    if (const auto rejection = mRuleHelper->Reject(*rule)) {
        if (record != nullptr) {
            record->reason = rejection->reason;
            record->filter = {rejection->deviceValue, std::string(rejection->ruleText)};
        }
        return false;
    }
    StopPoint::Pass();
    return record == nullptr ? Ask(rule, eventId, nullptr) : AskAndRecord(rule, eventId, *record);
}

bool RuleDecider::AskAndRecord(
    const std::shared_ptr<Rule>& rule, const std::string& eventId, Evidence::Rule& record)
{
    const TroubleWatch watch(
        [&](Evidence::Trouble trouble) { Tell(std::move(trouble), *rule, eventId, record); });
    return Ask(rule, eventId, &record);
}

bool RuleDecider::Ask(const std::shared_ptr<Rule>& rule, const std::string& eventId, Evidence::Rule* record)
{
    const std::shared_ptr<RuleChecker> checker = mCheckers.Get(rule.get(), mCommonPart);
    if (checker == nullptr) {
        if (record != nullptr) {
            record->reason = Reason::NO_CHECKER;
        }
        return false;
    }
    const RecordOfRule recording(*checker, record);
    const bool fires = checker->IsFaultHappened(rule, eventId);
    if (record != nullptr) {
        record->verdict = fires ? Verdict::FIRED : Verdict::NOT_FIRED;
        record->reason = checker->GetReason();
    }
    return fires;
}

void RuleDecider::Tell(
    Evidence::Trouble trouble, const Rule& rule, const std::string& eventId, Evidence::Rule& record) const
{
    NoteTrouble(trouble, record);
    if (GetObserver() != nullptr) { // a code rule calls the host, which may have removed the observer
        trouble.eventId = eventId;
        trouble.ruleName = rule.name;
        GetObserver()->OnTrouble(std::move(trouble));
    }
}
