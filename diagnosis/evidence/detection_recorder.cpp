#include "diagnosis/evidence/detection_recorder.h"

namespace diagnosis {

void DetectionRecorder::OnRuleSetFile(const RuleSetFile& file)
{
    mFiles.push_back({file.kind, file.state, std::string(file.path), std::string(file.message), file.line, file.count});
    mWarnings.OnRuleSetFile(file);
}

void DetectionRecorder::OnExternalDatabase(const ExternalDatabaseSeen& database)
{
    mPatterns.push_back({std::string(database.name), std::string(database.pattern)});
}

void DetectionRecorder::OnTreeStarted(const TreeStarted& tree)
{
    mTrees.push_back({std::string(tree.treeId), {}, {}});
    mCausePlaces.clear();
}

void DetectionRecorder::OnEventFolded(const EventFolded& event)
{
    if (mKeepsEvents && !mTrees.empty()) {
        mTrees.back().events.push_back({event.depth, event.kind, event.gate, std::string(event.id),
            std::string(event.name), event.status, event.observable});
    }
}

void DetectionRecorder::OnRootCause(const RootCauseSeen& rootCause)
{
    if (!mKeepsEvents || mTrees.empty()) {
        return;
    }
    std::vector<RecordedCause>& causes = mTrees.back().causes;
    std::pair<std::string, std::vector<std::string>> key(rootCause.id, rootCause.cutSet);
    const auto [known, isNew] = mCausePlaces.emplace(std::move(key), causes.size());
    if (isNew) {
        causes.push_back({known->first.first, known->first.second, 0});
    }
    ++causes[known->second].count;
}

} // namespace diagnosis
