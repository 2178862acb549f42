#ifndef ARBORIST_TOOLS_DETECTION_EVIDENCE_RECORDER_H
#define ARBORIST_TOOLS_DETECTION_EVIDENCE_RECORDER_H

#include <map>
#include <string>
#include <vector>

#include "tools/arborist/detection/detection_recorder.h"

namespace command {

/// A rule that fired, with what it found, one fact a line.
struct RuleEvidence {
    std::string rule;
    std::string family;
    std::vector<std::string> facts;
};

/// Of one tree: what made its events fire, by event id.
using TreeEvidence = std::map<std::string, std::vector<RuleEvidence>>;

/// A recorder that also keeps why events fired. Facts of rules that did not fire are dropped at once.
class EvidenceRecorder : public DetectionRecorder {
public:
    EvidenceRecorder() : DetectionRecorder(true) {}

    void OnTreeStarted(const TreeStarted& tree) override;
    void OnEventAsked(const EventAsked& event) override;
    void OnRuleAsked(const RuleAsked& rule) override;
    void OnAlarmWindow(const AlarmWindowSeen& window) override;
    void OnNodeFile(const NodeFileSeen& node) override;
    void OnFormula(const FormulaSeen& formula) override;
    void OnQuery(const QuerySeen& query) override;
    void OnComparison(const ComparisonSeen& comparison) override;
    void OnCodeRun(const CodeRunSeen& run) override;
    void OnRuleDecided(const RuleDecided& rule) override;
    void OnEventDecided(const EventDecided& event) override;

    /// In the order of the trees.
    const std::vector<TreeEvidence>& GetEvidence() const { return mEvidence; }

private:
    std::vector<TreeEvidence> mEvidence;
    std::vector<RuleEvidence> mOfEvent;
    std::vector<std::string> mFacts;
};

} // namespace command

#endif
