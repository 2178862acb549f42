#include "diagnosis/evidence/detection_recorder.h"

namespace diagnosis {

void DetectionRecorder::OnRuleSetRead(Evidence::RuleSet ruleSet)
{
    mWarnings.OnRuleSet(ruleSet);
    mRuleSet = std::move(ruleSet);
}

void DetectionRecorder::OnTreeStarted(Evidence::TreeHead tree)
{
    mTrees.push_back({std::move(tree.id), {}, {}});
    mCausePlaces.clear();
}

void DetectionRecorder::OnTreeFolded(std::vector<Evidence::FoldedEvent> events)
{
    if (mKeepsEvents && !mTrees.empty()) {
        mTrees.back().events = std::move(events);
    }
}

void DetectionRecorder::OnRootCause(Evidence::RootCause rootCause)
{
    if (!mKeepsEvents || mTrees.empty()) {
        return;
    }
    std::vector<RecordedCause>& causes = mTrees.back().causes;
    std::pair<std::string, std::vector<std::string>> key(std::move(rootCause.id), std::move(rootCause.cutSet));
    const auto [known, isNew] = mCausePlaces.emplace(std::move(key), causes.size());
    if (isNew) {
        causes.push_back({known->first.first, known->first.second, 0});
    }
    ++causes[known->second].count;
}

void DetectionRecorder::OnTreeFinished(Evidence::TreeResult result)
{
    mWarnings.OnTreeFinished(result);
    mVerdicts.push_back(std::move(result.verdict));
}

} // namespace diagnosis
