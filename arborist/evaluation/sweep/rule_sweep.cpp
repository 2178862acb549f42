#include "arborist/evaluation/sweep/rule_sweep.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "arborist/evaluation/alarm_rule_engine.h"
#include "arborist/evaluation/common_part_preparation.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/evaluation/sweep/alarm_moments.h"
#include "arborist/evaluation/sweep/table_moments.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/stopping.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/loading/fresh_records.h"
#include "arborist/model/common_part.h"
#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"
#include "arborist/stores/common_part/common_part_db_helper.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/string_util.h"

namespace {

void SortOnce(Moments& moments)
{
    std::sort(moments.begin(), moments.end());
    moments.erase(std::unique(moments.begin(), moments.end()), moments.end());
}

// The names of all rules of an entry, each once, in the order of the alternatives.
std::vector<std::string> RuleNamesOf(const EventRule& entry)
{
    std::vector<std::string> names;
    std::set<std::string> known;
    for (const std::string& joined : RuleHelper::GetRuleNamesByRuleList(entry.GetRuleList())) {
        for (const std::string& name : StringUtil::Split(joined, RuleHelper::TYPE_COMMA)) {
            if (known.insert(name).second) {
                names.push_back(name);
            }
        }
    }
    return names;
}

// Adds moments to those for which tables are built, unless they become more than `most`.
bool AddIfFew(const Moments& moments, std::size_t most, std::set<std::int64_t>& built)
{
    const auto added = static_cast<std::size_t>(
        std::count_if(moments.begin(), moments.end(), [&built](std::int64_t moment) { return built.count(moment) == 0; }));
    if (built.size() + added > most) {
        return false;
    }
    built.insert(moments.begin(), moments.end());
    return true;
}

} // namespace

/// Passes on the first of the events that are decided for a unit.
class RuleSweep::Listener : public DetectionObserver {
public:
    explicit Listener(std::function<void(Evidence::Trouble trouble)> take) : tellTrouble(std::move(take)) {}

    void OnTrouble(Evidence::Trouble trouble) override { tellTrouble(std::move(trouble)); }
    void OnEventDecided(Evidence::Event event) override
    {
        if (isFirst && tell) {
            tell(moment, event);
        }
        isFirst = false;
    }

    std::function<void(Evidence::Trouble trouble)> tellTrouble;
    std::function<void(std::int64_t moment, const Evidence::Event& event)> tell;
    std::int64_t moment = 0;
    bool isFirst = true;
};

RuleSweep::RuleSweep(
    std::shared_ptr<DetectInfo> detectInfo, std::shared_ptr<FaultTreeParser> ruleSet, SweepRequest request,
    std::function<void(Evidence::Trouble trouble)> tellTrouble)
    : mDetectInfo(std::move(detectInfo)), mRuleSet(std::move(ruleSet)), mRequest(std::move(request)),
      mRange{mRequest.from, mRequest.until}, mRuleHelper(std::make_shared<RuleHelper>(mDetectInfo, mRuleSet)),
      mEvents(std::make_shared<RuleEngineHelper>()), mListener(std::make_unique<Listener>(std::move(tellTrouble))),
      mDecider(RuleDecider(mRuleSet, mRuleHelper, RuleCheckers(mRuleHelper, mEvents, mRuleSet, mDetectInfo)))
{
    mDecider.GetRules().SetObserver(mListener.get());
}

RuleSweep::~RuleSweep() = default;

SweepPlan RuleSweep::Plan()
{
    mMoment.Set(mRange.last);
    PrepareCommonPart();
    for (const auto& tree : mRuleSet->GetFaultTrees()) {
        if (tree != nullptr) {
            FetchTree(tree);
        }
    }
    SweepPlan plan;
    for (Unit& unit : mUnits) {
        FindMoments(unit, plan);
    }
    LimitTables(plan);
    NoteUnsweptTrees(plan);
    MakeTurns();
    for (std::size_t turn = 0; turn < mTurns.size(); ++turn) {
        plan.moments += turn > 0 && mTurns[turn].moment != mTurns[turn - 1].moment ? 1 : 0;
    }
    return plan;
}

void RuleSweep::PrepareCommonPart()
{
    CommonPartDbHelper::GetInstance().Init();
    const auto block = mRuleSet->GetCommonPart();
    if (block != nullptr && !(block->GetThresholdLumbraList().empty() && block->GetDefDbTableCommonList().empty())) {
        mCommonPart = std::make_shared<CommonPart>();
        mCommonPart->SetCombineCommon(block);
        mDecider.GetRules().SetCommonPart(mCommonPart);
        ::PrepareCommonPart(
            mCommonPart, mRuleSet->GetRuleFileReport().path, mDetectInfo->mDeviceDetails.get(), mListener.get());
    }
    mTableMoments = std::make_unique<TableMoments>(block, mRange);
}

