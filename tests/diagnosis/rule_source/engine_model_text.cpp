#include <sstream>

#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/event.h"
#include "arborist/model/gate.h"
#include "tests/diagnosis/rule_source/model_text.h"

namespace {

class EngineText {
public:
    std::string Of(FaultTreeParser& parser)
    {
        for (const auto& tree : parser.GetFaultTrees()) {
            mText << "tree " << tree->GetId() << "\n";
            AddEvent(*tree->GetIntermediateEvent(), 1);
        }
        for (const auto& [id, rule] : parser.GetEventRuleMap()) {
            AddEventRule(id, *rule);
        }
        for (const auto& [name, rule] : parser.GetRuleMap()) {
            AddRule(*rule);
        }
        AddItems("faults", parser.GetFaultDescList());
        AddItems("solutions", parser.GetSuggestionList());
        AddRepairs(parser);
        if (parser.GetCommonPart() != nullptr) {
            AddCommonPart(*parser.GetCommonPart());
        }
        return mText.str();
    }

private:
    void AddEvent(const Event& event, std::size_t depth)
    {
        const auto* const inner = dynamic_cast<const IntermediateEvent*>(&event);
        const bool isBasic = dynamic_cast<const BasicEvent*>(&event) != nullptr;
        const auto gate = inner == nullptr ? nullptr : inner->GetGate();
        mText << std::string(depth, ' ') << (inner != nullptr ? "inner " : isBasic ? "basic " : "undeveloped ")
              << event.GetId() << "|" << event.GetName() << "|" << event.GetUserDefined() << "|"
              << event.GetDetectMode();
        mText << (gate == nullptr ? "" : dynamic_cast<const OrGate*>(gate.get()) != nullptr ? " or" : " and") << "\n";
        for (const auto& child : gate == nullptr ? std::vector<std::shared_ptr<Event>>() : gate->GetEvents()) {
            AddEvent(*child, depth + 1);
        }
    }

    void AddEventRule(const std::string& id, const EventRule& rule)
    {
        mText << "event " << id << "\n";
        for (const auto& alternative : rule.GetRuleList()) {
            const bool isSingle = alternative->type == "singleRule";
            mText << " " << (isSingle ? "single" : alternative->type == "multipleRule" ? "group" : "unknown");
            if (!alternative->ruleName.empty()) {
                mText << " " << alternative->ruleName;
            }
            for (const std::string& name : alternative->ruleNameList) {
                mText << " " << name;
            }
            mText << "\n";
        }
    }

    void AddRule(const Rule& rule)
    {
        mText << "rule " << rule.name << "|" << rule.type << "|" << rule.platform << "|" << rule.production << "|"
              << rule.blackProducts << "|" << rule.detectScene << "|" << rule.deviceType << "\n";
        if (const auto* alarm = dynamic_cast<const AlarmRule*>(&rule)) {
            AddAlarm(*alarm);
        } else if (const auto* command = dynamic_cast<const CommandRule*>(&rule)) {
            AddCommand(*command);
        } else if (const auto* code = dynamic_cast<const CodeRule*>(&rule)) {
            mText << " code " << code->codeItem.id << "|" << code->userDefinedInfo << "\n";
        } else if (const auto* node = dynamic_cast<const NodeRule*>(&rule)) {
            AddNode(*node);
        }
    }

    void AddAlarm(const AlarmRule& rule)
    {
        for (const auto& item : rule.alarmItemList) {
            mText << " alarm " << item->type << "|" << item->GetEventIdMin() << "|" << item->GetEventIdMax() << "|"
                  << item->BeginFlag << "\n";
            for (const auto& window : {item->duration, item->daily_peak, item->latest}) {
                if (window != nullptr) {
                    mText << "  " << window->type << " " << window->period << " " << window->threshold << "\n";
                }
            }
            AddParams(item->params);
            AddConditions(item->conditionList);
        }
    }

    void AddCommand(const CommandRule& rule)
    {
        const auto& item = rule.analysisMethod.sqlItem;
        mText << " command " << rule.commonPartName << "|" << rule.analysisMethod.type << "|" << item.type << "|"
              << item.sql << "|" << item.time.period << "|" << item.BeginFlag << "\n";
        if (rule.referenceDefDb != nullptr) {
            mText << "  database " << rule.referenceDefDb->type << "|" << rule.referenceDefDb->defDBName << "|"
                  << rule.referenceDefDb->defDBNum << "\n";
        }
        AddIds("times", item.timeParamList);
        AddIds("normalized", item.normalizationParamList);
        AddParams(rule.params);
        AddConditions(item.conditionList);
    }

