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

/// A root cause with its cut set.
struct RecordedCause {
    std::string id;
    /// Path of each member, ids from the top down joined by "/".
    std::vector<std::string> cutSet;
    /// How often the list of root causes has it: a branch that the tree repeats gives it several times.
    std::size_t count;
};

/// One tree with its events in pre-order, and its root causes without repetition.
struct RecordedTree {
    std::string id;
    std::vector<Evidence::FoldedEvent> events;
    std::vector<RecordedCause> causes;
};

/// Records what is shown of a detection in addition to its results.
class DetectionRecorder : public DetectionObserver {
public:
    /// Keeps events and root causes only with `keepsEvents`, as trees can be large.
    explicit DetectionRecorder(bool keepsEvents) : mKeepsEvents(keepsEvents) {}

    void OnRuleSetRead(Evidence::RuleSet ruleSet) override;
    void OnTreeStarted(Evidence::TreeHead tree) override;
    void OnEventDecided(Evidence::Event event) override { NoteWarnings(event); }
    void OnTreeFolded(std::vector<Evidence::FoldedEvent> events) override;
    void OnRootCause(Evidence::RootCause rootCause) override;
    void OnTreeFinished(Evidence::TreeResult result) override;
    void OnTrouble(Evidence::Trouble trouble) override { mWarnings.OnTrouble(trouble); }

    /// The rule set after the last attempt to read it.
    const Evidence::RuleSet& GetRuleSet() const { return mRuleSet; }
    /// The trees in the order of the results.
    const std::vector<RecordedTree>& GetTrees() const { return mTrees; }
    /// What each result rests on, in the order of the results.
    const std::vector<Evidence::TreeVerdict>& GetVerdicts() const { return mVerdicts; }
    /// The problems that make the result less reliable.
    DetectionWarnings& GetWarnings() { return mWarnings; }

protected:
    bool KeepsEvents() const { return mKeepsEvents; }
    void NoteWarnings(const Evidence::Event& event) { mWarnings.OnEvent(event); }

private:
    bool mKeepsEvents;
    Evidence::RuleSet mRuleSet;
    std::vector<RecordedTree> mTrees;
    std::vector<Evidence::TreeVerdict> mVerdicts;
    // Index among the causes of the last tree, by id and cut set.
    std::map<std::pair<std::string, std::vector<std::string>>, std::size_t> mCausePlaces;
    DetectionWarnings mWarnings;
};

} // namespace diagnosis

#endif