void RuleSweep::FetchTree(const std::shared_ptr<FaultTree>& tree)
{
    const auto& entries = mRuleSet->GetEventRuleMap();
    mEvents->Reset();
    tree->Reset();
    mEvents->FetchEvent(tree->GetIntermediateEvent());
    mEvents->MarkObservable(entries);
    Tree swept{tree, {}};
    for (const auto& event : mEvents->GetAllEventList()) {
        SweptEvent& place = swept.events.emplace_back(SweptEvent{event});
        const auto entry = entries.find(event->GetId());
        if (entry == entries.end()) {
            mDecider.GetTreeChecks().StartTree();
            mDecider.GetTreeChecks().AddWithoutEntry(*event);
            place.check = mDecider.GetTreeChecks().GetChecks().back();
            continue;
        }
        const auto [unit, isNew] = mUnitOf.emplace(event->GetId(), mUnits.size());
        if (isNew) {
            mUnits.push_back({event->GetId(), entry->second, {}});
        }
        mUnits[unit->second].places.push_back({mTrees.size(), swept.events.size() - 1});
    }
    mTrees.push_back(std::move(swept));
}

void RuleSweep::FindMoments(Unit& unit, SweepPlan& plan)
{
    StopPoint::Pass();
    if (unit.entry == nullptr) {
        return;
    }
    const std::vector<std::string> names = RuleNamesOf(*unit.entry);
    std::set<std::string> known; // the texts of its events: a repair in such a text belongs to that event alone
    for (const Place& place : unit.places) {
        const auto& event = mTrees[place.tree].events[place.event].event;
        if (event->GetDetectMode() == EventDecider::DETECT_INTERACTION_RULE || !known.insert(event->GetUserDefined()).second) {
            continue;
        }
        mRuleHelper->SetCurrentEvent(event);
        for (const std::string& name : names) {
            FindMomentsOfRule(unit, name, plan);
        }
    }
    SortOnce(unit.moments);
    SortOnce(unit.tableMoments);
}

void RuleSweep::FindMomentsOfRule(Unit& unit, const std::string& ruleName, SweepPlan& plan)
{
    const std::shared_ptr<Rule> rule = mRuleSet->GetRuleByRuleName(ruleName);
    if (!mRuleHelper->IsSpecifiedRuleItemSupported(rule)) {
        return;
    }
    const auto unswept = mRequest.unsweptRules.find(ruleName);
    const char* problem = unswept == mRequest.unsweptRules.end() ? nullptr : unswept->second.c_str();
    if (const auto alarm = std::dynamic_pointer_cast<AlarmRule>(rule)) {
        auto& checker = static_cast<AlarmRuleEngine&>(*mDecider.GetRules().GetCheckers().Get(rule.get(), mCommonPart));
        checker.ReadAhead();
        problem = AlarmMoments(checker, mRange).Add(alarm, unit.eventId, unit.moments);
    } else if (const auto command = std::dynamic_pointer_cast<CommandRule>(rule)) {
        const auto& sqlItem = command->analysisMethod.sqlItem;
        mTableMoments->Add(*command,
            mRuleHelper->GetFloors(sqlItem.time.period, sqlItem.BeginFlag, unit.eventId), unit.tableMoments);
        if (command->referenceDefDb == nullptr && mCommonPart != nullptr) {
            unit.tableRules.insert(ruleName);
        }
    }
    if (problem != nullptr) {
        plan.unswept.push_back({unit.eventId, ruleName, problem});
    }
}

// Derived tables are built for the events whose tables change least often, as long as their moments are few enough.
void RuleSweep::LimitTables(SweepPlan& plan)
{
    std::vector<Unit*> units;
    for (Unit& unit : mUnits) {
        if (unit.HasTables()) {
            units.push_back(&unit);
        }
    }
    std::stable_sort(units.begin(), units.end(),
        [](const Unit* one, const Unit* other) { return one->tableMoments.size() < other->tableMoments.size(); });
    std::set<std::int64_t> built;
    for (Unit* const unit : units) {
        const bool isAskedFor = IsAskedFor(*unit);
        if (isAskedFor && AddIfFew(unit->tableMoments, mRequest.mostTableMoments, built)) {
            continue;
        }
        unit->isLeftOut = true;
        for (const std::string& name : unit->tableRules) {
            plan.unswept.push_back({unit->eventId, name, isAskedFor ? "too_many_moments" : "not_asked_for",
                unit->tableMoments.size()});
        }
        unit->tableMoments.clear();
    }
    plan.tableMoments = built.size();
    for (const Unit& unit : mUnits) {
        if (unit.HasTables()) {
            plan.asked.push_back({unit.eventId, unit.tableMoments.size() + 1});
        }
    }
}

bool RuleSweep::IsAskedFor(const Unit& unit) const
{
    if (mRequest.tree.empty() && mRequest.rule.empty()) {
        return true;
    }
    const bool hasTree = std::any_of(unit.places.begin(), unit.places.end(),
        [this](const Place& place) { return mTrees[place.tree].tree->GetId() == mRequest.tree; });
    const std::vector<std::string> names = RuleNamesOf(*unit.entry);
    return (hasTree && !mRequest.tree.empty())
        || (!mRequest.rule.empty() && std::find(names.begin(), names.end(), mRequest.rule) != names.end());
}

