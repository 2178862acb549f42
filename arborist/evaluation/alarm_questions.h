#ifndef ARBORIST_EVALUATION_ALARM_QUESTIONS_H
#define ARBORIST_EVALUATION_ALARM_QUESTIONS_H

#include <memory>
#include <optional>
#include <vector>

#include "arborist/evaluation/alarm_window.h"
#include "arborist/evaluation/member_test.h"
#include "arborist/model/id_range.h"
#include "arborist/model/rule.h"
#include "arborist/stores/event_log/event_rows.h"

class RuleChecker;

/// The questions that alarm items ask about the rows of the event log: whether a row passes a test, or how much it
/// weighs. They refer to the checker, which notes what a row can't answer.
class AlarmQuestions {
public:
    explicit AlarmQuestions(const RuleChecker& checker) : mChecker(checker) {}

    /// The tests of all conditions of an item.
    EventRows::Questions TestsOf(const AlarmRule::AlarmItem& item) const;
    /// The question about the rows of a part, without tests: their weight, or none where rows don't weigh.
    EventRows::Questions WeightOf(const IdRange& part) const;
    /// Splits the ids, in order, into parts with and without weighted rows.
    static std::vector<IdRange> PartsOf(const IdRange& ids);

    /// The test of a condition with one test, and of one test among several; nothing for a null item. With an unknown
    /// parameter id a test has neither key nor type, so that no row passes it.
    static TestPara GetOrLogicParamItem(const OrLogic& orLogic, const ParamMap& params);
    static std::optional<TestPara> GetAndLogicParamItem(
        const std::shared_ptr<OrLogic::LogicItem>& logicItem, const ParamMap& params);

private:
    const RuleChecker& mChecker;
};

#endif
