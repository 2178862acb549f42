#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_EXPLANATION_RECORDER_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_EXPLANATION_RECORDER_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "diagnosis/evidence/detection_recorder.h"
#include "diagnosis/evidence/explanation.h"
#include "diagnosis/evidence/path_index.h"

namespace diagnosis {

/// Fills an Explanation from what the engine tells. To be used for one detection, while the bundle is entered.
///
/// What a DetectionRecorder keeps is kept, too: every call is handed on to it.
class ExplanationRecorder : public DetectionRecorder {
public:
    explicit ExplanationRecorder(bool keepsEvents) : DetectionRecorder(keepsEvents) {}

    /// The trees that are finished.
    const std::shared_ptr<Explanation>& GetExplanation() const { return mExplanation; }

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
    /// What is known of all events with one id, in the order of the tree.
    struct Asked {
        /// Place of the evidence of each event; a run of the same one is told once, with its length.
        std::vector<std::pair<std::size_t, std::size_t>> runs;
        std::size_t run = 0;
        std::size_t taken = 0;
    };

    ExplainedQuery& LastQuery();
    std::size_t NextEvidence(const std::string& id);
    void CloseEvents(std::size_t depth);

    std::shared_ptr<Explanation> mExplanation = std::make_shared<Explanation>();
    ExplainedTree mTree;
    ExplainedEvidence mEvidence;
    ExplainedRule mRule;
    /// The last start time, until the window or query that it belongs to.
    std::optional<ExplainedStart> mStart;
    std::vector<ExplainedTest> mTests;
    std::unordered_map<std::string, Asked> mAsked;
    /// Places of the events above the one that is being told.
    std::vector<std::size_t> mOpen;
    /// Of the tree that is being told; made when the first root cause asks.
    std::optional<PathIndex> mPaths;
};

} // namespace diagnosis

#endif
