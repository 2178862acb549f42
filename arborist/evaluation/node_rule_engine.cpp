#include "arborist/evaluation/node_rule_engine.h"

#include <algorithm>
#include <map>
#include <string_view>

#include "arborist/frame/log.h"
#include "arborist/model/rule.h"
#include "arborist/utilities/device_paths.h"
#include "arborist/utilities/file_util.h"

using Evidence::Reason;

// Finds the parameters of a rule by the text of one field, in the order of the map. Several may have the same key.
class NodeRuleEngine::ParamIndex {
public:
    ParamIndex(const ParamMap& params, std::string Param::*field) : mParams(params), mField(field)
    {
        if (HasFew()) {
            return;
        }
        for (const auto& [id, param] : params) {
            if (param != nullptr) {
                mSorted.emplace((*param).*field, param.get());
            }
        }
    }

    // Calls `visit` for those with this `text` until it returns true; returns true if it did.
    template <typename Visitor>
    bool Visit(std::string_view text, Visitor visit) const
    {
        if (HasFew()) {
            return std::any_of(mParams.begin(), mParams.end(), [&](const auto& entry) {
                return entry.second != nullptr && (*entry.second).*mField == text && visit(*entry.second);
            });
        }
        const auto [first, last] = mSorted.equal_range(text);
        return std::any_of(first, last, [&](const auto& entry) { return visit(*entry.second); });
    }

private:
    // Few parameters are searched one by one, which is cheaper than sorting them.
    bool HasFew() const { return mParams.size() <= 8; }

    const ParamMap& mParams;
    std::string Param::*mField;
    std::multimap<std::string_view, Param*> mSorted;
};

bool NodeRuleEngine::IsFaultHappened(const std::shared_ptr<Rule>& rule, const std::string& eventId)
{
    const auto* nodeRule = dynamic_cast<const NodeRule*>(rule.get());
    if (nodeRule == nullptr || eventId.empty()) {
        return Decide(nodeRule == nullptr ? Reason::NONE : Reason::NO_EVENT_ID, false);
    }
    if (nodeRule->GetNodeInfoList().empty() || nodeRule->GetParamMap().empty()) {
        return Decide(Reason::NO_NODES, false);
    }
    mIsValueMissing = false;
    auto* const record = GetPart<Evidence::Node>();
    WriteComparisonsInto(record == nullptr ? nullptr : &record->comparisons);
    const ParamIndex params(nodeRule->GetParamMap(), &Param::key);
    const bool allRead = SetParamValue(*nodeRule, params);
    RunLogicExpression(*nodeRule, params);
    const Reason outcome = CheckConditions(*nodeRule);
    return Decide(ReasonOf(outcome, allRead), outcome == Reason::CONDITION_MET);
}

// The reason for an outcome of the conditions: one that is not met may lack its file or its value. A missing file is
// noted where it is not the reason.
Reason NodeRuleEngine::ReasonOf(Reason outcome, bool allRead) const
{
    if (!allRead && outcome == Reason::CONDITION_NOT_MET) {
        return Reason::NODE_UNREADABLE;
    }
    if (!allRead) {
        Note(Reason::NODE_UNREADABLE);
    }
    return mIsValueMissing && outcome == Reason::CONDITION_NOT_MET ? Reason::NO_VALUE : outcome;
}

bool NodeRuleEngine::SetParamValue(const NodeRule& rule, const ParamIndex& params)
{
    bool allRead = true;
    for (const auto& node : rule.GetNodeInfoList()) {
        if (node == nullptr) {
            continue;
        }
        std::string value;
        const bool readable = ReadNode(node->GetPath(), value);
        allRead = allRead && readable;
        if (auto* const record = GetPart<Evidence::Node>()) {
            record->files.push_back({node->GetParam(), node->GetPath(), readable, value});
        }
        if (readable && value.empty()) {
            Note(Reason::NO_VALUE);
        }
        SetExpressNodeValue(params, node->GetParam(), value);
    }
    return allRead;
}

bool NodeRuleEngine::ReadNode(const std::string& path, std::string& value)
{
    if (mBytesLeft == 0 || !FileUtil::LoadStringFromFile(DevicePaths::Find(path).Path(), value)) {
        return false;
    }
    mBytesLeft -= std::min(mBytesLeft, value.size());
    if (mBytesLeft == 0) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN,
            "FUNc:%s: the node files have %zu bytes or more, no other is read.", "NodeRuleEngine::SetParamValue", MOST_BYTES);
    }
    return true;
}

void NodeRuleEngine::SetExpressNodeValue(
    const ParamIndex& params, const std::string& name, const std::string& value) const
{
    bool isThere = false;
    params.Visit(name, [&value, &isThere](Param& param) {
        param.value = value;
        isThere = true;
        return false;
    });
    if (!isThere) {
        Note(Reason::UNKNOWN_NAME);
    }
}

