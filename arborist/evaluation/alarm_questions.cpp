#include "arborist/evaluation/alarm_questions.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "arborist/evaluation/detection_customize.h"
#include "arborist/evaluation/rule_checker.h"

namespace {

void TakeParam(const std::string& paramId, const ParamMap& params, TestPara& test)
{
    const auto found = params.find(paramId);
    if (found != params.end() && found->second != nullptr) {
        test.key = found->second->key;
        test.type = found->second->type;
    }
}

} // namespace

EventRows::Questions AlarmQuestions::TestsOf(const AlarmRule::AlarmItem& item) const
{
    EventRows::Questions tests;
    const auto add = [&](TestPara para) { tests.push_back(std::make_shared<MemberTest>(mChecker, std::move(para))); };
    for (const std::shared_ptr<OrLogic>& orLogic : item.conditionList) {
        if (orLogic == nullptr || item.params.empty()) {
            continue;
        }
        if (orLogic->GetType() == RuleChecker::SINGLE_LOGIC) {
            add(GetOrLogicParamItem(*orLogic, item.params));
        }
        for (const std::shared_ptr<OrLogic::LogicItem>& logicItem : orLogic->GetLogicItemList()) {
            if (std::optional<TestPara> para = GetAndLogicParamItem(logicItem, item.params)) {
                add(std::move(*para));
            }
        }
    }
    return tests;
}

EventRows::Questions AlarmQuestions::WeightOf(const IdRange& part) const
{
    if (!DetectionCustomize::IsDmdEvent(part.first)) {
        return {};
    }
    return {DetectionCustomize::WeightQuestion([&checker = mChecker](const std::string& count) {
        checker.NoteObserved(std::string(RuleChecker::TYPE_DOUBLE), count);
    })};
}

std::vector<IdRange> AlarmQuestions::PartsOf(const IdRange& ids)
{
    std::vector<IdRange> parts;
    std::int64_t first = ids.first;
    while (first <= ids.last) {
        std::int64_t last = ids.last;
        for (const IdRange& dmd : DetectionCustomize::DMD_RANGES) {
            const std::int64_t lastAlike = first < dmd.first ? dmd.first - 1 : dmd.last;
            last = lastAlike < first ? last : std::min(last, lastAlike);
        }
        parts.push_back({static_cast<std::int32_t>(first), static_cast<std::int32_t>(last)});
        first = last + 1;
    }
    return parts;
}

TestPara AlarmQuestions::GetOrLogicParamItem(const OrLogic& orLogic, const ParamMap& params)
{
    TestPara test;
    TakeParam(orLogic.GetParamId(), params, test);
    test.logic = orLogic.GetLogic();
    test.value = orLogic.GetValue();
    return test;
}

std::optional<TestPara> AlarmQuestions::GetAndLogicParamItem(
    const std::shared_ptr<OrLogic::LogicItem>& logicItem, const ParamMap& params)
{
    if (logicItem == nullptr) {
        return std::nullopt;
    }
    TestPara test;
    TakeParam(logicItem->GetParamId(), params, test);
    test.logic = logicItem->GetLogic();
    test.value = logicItem->GetValue();
    return test;
}
