#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_DETECTION_RECORDER_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_DETECTION_RECORDER_H

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "arborist/frame/detection_observer.h"
#include "diagnosis/evidence/detection_warnings.h"
#include "diagnosis/evidence/recorded_path_index.h"
#include "diagnosis/evidence/recorded_tree.h"

namespace diagnosis {

/// Records what is shown of a detection in addition to its results. Use an object for one detection.
class DetectionRecorder : public DetectionObserver {
public:
    /// What is kept of each tree. Each value includes those before it.
    enum class Detail {
        VERDICT,
        EVENTS, ///< its events and root causes
        EVIDENCE, ///< the evidence of its events
    };

    /// With `keepsCutSets` it also keeps the root causes with RecordedCause::cutSet, whatever the detail.
    explicit DetectionRecorder(Detail detail = Detail::VERDICT, bool keepsCutSets = false)
        : mDetail(detail), mKeepsCutSets(keepsCutSets)
    {
    }

    void OnRuleSetRead(Evidence::RuleSet ruleSet) override;
    void OnTreeStarted(Evidence::TreeHead tree) override;
    void OnEventDecided(Evidence::Event event) override;
    void OnTreeFolded(std::vector<Evidence::FoldedEvent> folded) override;
    void OnRootCause(Evidence::RootCause rootCause) override;
    void OnTreeFinished(Evidence::TreeResult result) override;
    void OnTrouble(Evidence::Trouble trouble) override { mWarnings.OnTrouble(trouble); }

    /// The rule set after the last attempt to read it.
    const Evidence::RuleSet& GetRuleSet() const { return mRuleSet; }
    /// Moves out the trees of the detection, which have no results yet.
    TreeReports TakeTrees() { return std::move(mTrees); }
    /// The problems that make the result less reliable.
    DetectionWarnings& GetWarnings() { return mWarnings; }

private:
    /// The evidence of all events with one id, in the order of the tree.
    struct Asked {
        /// Index of the evidence of each event, run-length encoded.
        std::vector<std::pair<std::size_t, std::size_t>> runs;
        std::size_t run = 0;
        std::size_t taken = 0;
    };

    RecordedTree& Tree() { return mTrees.back().tree; }
    std::size_t NextEvidence(const std::string& id);

    std::vector<std::size_t> PlacesOf(const std::vector<std::string>& paths);

    Detail mDetail;
    bool mKeepsCutSets;
    Evidence::RuleSet mRuleSet;
    TreeReports mTrees;
    std::unordered_map<std::string, Asked> mAsked;
    /// Index of the last tree; built for its first root cause.
    std::optional<RecordedPathIndex> mPaths;
    DetectionWarnings mWarnings;
};

} // namespace diagnosis

#endif