    void AddNode(const NodeRule& rule)
    {
        const auto& expression = rule.GetLogicExpression();
        mText << " node " << expression.GetType() << "|" << expression.GetRet() << "|" << expression.GetExpress()
              << "\n";
        for (const auto& node : rule.GetNodeInfoList()) {
            mText << "  file " << node->GetParam() << "|" << node->GetPath() << "|" << node->GetType() << "\n";
        }
        AddParams(rule.GetParamMap());
        AddConditions(rule.GetConditionList());
    }

    void AddIds(const char* word, const std::vector<std::string>& ids)
    {
        for (const std::string& id : ids) {
            mText << "  " << word << " " << id << "\n";
        }
    }

    void AddParams(const ParamMap& params)
    {
        for (const auto& [id, param] : params) {
            mText << "  param " << id << "|" << param->key << "|" << param->type << "\n";
        }
    }

    void AddConditions(const ConditionList& conditions)
    {
        for (const auto& condition : conditions) {
            mText << "  or " << condition->GetType() << "\n";
            if (condition->GetType() == "single_logic" && !condition->GetLogic().empty()) {
                mText << "   " << condition->GetLogic() << " " << condition->GetParamId() << "|" << condition->GetValue()
                      << "|" << condition->GetCommonPartParamId() << "\n";
            }
            for (const auto& item : condition->GetLogicItemList()) {
                mText << "   " << item->GetLogic() << " " << item->GetParamId() << "|" << item->GetValue() << "|\n";
            }
        }
    }

    void AddItems(const char* word, const FaultTreeParser::FaultItemList& items)
    {
        for (const auto& item : items) {
            mText << word << " " << item->GetFaultItemId() << "\n";
            AddIds("entry", item->GetResolutionSuggestions());
        }
    }

    // The list has no accessor of its own: what each event's look-up gives.
    void AddRepairs(FaultTreeParser& parser)
    {
        for (const auto& [id, rule] : parser.GetEventRuleMap()) {
            for (const auto& repair : parser.GetRepairInfoById(id)) {
                mText << "repair of " << id << " " << repair.mId << "|" << repair.mExtra << "\n";
            }
        }
    }

    void AddCommonPart(const CommonPart::CombineCommonPart& part)
    {
        for (const auto& bean : part.GetThresholdLumbraList()) {
            mText << "bean " << bean->GetName() << "|" << bean->GetPlatform() << "|" << bean->GetType() << "\n";
            AddParams(bean->GetSystemParamMap());
            AddParams(bean->GetThresholdMap());
            for (const auto& item : bean->GetThresholdItemList()) {
                AddThresholdItem(*item);
            }
            for (const auto& item : bean->GetLumbraDataList()) {
                mText << " data " << item->GetType() << "|" << item->GetAlarmIdMin() << "|" << item->GetAlarmIdMax()
                      << "\n";
                AddParams(item->GetParamMap());
            }
        }
        for (const auto& table : part.GetDefDbTableCommonList()) {
            AddTable(*table);
        }
    }

    void AddThresholdItem(const ThresholdOrLumbraBean::ThresholdItem& item)
    {
        mText << " item\n";
        for (const auto& test : item.GetConditionList()) {
            mText << "  " << test->GetLogic() << " " << test->GetParamId() << "|" << test->GetValue() << "\n";
            AddIds("in", test->GetSetList());
        }
        for (const auto& threshold : item.GetThresholdList()) {
            mText << "  threshold " << threshold->GetId() << "|" << threshold->GetValue() << "\n";
        }
    }

    void AddTable(const DefDbTableBean& table)
    {
        mText << "table " << table.GetName() << "|" << table.GetPlatform() << "|" << table.GetType() << "|"
              << table.GetDbName() << "\n";
        for (const auto& path : table.GetDbPathList()) {
            mText << " path " << path->GetPathValue() << "|" << path->GetType() << "\n";
        }
        for (const auto& create : table.GetCreateTableList()) {
            mText << " create " << create->GetTableName() << "|" << create->GetSql() << "\n";
        }
    }

    std::ostringstream mText;
};

} // namespace

std::string EngineModelText(const std::string& folder, const std::string& tag)
{
    auto info = std::make_shared<DetectInfo>();
    info->mRuleFileDir = folder;
    info->mTreeTag = tag;
    FaultTreeParser parser(info);
    parser.StartParse();
    return EngineText().Of(parser);
}
