#include "arborist/loading/rule_element_parse.h"

#include <utility>

#include "arborist/frame/log.h"
#include "arborist/loading/condition_element_parse.h"
#include "arborist/loading/params_element_parse.h"
#include "arborist/loading/xml_walk.h"

using tinyxml2::XMLElement;
using XmlWalk::AssignText;
using XmlWalk::Attribute;
using XmlWalk::ChildIds;
using XmlWalk::Children;
using XmlWalk::FindFirstChildren;
using XmlWalk::IsNamed;
using XmlWalk::ReadAttributes;

namespace {

// Reads an attribute; false for a text that is no number, which leaves `number` unchanged, as a missing one does.
bool IsReadAsNumber(const XMLElement& element, const char* attribute, std::int32_t& number)
{
    return element.QueryIntAttribute(attribute, &number) != tinyxml2::XML_WRONG_ATTRIBUTE_TYPE;
}

} // namespace

void RuleElementParse::ParseRuleAttr(Rule& rule) const
{
    ReadAttributes(mElement, {
        {"name", &rule.name},
        {"type", &rule.type},
        {"platform", &rule.platform},
        {"production", &rule.production},
        {"blackProducts", &rule.blackProducts},
        {"detectScene", &rule.detectScene},
        {"deviceType", &rule.deviceType}});
}

void RuleElementParse::ParseTimeSet(const XMLElement& element, TimeSet& timeSet)
{
    timeSet.isBadPeriod = !IsReadAsNumber(element, "period", timeSet.period);
    timeSet.isBadThreshold = !IsReadAsNumber(element, "threshold", timeSet.threshold);
    ReadAttributes(element, {{"type", &timeSet.type}});
}

std::shared_ptr<Rule> AlarmRuleElementParse::Parse() const
{
    if (!IsNamed(mElement, "alarmRule")) {
        return nullptr;
    }
    auto rule = std::make_shared<AlarmRule>();
    ParseRuleAttr(*rule);
    for (const XMLElement& alarmId : Children(mElement, "alarmId")) {
        rule->alarmItemList.push_back(ParseAlarmItem(alarmId));
    }
    rule->alarmItemList.shrink_to_fit();
    return rule;
}

std::shared_ptr<AlarmRule::AlarmItem> AlarmRuleElementParse::ParseAlarmItem(const XMLElement& element)
{
    auto item = std::make_shared<AlarmRule::AlarmItem>();
    ParseAlarmItemAttrs(element, *item);
    for (const XMLElement& time : Children(element, "time")) {
        auto timeSet = std::make_shared<TimeSet>();
        ParseTimeSet(time, *timeSet);
        // A later window of the same kind replaces the earlier one; a window of an unknown kind is dropped.
        if (timeSet->type == "duration") {
            item->duration = std::move(timeSet);
        } else if (timeSet->type == "daily_peak") {
            item->daily_peak = std::move(timeSet);
        } else if (timeSet->type == "latest") {
            item->latest = std::move(timeSet);
        }
    }
    const XMLElement* params = nullptr;
    const XMLElement* condition = nullptr;
    FindFirstChildren(element, {{"params", &params}, {"condition", &condition}});
    ParamsElementParse(params).Parse(item->params);
    ConditionElementParse(condition).Parse(item->conditionList);
    return item;
}

void AlarmRuleElementParse::ParseAlarmItemAttrs(const XMLElement& element, AlarmRule::AlarmItem& item)
{
    ReadAttributes(element, {
        {"type", &item.type},
        {"Eventid_Min", &item.Eventid_Min},
        {"Eventid_Max", &item.Eventid_Max},
        {"BeginFlag", &item.BeginFlag}});
}

std::shared_ptr<Rule> CodeRuleElementParse::Parse() const
{
    if (!IsNamed(mElement, "codeRule")) {
        return nullptr;
    }
    const XMLElement* detectInfo = nullptr;
    const XMLElement* userDefinedInfo = nullptr;
    FindFirstChildren(mElement, {{"detectInfo", &detectInfo}, {"userDefinedInfo", &userDefinedInfo}});
    if (detectInfo == nullptr) {
        return nullptr;
    }
    auto rule = std::make_shared<CodeRule>();
    ParseRuleAttr(*rule);
    ReadAttributes(*detectInfo, {{"id", &rule->codeItem.id}});
    AssignText(userDefinedInfo, rule->userDefinedInfo);
    return rule;
}

std::shared_ptr<Rule> CommandRuleElementParse::Parse() const
{
    if (!IsNamed(mElement, "commandRule")) {
        return nullptr;
    }
    auto rule = std::make_shared<CommandRule>();
    ParseRuleAttr(*rule);
    const XMLElement* commonPart = nullptr;
    const XMLElement* defDb = nullptr;
    const XMLElement* returnParam = nullptr;
    const XMLElement* analysisMethod = nullptr;
    FindFirstChildren(mElement, {
        {"referenceCommonPart", &commonPart},
        {"referenceDefDB", &defDb},
        {"queryReturnParam", &returnParam},
        {"AnalysisMethod", &analysisMethod}});
    if (commonPart != nullptr) {
        AssignText(commonPart->FirstChildElement("commonPartDomain"), rule->commonPartDomain);
        AssignText(commonPart->FirstChildElement("commonPartName"), rule->commonPartName);
    }
    if (defDb != nullptr) {
        rule->referenceDefDb = ParseRefDefDb(*defDb);
    }
    for (const XMLElement& params : Children(returnParam, "params")) {
        ParamsElementParse(&params).Parse(rule->params);
    }
    if (analysisMethod != nullptr) {
        ParseAnalysisMethod(*analysisMethod, rule->analysisMethod);
    }
    return rule;
}

