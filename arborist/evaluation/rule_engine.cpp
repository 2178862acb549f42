#include "arborist/evaluation/rule_engine.h"

#include <utility>

#include "arborist/evaluation/alternative_finder.h"
#include "arborist/evaluation/code_rule_engine.h"
#include "arborist/evaluation/common_part_preparation.h"
#include "arborist/evaluation/rule_check.h"
#include "arborist/evaluation/rule_checker.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/log.h"
#include "arborist/frame/stopping.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/common_part.h"
#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/rule.h"
#include "arborist/stores/common_part/common_part_db_helper.h"
#include "arborist/utilities/string_util.h"

namespace {

using Evidence::Reason;
using Evidence::Verdict;

// Appends a record to the alternative's; null if there is no alternative, without an observer.
Evidence::Rule* AddRecord(Evidence::Alternative* alternative, const std::string& name, const Rule* rule)
{
    if (alternative == nullptr) {
        return nullptr;
    }
    Evidence::Rule& record = alternative->rules.emplace_back();
    record.name = name;
    record.SetFamily(FamilyOf(rule));
    return &record;
}

// As long as it exists, a checker writes into a record. An exception may end its work.
class RecordOfRule {
public:
    RecordOfRule(RuleChecker* checker, Evidence::Rule* record) : mChecker(checker)
    {
        if (mChecker != nullptr) {
            mChecker->SetRecord(record);
        }
    }
    ~RecordOfRule()
    {
        if (mChecker != nullptr) {
            mChecker->SetRecord(nullptr);
        }
    }
    RecordOfRule(const RecordOfRule&) = delete;
    RecordOfRule& operator=(const RecordOfRule&) = delete;

private:
    RuleChecker* mChecker;
};

// Problems of the event log make a rule's count unreliable: notes them in its record.
void NoteTrouble(Evidence::Trouble::Kind kind, Evidence::Rule& record)
{
    if (kind == Evidence::Trouble::Kind::EVENT_LOG_UNREADABLE) {
        record.Note(Reason::LOG_DAMAGED);
    } else if (kind == Evidence::Trouble::Kind::BAD_EXTRA) {
        record.Note(Reason::NO_VALUE);
    }
}

} // namespace

RuleEngine::RuleEngine(std::shared_ptr<DetectInfo> detectInfo, std::shared_ptr<FaultTreeParser> faultTreeParser)
    : mFaultTreeParser(std::move(faultTreeParser)), mDetectInfo(std::move(detectInfo)),
      mDeviceDetails(mDetectInfo != nullptr ? mDetectInfo->mDeviceDetails : nullptr),
      mRuleHelper(mDetectInfo != nullptr ? std::make_shared<RuleHelper>(mDetectInfo, mFaultTreeParser) : nullptr),
      mRuleEngineHelper(mDetectInfo != nullptr ? std::make_shared<RuleEngineHelper>() : nullptr),
      mCheckers(mRuleHelper, mRuleEngineHelper, mFaultTreeParser, mDetectInfo)
{
}

void RuleEngine::Init()
{
    mTreeChecks.StartDetection();
    CommonPartDbHelper::GetInstance().Init();
    InitCommonPart();
}

void RuleEngine::StartRunRules(const std::shared_ptr<FaultTree>& faultTree)
{
    if (faultTree == nullptr || mRuleEngineHelper == nullptr) {
        return;
    }
    mFaultTree = faultTree;
    Reset();
    FetchEvent(mFaultTree->GetIntermediateEvent());
    MarkObservable();
    RunRules();
}

void RuleEngine::FetchEvent(const std::shared_ptr<Event>& event)
{
    if (mRuleEngineHelper != nullptr) {
        mRuleEngineHelper->FetchEvent(event);
    }
}

RuleEngineHelper::EventList RuleEngine::GetAllEventList() const
{
    return mRuleEngineHelper != nullptr ? mRuleEngineHelper->GetAllEventList() : RuleEngineHelper::EventList();
}

RuleEngineHelper::EventMap RuleEngine::GetEventMap() const
{
    return mRuleEngineHelper != nullptr ? mRuleEngineHelper->GetEventMap() : RuleEngineHelper::EventMap();
}

std::vector<std::string> RuleEngine::GetCodeRuleInfoByType(std::string_view type, const std::string& detectCode)
{
    return mCheckers.GetCodeRuleEngine()->GetCodeRuleInfoByType(type, detectCode);
}