// The value of the first parameter with this name; null if there is none.
const std::string* NodeRuleEngine::GetExpressNodeValue(const ParamIndex& params, std::string_view name)
{
    const std::string* value = nullptr;
    params.Visit(name, [&value](const Param& param) {
        value = &param.value;
        return true;
    });
    return value;
}

void NodeRuleEngine::RunLogicExpression(const NodeRule& rule, const ParamIndex& params)
{
    const std::string& expression = rule.GetLogicExpression().GetExpress();
    const std::string& ret = rule.GetLogicExpression().GetRet();
    if (rule.GetLogicExpression().GetType().empty() || ret.empty() || expression.empty()) {
        return;
    }
    const Formula formula(expression);
    if (formula.IsEmpty()) {
        Note(Reason::BAD_FORMULA);
        return;
    }
    auto* const record = GetPart<Evidence::Node>();
    const auto outcome = formula.Calculate(
        [&params](std::string_view name) { return GetExpressNodeValue(params, name); }, record != nullptr);
    if (record != nullptr) {
        record->formula = {expression, outcome.grouping, outcome.result, ret};
        NoteFormula(outcome);
    }
    SetExpressNodeValue(params, ret, outcome.result);
}

void NodeRuleEngine::NoteFormula(const Formula::Outcome& outcome) const
{
    if (outcome.result.empty()) {
        Note(Reason::BAD_FORMULA);
    }
    if (outcome.hasBadNumber) {
        Note(Reason::BAD_NUMBER);
    }
    if (outcome.hasUnknownName) {
        Note(Reason::UNKNOWN_NAME);
    }
    if (outcome.hasDividedByZero) {
        Note(Reason::DIVISION_BY_ZERO);
    }
}

// CONDITION_MET, CONDITION_NOT_MET, or why no condition could decide.
Reason NodeRuleEngine::CheckConditions(const NodeRule& rule)
{
    bool hasUnknown = false;
    for (const auto& logic : rule.GetConditionList()) {
        if (logic == nullptr) {
            return Reason::NO_CONDITION;
        }
        const bool isSingle = logic->GetType() == SINGLE_LOGIC;
        if (!isSingle && logic->GetType() != MULTIPLE_LOGIC) {
            hasUnknown = true;
            continue;
        }
        if (hasUnknown) {
            Note(Reason::UNKNOWN_CONDITION);
        }
        // Only the first alternative of a known kind decides, also if it is false: rule files rely on their order.
        const bool holds = isSingle ? IsFaultForSingleNodeRule(rule.GetParamMap(), *logic)
                                    : IsFaultForMultipleNodeRule(rule.GetParamMap(), *logic);
        return holds ? Reason::CONDITION_MET : Reason::CONDITION_NOT_MET;
    }
    return hasUnknown ? Reason::UNKNOWN_CONDITION : Reason::NO_CONDITION;
}

// True if any parameter of the rule passes: the condition's own parameter id is ignored. Rule files rely on it and give
// a suitable type only to the intended parameter.
bool NodeRuleEngine::IsFaultForSingleNodeRule(const ParamMap& params, const OrLogic& logic)
{
    bool isComparable = false;
    for (const auto& [id, param] : params) {
        if (param == nullptr) {
            continue;
        }
        if (CompareParam(*param, logic.GetLogic(), logic.GetValue(), param->value)) {
            return true;
        }
        mIsValueMissing = mIsValueMissing || param->value.empty();
        isComparable = isComparable || !param->type.empty();
    }
    if (!isComparable) {
        Note(Reason::UNKNOWN_NAME);
    }
    return false;
}

bool NodeRuleEngine::IsFaultForMultipleNodeRule(const ParamMap& params, const OrLogic& logic)
{
    const ParamIndex paramsById(params, &Param::id);
    for (const auto& item : logic.GetLogicItemList()) {
        if (item != nullptr) {
            item->SetResult(IsFaultForNodeRuleItem(paramsById, *item));
        }
    }
    return logic.CheckAndListResult();
}

// Unlike a single condition, an item compares only the parameters with its own id.
bool NodeRuleEngine::IsFaultForNodeRuleItem(const ParamIndex& params, const OrLogic::LogicItem& item)
{
    bool isThere = false;
    const bool holds = params.Visit(item.GetParamId(), [&](const Param& param) {
        isThere = true;
        const bool hit = CompareParam(param, item.GetLogic(), item.GetValue(), param.value);
        mIsValueMissing = mIsValueMissing || (!hit && param.value.empty());
        NoteType(param);
        return hit;
    });
    if (!isThere) {
        mIsValueMissing = true;
        Note(Reason::UNKNOWN_NAME);
        CompareParam({{}, {}, item.GetParamId(), {}}, item.GetLogic(), item.GetValue(), {}); // noted, fails
    }
    return holds;
}
