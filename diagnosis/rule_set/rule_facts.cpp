#include "diagnosis/rule_set/rule_facts.h"

namespace diagnosis::rule_set {

namespace {

using rule_source::AlarmItem;
using rule_source::AlarmRule;
using rule_source::CodeRule;
using rule_source::CommandRule;
using rule_source::Element;
using rule_source::Family;
using rule_source::NodeRule;
using rule_source::Rule;
using rule_source::TimeWindow;

void AddWindow(const TimeWindow& window, FactList facts)
{
    if (window.element) {
        facts.Add("period", std::to_string(window.period), window.element);
        facts.Add("threshold", std::to_string(window.threshold), window.element);
    }
}

void AddAlarmItem(const AlarmItem& item, FactList facts)
{
    facts.Add("type", item.type, item.element);
    facts.Add("ids", std::to_string(item.ids.min.value) + " to " + std::to_string(item.ids.max.value), item.element);
    facts.Add("BeginFlag", item.beginFlag, item.element);
    for (std::size_t kind = 0; kind < rule_source::WINDOW_WORDS.size(); ++kind) {
        AddWindow(item.windows[kind], facts.Part(rule_source::WINDOW_WORDS[kind]));
    }
    facts.Add(item.params);
    facts.Add(item.condition);
}

void AddAlarmRule(const AlarmRule& rule, const FactList& facts)
{
    int number = 0;
    for (const AlarmItem& item : rule.items) {
        AddAlarmItem(item, facts.Part("alarm item " + std::to_string(++number)));
    }
}

std::string IdsOf(const std::vector<Element>& elements)
{
    std::string ids;
    for (const Element element : elements) {
        ids += (ids.empty() ? "" : ", ") + std::string(element.Value("id"));
    }
    return ids;
}

void AddSqlItem(const CommandRule& rule, FactList& facts)
{
    facts.Add("sql", rule.sql, rule.sqlElement);
    facts.Add("time type", rule.time.type, rule.time.element);
    AddWindow(rule.time, facts.Part("time"));
    facts.Add("BeginFlag", rule.beginFlag, rule.beginFlagElement);
    facts.Add(rule.condition);
    facts.Add("normalization parameters", IdsOf(rule.normalizationParams), rule.normalization);
    facts.Add("time parameters", IdsOf(rule.timeParams), rule.normalization);
}

void AddCommandRule(const CommandRule& rule, FactList& facts)
{
    facts.Add("shared data", rule.commonPartName, rule.commonPartNameElement);
    if (rule.referenceDefDb) {
        FactList database = facts.Part("database");
        database.Add("type", rule.referenceType.empty() ? "none" : rule.referenceType, rule.referenceDefDb);
        database.Add("defDBName", rule.defDbName, rule.defDbNameElement);
        database.Add("defDBNum", rule.defDbNum, rule.defDbNumElement);
    }
    facts.Add(rule.params);
    facts.Add("analysis type", rule.analysisType, rule.analysisMethod);
    facts.Add("SQL_Condition type", rule.sqlConditionType, rule.sqlCondition);
    AddSqlItem(rule, facts);
}

void AddCodeRule(const CodeRule& rule, FactList& facts)
{
    facts.Add("detection code", rule.code, rule.detectInfo);
    facts.Add("userDefinedInfo", rule.userDefinedInfo.Text(), rule.userDefinedInfo);
}

void AddNodeRule(const NodeRule& rule, FactList& facts)
{
    int number = 0;
    for (const rule_source::NodeInfo& node : rule.nodes) {
        FactList part = facts.Part("node " + std::to_string(++number));
        part.Add("path", node.path, node.element);
        part.Add("param", node.param, node.element);
        part.Add("type", node.type, node.element);
    }
    facts.Add(rule.params);
    FactList expression = facts.Part("logicExpression");
    expression.Add("type", rule.expressionType, rule.expression);
    expression.Add("ret", rule.ret, rule.expression);
    expression.Add("express", rule.express, rule.expression);
    facts.Add(rule.condition);
}

} // namespace

void AddRuleFacts(const Rule& rule, FactList& facts)
{
    facts.Add("type", rule.type, rule.element);
    facts.Add("detectScene", rule.detectScene, rule.element);
    facts.Add("production", rule.production, rule.element);
    facts.Add("blackProducts", rule.blackProducts, rule.element);
    facts.Add("platform", rule.platform, rule.element);
    facts.Add("deviceType", rule.deviceType, rule.element);
    switch (rule.family) {
    case Family::ALARM:
        AddAlarmRule(static_cast<const AlarmRule&>(rule), facts);
        break;
    case Family::COMMAND:
        AddCommandRule(static_cast<const CommandRule&>(rule), facts);
        break;
    case Family::CODE:
        AddCodeRule(static_cast<const CodeRule&>(rule), facts);
        break;
    case Family::NODE:
        AddNodeRule(static_cast<const NodeRule&>(rule), facts);
        break;
    }
}

} // namespace diagnosis::rule_set
