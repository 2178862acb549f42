#include "arborist/loading/fresh_records.h"

#include <memory>

#include "arborist/loading/fault_tree_parser.h"
#include "arborist/loading/tree_walk.h"

namespace {

using Bean = ThresholdOrLumbraBean;

template <typename Value>
void Refresh(Value& field, const Value& fresh)
{
    if (field != fresh) {
        field = fresh;
    }
}

void Refresh(const ParamMap& params)
{
    for (const auto& [id, param] : params) {
        if (!param->value.empty()) {
            param->value = {};
        }
    }
}

void Refresh(const ConditionList& conditions)
{
    for (const auto& condition : conditions) {
        for (const auto& item : condition->GetLogicItemList()) {
            if (item->IsResult()) {
                item->SetResult(false);
            }
        }
    }
}

void Refresh(const std::shared_ptr<TimeSet>& window)
{
    if (window != nullptr) {
        Refresh(window->timeType, TimeSet::DURATION);
    }
}

void Refresh(const AlarmRule& rule)
{
    for (const auto& item : rule.alarmItemList) {
        Refresh(item->duration);
        Refresh(item->daily_peak);
        Refresh(item->latest);
        Refresh(item->params);
        Refresh(item->conditionList);
    }
}

void Refresh(CommandRule& rule)
{
    Refresh(rule.params);
    Refresh(rule.analysisMethod.sqlItem.time.timeType, TimeSet::DURATION);
    Refresh(rule.analysisMethod.sqlItem.conditionList);
}

void Refresh(const NodeRule& rule)
{
    Refresh(rule.GetParamMap());
    Refresh(rule.GetConditionList());
}

void Refresh(Rule& rule)
{
    if (const auto* const alarm = dynamic_cast<const AlarmRule*>(&rule)) {
        Refresh(*alarm);
    } else if (auto* const command = dynamic_cast<CommandRule*>(&rule)) {
        Refresh(*command);
    } else if (const auto* const node = dynamic_cast<const NodeRule*>(&rule)) {
        Refresh(*node);
    }
}

void Refresh(EventRule& rule)
{
    if (rule.IsRuleResult()) {
        rule.SetRuleResult(false);
    }
    for (const auto& alternative : rule.GetRuleList()) {
        Refresh(alternative->result, false);
    }
}

void Refresh(Bean& bean)
{
    Refresh(bean.GetSystemParamMap());
    Refresh(bean.GetThresholdMap());
    for (const auto& item : bean.GetLumbraDataList()) {
        Refresh(item->GetParamMap());
    }
    if (bean.GetTableState() != Bean::TableState::WHOLE) {
        bean.SetTableState(Bean::TableState::WHOLE);
    }
}

void Refresh(DefDbTableBean& bean)
{
    const DefDbTableBean fresh;
    bean.SetCopyDbFileList(fresh.GetCopyDbFileList());
    bean.SetNoCopy(fresh.GetNoCopy(), fresh.GetSearchedFolder());
    bean.SetLacksCopies(fresh.LacksCopies());
    bean.SetLacksTables(fresh.LacksTables());
}

void Refresh(Event& event)
{
    // Without what is below, unlike Event::Reset.
    const EventStatus fresh = event.GetKind() == EventKind::UNDEVELOPED ? EventStatus::UNKNOWN : EventStatus::FALSE;
    if (event.GetResult() != fresh) {
        event.SetResult(fresh);
    }
    if (!event.IsObservable()) {
        event.SetObservable(true);
    }
}

void Refresh(const CommonPart::CombineCommonPart& part)
{
    for (const auto& bean : part.GetThresholdLumbraList()) {
        Refresh(*bean);
    }
    for (const auto& bean : part.GetDefDbTableCommonList()) {
        Refresh(*bean);
    }
}

} // namespace

void MakeRuleFresh(Rule& rule)
{
    Refresh(rule);
}

void MakeRecordsFresh(FaultTreeParser& parser)
{
    for (const auto& tree : parser.GetFaultTrees()) {
        ForEachEvent(*tree, [&](Event& event) {
            Refresh(event);
            if (const auto& entry = parser.GetEventRuleByEventId(event.GetId())) {
                Refresh(*entry);
            }
        });
    }
    for (const auto& rule : parser.GetNamedRules()) {
        Refresh(*rule);
    }
    if (const auto part = parser.GetCommonPart()) {
        Refresh(*part);
    }
}