void RuleEngine::InitCommonPart()
{
    const auto block = mFaultTreeParser == nullptr ? nullptr : mFaultTreeParser->GetCommonPart();
    if (block == nullptr || (block->GetThresholdLumbraList().empty() && block->GetDefDbTableCommonList().empty())) {
        return; // keeps what an earlier detection prepared
    }
    mCommonPart = std::make_shared<CommonPart>();
    mCommonPart->SetCombineCommon(block);
    PrepareCommonPart(
        mCommonPart, mFaultTreeParser->GetRuleFileReport().path, mDeviceDetails.get(), mObserver);
}

void RuleEngine::Reset()
{
    mRuleEngineHelper->Reset();
    mFaultTree->Reset();
}

void RuleEngine::MarkObservable()
{
    if (mFaultTreeParser != nullptr) {
        mRuleEngineHelper->MarkObservable(mFaultTreeParser->GetEventRuleMap());
    }
}

void RuleEngine::RunRules()
{
    if (mFaultTreeParser == nullptr) {
        return;
    }
    mTreeChecks.StartTree();
    // Find the entries of all events before the first rule runs: a code rule calls the host, which may call the engine.
    struct Place {
        std::shared_ptr<Event> event;
        std::shared_ptr<EventRule> eventRule;
        bool hasEntry;
    };
    std::vector<Place> places;
    const auto& eventRules = mFaultTreeParser->GetEventRuleMap();
    for (const auto& event : mRuleEngineHelper->GetAllEventList()) {
        const auto entry = eventRules.find(event->GetId());
        if (entry != eventRules.end()) {
            places.push_back({event, entry->second, true});
        } else if (GetObserver() != nullptr) {
            places.push_back({event, nullptr, false});
        }
    }
    for (const auto& [event, eventRule, hasEntry] : places) {
        if (!hasEntry) {
            mTreeChecks.AddWithoutEntry(*event);
            continue;
        }
        if (StopPoint::HasStopped() || !RunRulesOfEvent(event, eventRule)) {
            mTreeChecks.AddStopped(*event);
        }
    }
}

// False if the detection was stopped on the way: the event is then not decided, whatever its rules have answered so far.
bool RuleEngine::RunRulesOfEvent(const std::shared_ptr<Event>& event, const std::shared_ptr<EventRule>& eventRule)
{
    mRuleHelper->SetCurrentEvent(event);
    try {
        if (IsFaultHappenedForEvent(event, eventRule)) {
            FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: check error true %s:%s", "RuleEngine::RunRules",
                                          event->GetId().c_str(), event->GetName().c_str());
            event->SetResult(EventStatus::TRUE);
        }
        return true;
    } catch (const DetectionStopped&) {
        return false;
    }
}

bool RuleEngine::IsFaultHappenedForEvent(
    const std::shared_ptr<Event>& event, const std::shared_ptr<EventRule>& eventRule)
{
    if (GetObserver() == nullptr) {
        return DecideEvent(*event, eventRule.get(), nullptr, nullptr);
    }
    Evidence::Event record;
    record.id = event->GetId();
    record.name = event->GetName();
    EventCheck eventCheck;
    eventCheck.KeepTrue(mTreeChecks.GetTrueCheck(eventRule.get()));
    const bool fired = record.fired = DecideEvent(*event, eventRule.get(), &eventCheck, &record);
    mTreeChecks.AddDecided(*event, eventRule.get(), eventCheck, record);
    if (GetObserver() != nullptr) { // a code rule calls the host, which may have removed the observer
        GetObserver()->OnEventDecided(std::move(record));
    }
    return fired;
}

bool RuleEngine::DecideEvent(
    const Event& event, EventRule* eventRule, EventCheck* eventCheck, Evidence::Event* record)
{
    Reason reason = Reason::NONE;
    bool fired = false;
    if (event.GetDetectMode() == DETECT_INTERACTION_RULE) {
        FT::Log::GetInstance().Output(FT::LEVEL_INFO, "FUNc:%s: event is code rule, skipped",
                                      "RuleEngine::IsFaultHappenedForEvent");
        reason = Reason::INTERACTION_EVENT;
    } else {
        const auto names = eventRule != nullptr ? RuleHelper::GetRuleNamesByRuleList(eventRule->GetRuleList())
                                                : std::vector<std::string>();
        reason = names.empty() ? Reason::NO_RULE_NAMES : Reason::NONE;
        fired = !names.empty() && AskRulesOfEvent(event.GetId(), *eventRule, names, eventCheck, record);
    }
    if (record != nullptr) {
        record->reason = reason;
    }
    return fired;
}

