#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_DETECTION_RECORDER_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_DETECTION_RECORDER_H

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "arborist/frame/detection_observer.h"
#include "diagnosis/evidence/detection_warnings.h"

namespace diagnosis {

/// A root cause with one cut set that it stands for.
struct RecordedCause {
    std::string id;
    /// Path of each member, ids from the top down joined by "/".
    std::vector<std::string> cutSet;
    /// How often the list of root causes repeats it: a branch that is written out twice gives it twice.
    std::size_t count;
};

/// One tree with its events in pre-order, and its root causes without repetition.
struct RecordedTree {
    std::string id;
    std::vector<Evidence::FoldedEvent> events;
    std::vector<RecordedCause> causes;
};

/// Keeps what the command shows of a detection beside its results.
class DetectionRecorder : public DetectionObserver {
public:
    /// Events and root causes are kept only with `keepsEvents`: written-out trees can be large.
    explicit DetectionRecorder(bool keepsEvents) : mKeepsEvents(keepsEvents) {}

    void OnRuleSetRead(Evidence::RuleSet ruleSet) override;
    void OnTreeStarted(Evidence::TreeHead tree) override;
    void OnEventDecided(Evidence::Event event) override { NoteWarnings(event); }
    void OnTreeFolded(std::vector<Evidence::FoldedEvent> events) override;
    void OnRootCause(Evidence::RootCause rootCause) override;
    void OnTrouble(Evidence::Trouble trouble) override { mWarnings.OnTrouble(trouble); }

    /// As of the last attempt to read it.
    const Evidence::RuleSet& GetRuleSet() const { return mRuleSet; }
    /// In the order of the results.
    const std::vector<RecordedTree>& GetTrees() const { return mTrees; }
    /// What makes the result less than it looks.
    DetectionWarnings& GetWarnings() { return mWarnings; }

protected:
    bool KeepsEvents() const { return mKeepsEvents; }
    void NoteWarnings(const Evidence::Event& event) { mWarnings.OnEvent(event); }

private:
    bool mKeepsEvents;
    Evidence::RuleSet mRuleSet;
    std::vector<RecordedTree> mTrees;
    // Place among the causes of the last tree, by id and cut set.
    std::map<std::pair<std::string, std::vector<std::string>>, std::size_t> mCausePlaces;
    DetectionWarnings mWarnings;
};

} // namespace diagnosis

#endif
