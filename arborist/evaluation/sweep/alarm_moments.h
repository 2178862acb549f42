#ifndef ARBORIST_EVALUATION_SWEEP_ALARM_MOMENTS_H
#define ARBORIST_EVALUATION_SWEEP_ALARM_MOMENTS_H

#include <memory>
#include <string>

#include "arborist/evaluation/alarm_rule_engine.h"
#include "arborist/evaluation/sweep/moment_range.h"
#include "arborist/evaluation/sweep/sliding_count.h"
#include "arborist/model/rule.h"

/// Finds the moments at which an alarm rule may answer differently than a second before: where a row enters or leaves
/// one of its windows and brings the count over its threshold or below it, and at repairs. Counts nothing itself that
/// decides: at these moments the checker is asked.
///
/// Refers to the checker, which must be at the last moment of the range.
class AlarmMoments {
public:
    AlarmMoments(AlarmRuleEngine& checker, const MomentRange& range) : mChecker(checker), mRange(range) {}

    /// Adds the moments of a rule. Returns why not all could be found: the log is damaged, or an id has times that are no
    /// whole numbers of 32 bits. Null if all were found.
    const char* Add(const std::shared_ptr<AlarmRule>& rule, const std::string& eventId, Moments& moments);

private:
    void AddCount(const AlarmRuleEngine::Count& count, Moments& moments);
    void AddUnseen(const AlarmRuleEngine::Count& count, Moments& moments);
    void AddOtherVersions(const AlarmRuleEngine::Count& count, Moments& moments);

    AlarmRuleEngine& mChecker;
    MomentRange mRange;
    const char* mProblem = nullptr;
};

#endif
