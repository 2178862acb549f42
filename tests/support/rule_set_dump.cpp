#include "tests/support/rule_set_dump.h"

#include <memory>
#include <type_traits>

#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/event.h"
#include "arborist/model/gate.h"

namespace {

class Dump {
public:
    // One line of a record: its word and its fields.
    template <typename... Fields>
    void Line(const char* word, const Fields&... fields)
    {
        mLine = word;
        (Add(fields), ...);
        lines.push_back(mLine);
    }

    void Params(const ParamMap& params)
    {
        for (const auto& [id, param] : params) {
            Line("param", id, param->key, param->type, param->id, param->value);
        }
    }

    void Conditions(const ConditionList& conditions)
    {
        for (const auto& condition : conditions) {
            Line("condition", condition->GetType(), condition->GetLogic(), condition->GetLogicType(),
                condition->GetParamId(), condition->GetValue(), condition->GetCommonPartParamId());
            for (const auto& item : condition->GetLogicItemList()) {
                Line("item", item->GetLogic(), item->GetParamId(), item->GetValue(), item->IsResult());
            }
        }
    }

    void Window(const TimeSet& window)
    {
        Line("window", window.type, window.period, window.threshold, window.isBadPeriod, window.isBadThreshold,
            window.timeType);
    }

    void Window(const std::shared_ptr<TimeSet>& window)
    {
        if (window != nullptr) {
            Window(*window);
        }
    }

    void Family(const AlarmRule& rule)
    {
        for (const auto& item : rule.alarmItemList) {
            Line("alarm", item->type, item->Eventid_Min, item->Eventid_Max, item->flag, item->BeginFlag);
            Window(item->duration);
            Window(item->daily_peak);
            Window(item->latest);
            Params(item->params);
            Conditions(item->conditionList);
        }
    }

    void Family(const CommandRule& rule)
    {
        const CommandRule::SqlItem& sql = rule.analysisMethod.sqlItem;
        Line("command", rule.analysisMethod.type, rule.commonPartDomain, rule.commonPartName, sql.type, sql.sql,
            sql.timeParamList, sql.normalizationParamList, sql.BeginFlag);
        Window(sql.time);
        Conditions(sql.conditionList);
        Params(rule.params);
        if (const auto& db = rule.referenceDefDb) {
            Line("database", db->type, db->defDBDomain, db->defDBName, db->defDBNum);
        }
    }

    void Family(const NodeRule& rule)
    {
        const auto& expression = rule.GetLogicExpression();
        Line("expression", expression.GetExpress(), expression.GetRet(), expression.GetType());
        Params(rule.GetParamMap());
        for (const auto& node : rule.GetNodeInfoList()) {
            Line("node", node->GetParam(), node->GetPath(), node->GetType());
        }
        Conditions(rule.GetConditionList());
    }

    void OfRule(const Rule& rule)
    {
        Line("rule", rule.GetRuleType(), rule.name, rule.type, rule.platform, rule.production, rule.blackProducts,
            rule.detectScene, rule.deviceType);
        if (const auto* const alarm = dynamic_cast<const AlarmRule*>(&rule)) {
            Family(*alarm);
        } else if (const auto* const command = dynamic_cast<const CommandRule*>(&rule)) {
            Family(*command);
        } else if (const auto* const node = dynamic_cast<const NodeRule*>(&rule)) {
            Family(*node);
        } else if (const auto* const code = dynamic_cast<const CodeRule*>(&rule)) {
            Line("code", code->codeItem.id, code->userDefinedInfo);
        }
    }

    void OfEventRule(const EventRule& rule)
    {
        Line("event rule", rule.SetEventId(), rule.IsRuleResult());
        for (const auto& alternative : rule.GetRuleList()) {
            Line("or", alternative->type, alternative->ruleName, alternative->result, alternative->ruleNameList);
        }
    }

    void Bean(const ThresholdOrLumbraBean& bean)
    {
        Line("bean", bean.GetName(), bean.GetPlatform(), bean.GetType(), bean.GetLine(), bean.GetTableState());
        Params(bean.GetSystemParamMap());
        Params(bean.GetThresholdMap());
        for (const auto& item : bean.GetThresholdItemList()) {
            Line("threshold item", item->GetType());
            for (const auto& test : item->GetConditionList()) {
                Line("test", test->GetType(), test->GetLogic(), test->GetParamId(), test->GetValue(), test->GetSetList());
            }
            for (const auto& threshold : item->GetThresholdList()) {
                Line("threshold", threshold->GetId(), threshold->GetValue());
            }
        }
        for (const auto& item : bean.GetLumbraDataList()) {
            Line("data", item->GetType(), item->GetAlarmIdMin(), item->GetAlarmIdMax());
            Params(item->GetParamMap());
        }
    }

    void Bean(const DefDbTableBean& bean)
    {
        Line("databases", bean.GetName(), bean.GetPlatform(), bean.GetType(), bean.GetDbName(), bean.GetLine(),
            bean.GetCopyDbFileList(), bean.GetNoCopy(), bean.GetSearchedFolder(), bean.LacksCopies(), bean.LacksTables());
        for (const auto& path : bean.GetDbPathList()) {
            Line("path", path->GetPathValue(), path->IsDecompress(), path->GetType(), path->GetDecompressTypeList());
        }
        for (const auto& table : bean.GetCreateTableList()) {
            Line("table", table->GetTableName(), table->GetSql());
        }
    }

    void OfEvent(const Event& event)
    {
        Line("event", event.GetKind(), event.GetId(), event.GetName(), event.GetValue(), event.GetUserDefined(),
            event.GetDetectMode(), event.GetResult(), event.IsObservable());
        const IntermediateEvent* const above = event.AsIntermediate();
        if (above != nullptr && above->GetGate() != nullptr) {
            Line("gate", above->GetGate()->GetKind());
            for (const auto& below : above->GetGate()->GetEvents()) {
                OfEvent(*below);
            }
            Line("end of gate");
        }
    }

    std::vector<std::string> lines;

private:
    void Add(const std::string& text) { mLine += "|" + text; }
    void Add(const std::vector<std::string>& texts)
    {
        for (const std::string& text : texts) {
            mLine += "|- " + text;
        }
    }
    template <typename Number>
        requires std::is_integral_v<Number> || std::is_enum_v<Number>
    void Add(Number number)
    {
        mLine += "|" + std::to_string(static_cast<long>(number));
    }

    std::string mLine;
};

} // namespace

std::vector<std::string> DumpOf(const FaultTreeParser& parser)
{
    Dump dump;
    dump.Line("version", parser.GetTreeFileVersion());
    for (const auto& tree : parser.GetFaultTrees()) {
        dump.Line("tree", tree->GetId(), tree->GetVersion(), tree->GetType(), tree->IsResult());
        dump.OfEvent(*tree->GetIntermediateEvent());
    }
    for (const auto& [name, rule] : parser.GetRuleMap()) {
        dump.OfRule(*rule);
    }
    for (const auto& [id, rule] : parser.GetEventRuleMap()) {
        dump.OfEventRule(*rule);
    }
    if (const auto part = parser.GetCommonPart()) {
        for (const auto& bean : part->GetThresholdLumbraList()) {
            dump.Bean(*bean);
        }
        for (const auto& bean : part->GetDefDbTableCommonList()) {
            dump.Bean(*bean);
        }
    }
    return std::move(dump.lines);
}
