#include "arborist/model/rule.h"

#include "arborist/utilities/string_util.h"

// NOLINTNEXTLINE(performance-unnecessary-value-param): the signature is part of the given interface
std::int32_t AlarmRule::AlarmItem::ParseAlarmIdToInt(std::string text)
{
    // An absent bound is no error, and the conversion would log one.
    return text.empty() ? 0 : StringUtil::StringToInt32Def(text, 0, 10);
}

void NodeRule::SetLogicExpression(const LogicExpression& expression)
{
    logicExpression.SetExpress(expression.GetExpress());
    logicExpression.SetRet(expression.GetRet());
    logicExpression.SetType(expression.GetType());
}

void NodeRule::InsertParamMap(const ParamMap& params)
{
    paramMap.insert(params.begin(), params.end());
}

void NodeRule::InsertNodeInfoList(const NodeInfoList& nodes)
{
    nodeInfoList.insert(nodeInfoList.end(), nodes.begin(), nodes.end());
}

void NodeRule::InsertConditionList(const ConditionList& conditions)
{
    conditionList.insert(conditionList.end(), conditions.begin(), conditions.end());
}
