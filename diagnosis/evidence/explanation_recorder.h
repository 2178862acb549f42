#ifndef ARBORIST_DIAGNOSIS_EVIDENCE_EXPLANATION_RECORDER_H
#define ARBORIST_DIAGNOSIS_EVIDENCE_EXPLANATION_RECORDER_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "diagnosis/evidence/detection_recorder.h"
#include "diagnosis/evidence/explanation.h"
#include "diagnosis/evidence/path_index.h"

namespace diagnosis {

/// Keeps the evidence that the engine passes to it, and assigns it to the events of the trees. Use an object for one
/// detection.
///
/// Also keeps everything that a DetectionRecorder keeps, to which it forwards every call.
class ExplanationRecorder : public DetectionRecorder {
public:
    explicit ExplanationRecorder(bool keepsEvents) : DetectionRecorder(keepsEvents) {}

    /// The explanation of all finished trees.
    const std::shared_ptr<Explanation>& GetExplanation() const { return mExplanation; }

    void OnTreeStarted(Evidence::TreeHead tree) override;
    void OnEventDecided(Evidence::Event event) override;
    void OnTreeFolded(std::vector<Evidence::FoldedEvent> events) override;
    void OnRootCause(Evidence::RootCause rootCause) override;
    void OnTreeFinished(Evidence::TreeResult result) override;

private:
    /// The evidence of all events with one id, in the order of the tree.
    struct Asked {
        /// Index of the evidence of each event, run-length encoded.
        std::vector<std::pair<std::size_t, std::size_t>> runs;
        std::size_t run = 0;
        std::size_t taken = 0;
    };

    std::size_t NextEvidence(const std::string& id);

    std::shared_ptr<Explanation> mExplanation = std::make_shared<Explanation>();
    ExplainedTree mTree;
    std::unordered_map<std::string, Asked> mAsked;
    /// Index of the current tree; built for its first root cause.
    std::optional<PathIndex> mPaths;
};

} // namespace diagnosis

#endif