void RuleSweep::NoteUnsweptTrees(SweepPlan& plan) const
{
    std::set<std::size_t> trees;
    for (const SweepPlan::Unswept& rule : plan.unswept) {
        for (const Place& place : mUnits[mUnitOf.at(rule.eventId)].places) {
            trees.insert(place.tree);
        }
    }
    plan.unsweptTrees.assign(trees.begin(), trees.end());
}

void RuleSweep::MakeTurns()
{
    for (std::uint32_t unit = 0; unit < mUnits.size(); ++unit) {
        MakeTurnsOf(unit);
        mUnits[unit].moments = Moments();
        mUnits[unit].tableMoments = Moments();
    }
    std::sort(mTurns.begin(), mTurns.end());
    if (std::any_of(mUnits.begin(), mUnits.end(), [](const Unit& unit) { return !unit.tableRules.empty(); })) {
        mDecider.GetRules().SetKnownAnswers(
            [this](const std::string& ruleName) { return mKept.Find(*mRuleHelper->GetCurrentEvent(), ruleName); });
    }
}

// A rule that is left out is asked once, so that its event has a record of it.
void RuleSweep::MakeTurnsOf(std::uint32_t number)
{
    const Unit& unit = mUnits[number];
    mTurns.push_back({mRange.first, number, !unit.tableRules.empty()});
    const Moments& tables = unit.tableMoments;
    for (const std::int64_t moment : tables) {
        mTurns.push_back({moment, number, true});
    }
    for (const std::int64_t moment : unit.moments) {
        if (!std::binary_search(tables.begin(), tables.end(), moment)) {
            mTurns.push_back({moment, number, false});
        }
    }
}

void RuleSweep::Run(const std::function<void(std::int64_t moment)>& judge,
    const std::function<void(std::int64_t moment, const Evidence::Event& event)>& tell)
{
    mListener->tell = tell;
    if (mTurns.empty()) { // no event has rules
        judge(mRange.first);
    }
    for (auto turn = mTurns.begin(); turn != mTurns.end();) {
        const std::int64_t moment = turn->moment;
        const auto end = std::find_if(turn, mTurns.end(), [moment](const Turn& other) { return other.moment != moment; });
        mMoment.Set(moment);
        mAt = moment;
        StopPoint::Pass();
        mListener->moment = moment;
        if (std::any_of(turn, end, [this](const Turn& at) { return at.asksTables && mUnits[at.unit].HasTables(); })) {
            BuildTables();
        }
        std::for_each(turn, end, [this](const Turn& at) { MakeRulesFresh(at); });
        for (; turn != end; ++turn) {
            if (turn->asksTables) {
                AskTables(mUnits[turn->unit]);
            }
            Decide(mUnits[turn->unit]);
        }
        judge(moment);
    }
}

void RuleSweep::BuildTables()
{
    if (mCommonPart != nullptr && !mCommonPart->GetCombineCommon()->GetThresholdLumbraList().empty()) {
        CommonPartDbHelper::GetInstance().IsSuccessCreateJankDb(DevicePaths::EventLog(), mCommonPart, true);
    }
}

// A statement may leave a parameter the value that it has; that of a detection has none yet.
void RuleSweep::MakeRulesFresh(const Turn& turn)
{
    if (turn.asksTables) {
        for (const std::string& name : mUnits[turn.unit].tableRules) {
            if (const auto& rule = mRuleSet->GetRuleByRuleName(name)) {
                MakeRuleFresh(*rule);
            }
        }
    }
}

void RuleSweep::AskTables(const Unit& unit)
{
    for (const Place& place : unit.places) {
        const auto& event = mTrees[place.tree].events[place.event].event;
        if (event->GetDetectMode() != EventDecider::DETECT_INTERACTION_RULE) {
            mRuleHelper->SetCurrentEvent(event);
            mKept.Ask(mDecider.GetRules(), *event, unit.tableRules);
        }
    }
}

// As a detection of this moment would, which begins with a fresh entry.
void RuleSweep::Decide(Unit& unit)
{
    if (unit.entry != nullptr) {
        unit.entry->SetRuleResult(false);
        for (const auto& alternative : unit.entry->GetRuleList()) {
            if (alternative != nullptr) {
                alternative->result = false;
            }
        }
    }
    TreeChecks& checks = mDecider.GetTreeChecks();
    checks.StartDetection();
    checks.StartTree();
    mListener->isFirst = true;
    for (const Place& place : unit.places) {
        Tree& tree = mTrees[place.tree];
        SweptEvent& swept = tree.events[place.event];
        mRuleHelper->SetCurrentEvent(swept.event);
        const bool isTrue = mDecider.IsFaultHappenedForEvent(*swept.event, unit.entry);
        const Evidence::Check check = checks.GetChecks().back();
        tree.isChanged = tree.isChanged || isTrue != swept.isTrue || check != swept.check;
        swept.isTrue = isTrue;
        swept.check = check;
    }
}