std::shared_ptr<CommandRule::ReferenceDefDb> CommandRuleElementParse::ParseRefDefDb(const XMLElement& element)
{
    auto reference = std::make_shared<CommandRule::ReferenceDefDb>();
    ReadAttributes(element, {{"type", &reference->type}});
    AssignText(element.FirstChildElement("defDBDomain"), reference->defDBDomain);
    AssignText(element.FirstChildElement("defDBName"), reference->defDBName);
    AssignText(element.FirstChildElement("defDBNum"), reference->defDBNum);
    return reference;
}

void CommandRuleElementParse::ParseAnalysisMethod(const XMLElement& element, CommandRule::AnalysisMethod& method)
{
    ReadAttributes(element, {{"type", &method.type}});
    const XMLElement* sqlCondition = element.FirstChildElement("SQL_Condition");
    if (sqlCondition == nullptr) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: sqlCondition element is null.",
            "CommandRuleElementParse::ParseAnalysisMethod");
        return;
    }
    ParseSqlItem(*sqlCondition, method.sqlItem);
}

void CommandRuleElementParse::ParseSqlItem(const XMLElement& sqlCondition, CommandRule::SqlItem& item)
{
    ReadAttributes(sqlCondition, {{"type", &item.type}});
    const XMLElement* sqlItem = sqlCondition.FirstChildElement("SQLItem");
    if (sqlItem == nullptr) {
        return;
    }
    const XMLElement* sql = nullptr;
    const XMLElement* time = nullptr;
    const XMLElement* beginFlag = nullptr;
    const XMLElement* condition = nullptr;
    const XMLElement* normalization = nullptr;
    FindFirstChildren(*sqlItem, {
        {"sql", &sql},
        {"time", &time},
        {"BeginFlag", &beginFlag},
        {"condition", &condition},
        {"normalization", &normalization}});
    AssignText(sql, item.sql);
    if (time != nullptr) {
        ParseTimeElement(*time, item);
    }
    // Here the flag is an element; in an "alarmId" it is an attribute. Rule sets use both forms.
    if (beginFlag != nullptr) {
        ReadAttributes(*beginFlag, {{"value", &item.BeginFlag}});
    }
    ConditionElementParse(condition).Parse(item.conditionList);
    if (normalization != nullptr) {
        ParseNormalElement(*normalization, item);
    }
}

void CommandRuleElementParse::ParseTimeElement(const XMLElement& element, CommandRule::SqlItem& item)
{
    ParseTimeSet(element, item.time);
}

void CommandRuleElementParse::ParseNormalElement(const XMLElement& element, CommandRule::SqlItem& item)
{
    item.normalizationParamList =
        ChildIds(element.FirstChildElement("normalizationParam"), "defineNormalizationProp");
    item.timeParamList = ChildIds(element.FirstChildElement("timeParam"), "defineTimeProp");
}

std::shared_ptr<Rule> NodeAlarmElementParse::Parse() const
{
    if (!IsNamed(mElement, "nodeRule")) {
        return nullptr;
    }
    auto rule = std::make_shared<NodeRule>();
    ParseRuleAttr(*rule);
    NodeRule::NodeInfoList nodes;
    for (const XMLElement& nodeInfo : Children(mElement, "nodeInfo")) {
        nodes.push_back(ParseNodeInfo(nodeInfo));
    }
    rule->SetNodeInfoList(std::move(nodes));

    const XMLElement* paramsElement = nullptr;
    const XMLElement* expression = nullptr;
    const XMLElement* condition = nullptr;
    FindFirstChildren(mElement, {
        {"params", &paramsElement}, {"logicExpression", &expression}, {"condition", &condition}});
    ParamMap params;
    ParamsElementParse(paramsElement).Parse(params);
    rule->SetParamMap(std::move(params));
    if (expression != nullptr) {
        rule->SetLogicExpression(ParseLogicExpression(*expression));
    }
    ConditionList conditions;
    ConditionElementParse(condition).Parse(conditions);
    rule->SetConditionList(std::move(conditions));
    return rule;
}

std::shared_ptr<NodeInfo> NodeAlarmElementParse::ParseNodeInfo(const XMLElement& element)
{
    auto node = std::make_shared<NodeInfo>();
    node->SetType(Attribute(element, "type"));
    node->SetPath(Attribute(element, "path"));
    node->SetParam(Attribute(element, "param"));
    return node;
}

NodeRule::LogicExpression NodeAlarmElementParse::ParseLogicExpression(const XMLElement& element)
{
    NodeRule::LogicExpression expression;
    expression.SetType(Attribute(element, "type"));
    expression.SetRet(Attribute(element, "ret"));
    expression.SetExpress(Attribute(element, "express"));
    return expression;
}