bool RuleEngine::AskRulesOfEvent(const std::string& eventId, EventRule& eventRule,
                                 const std::vector<std::string>& names, EventCheck* eventCheck,
                                 Evidence::Event* record)
{
    const AlternativeFinder finder(eventRule.GetRuleList());
    for (std::size_t number = 0; number < names.size(); ++number) {
        const std::string& name = names[number];
        Evidence::Alternative* const alternative = record == nullptr ? nullptr : &record->alternatives.emplace_back();
        const auto entry = name.find(RuleHelper::TYPE_COMMA) != std::string::npos
            ? DoMultiRulesCheck(name, eventId, finder.Find(name), alternative)
            : DoSingleRuleCheck(name, eventId, finder, alternative);
        if (eventCheck != nullptr && entry != nullptr) {
            eventCheck->Land(entry.get(), entry->result, CheckOfAlternative(*alternative), number);
        }
    }
    return eventRule.CheckResult();
}

// The entry that the result was written to; null for nowhere.
std::shared_ptr<OrRuleSingle> RuleEngine::DoSingleRuleCheck(const std::string& name, const std::string& eventId,
    const AlternativeFinder& finder, Evidence::Alternative* alternative)
{
    const bool result = GetSingleRuleCheckResult(name, eventId, alternative);
    // An alternative with an empty name has no entry for its result. Its rule is run nevertheless.
    const auto entry = name.empty() ? nullptr : RuleHelper::OrLogMissing(finder.Find(name));
    if (entry != nullptr) {
        entry->result = result;
    }
    return entry;
}

// Returns the entry to which the result was written. If all parts between the commas are empty, runs no rule and
// returns null.
std::shared_ptr<OrRuleSingle> RuleEngine::DoMultiRulesCheck(const std::string& names, const std::string& eventId,
    const std::shared_ptr<OrRuleSingle>& entry, Evidence::Alternative* alternative)
{
    const auto parts = StringUtil::Split(names, RuleHelper::TYPE_COMMA);
    std::size_t place = 0;
    bool result = true;
    for (; place < parts.size() && result; ++place) {
        result = GetSingleRuleCheckResult(parts[place], eventId, alternative);
        RuleHelper::OrLogMissing(entry);
    }
    if (entry != nullptr && !parts.empty()) {
        entry->result = result;
    }
    if (alternative != nullptr) {
        alternative->inGroup = true;
        for (; place < parts.size(); ++place) {
            const auto rule = mFaultTreeParser->GetRuleByRuleName(parts[place]);
            AddRecord(alternative, parts[place], rule.get())->reason = Reason::GROUP_ENDED;
        }
    }
    return parts.empty() ? nullptr : entry;
}

bool RuleEngine::GetSingleRuleCheckResult(
    const std::string& ruleName, const std::string& eventId, Evidence::Alternative* alternative)
{
    const std::shared_ptr<Rule> rule = mFaultTreeParser->GetRuleByRuleName(ruleName);
    Evidence::Rule* const record = AddRecord(alternative, ruleName, rule.get());
    const bool fired = AskIfSupported(rule, eventId, record);
    if (record != nullptr) {
        record->check = CheckOfRule(*record);
    }
    return fired;
}

bool RuleEngine::AskIfSupported(const std::shared_ptr<Rule>& rule, const std::string& eventId, Evidence::Rule* record)
{
    if (mRuleHelper->IsSpecifiedRuleItemSupported(rule)) {
        return AskRule(rule, eventId, record);
    }
    if (record != nullptr) {
        record->reason = Reason::NO_SUCH_RULE;
        if (const auto& rejection = mRuleHelper->GetRejection()) {
            record->reason = rejection->reason;
            record->filter = {rejection->deviceValue, std::string(rejection->ruleText)};
        }
    }
    return false;
}

bool RuleEngine::AskRule(const std::shared_ptr<Rule>& rule, const std::string& eventId, Evidence::Rule* record)
{
    StopPoint::Pass();
    std::optional<TroubleWatch> watch;
    if (record != nullptr) {
        watch.emplace([&](Evidence::Trouble trouble) {
            trouble.eventId = eventId;
            trouble.ruleName = rule->name;
            NoteTrouble(trouble.kind, *record);
            if (GetObserver() != nullptr) { // a code rule calls the host, which may have removed the observer
                GetObserver()->OnTrouble(std::move(trouble));
            }
        });
    }
    const std::shared_ptr<RuleChecker> checker = mCheckers.Get(rule.get(), mCommonPart);
    const RecordOfRule recording(checker.get(), record);
    const bool fired = checker != nullptr && checker->IsFaultHappened(rule, eventId);
    if (record != nullptr) {
        record->verdict = checker == nullptr ? Verdict::SKIPPED : fired ? Verdict::FIRED : Verdict::NOT_FIRED;
        record->reason = checker == nullptr ? Reason::NO_CHECKER : checker->GetReason();
    }
    return fired;
}
