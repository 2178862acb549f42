#ifndef ARBORIST_TESTS_SUPPORT_RECORDING_OBSERVER_H
#define ARBORIST_TESTS_SUPPORT_RECORDING_OBSERVER_H

#include <string>
#include <vector>

#include "arborist/frame/detection_observer.h"

/// Turns each call into one line of text, so that a test can compare what was told as a list.
class RecordingObserver : public DetectionObserver {
public:
    const std::vector<std::string>& Lines() const { return mLines; }
    /// Those that begin with this word ("formula").
    std::vector<std::string> Lines(const std::string& word) const;
    void Clear() { mLines.clear(); }

    void OnRuleSetFile(const RuleSetFile& file) override;
    void OnThresholds(const ThresholdsSeen& thresholds) override;
    void OnExternalDatabase(const ExternalDatabaseSeen& database) override;
    void OnTreeStarted(const TreeStarted& tree) override;
    void OnEventAsked(const EventAsked& event) override;
    void OnRuleAsked(const RuleAsked& rule) override;
    void OnFilter(const FilterSeen& filter) override;
    void OnName(const NameSeen& name) override;
    void OnStartTime(const StartTimeSeen& startTime) override;
    void OnAlarmTest(const AlarmTestSeen& test) override;
    void OnAlarmWindow(const AlarmWindowSeen& window) override;
    void OnNodeFile(const NodeFileSeen& node) override;
    void OnFormula(const FormulaSeen& formula) override;
    void OnQuery(const QuerySeen& query) override;
    void OnInterval(const IntervalSeen& interval) override;
    void OnParameter(const ParameterSeen& parameter) override;
    void OnComparison(const ComparisonSeen& comparison) override;
    void OnHits(const HitsSeen& hits) override;
    void OnCodeRun(const CodeRunSeen& run) override;
    void OnRuleDecided(const RuleDecided& rule) override;
    void OnEventDecided(const EventDecided& event) override;
    void OnEventFolded(const EventFolded& event) override;
    void OnRootCause(const RootCauseSeen& rootCause) override;
    void OnTreeFinished(const TreeFinished& tree) override;

private:
    std::vector<std::string> mLines;
};

#endif
