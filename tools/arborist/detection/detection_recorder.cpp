#include "tools/arborist/detection/detection_recorder.h"

namespace command {

void DetectionRecorder::OnRuleSetFile(const RuleSetFile& file)
{
    mFiles.push_back({file.kind, file.state, std::string(file.path), std::string(file.message), file.line, file.count});
    if (file.kind == RuleSetFile::Kind::RULES && file.state == RuleSetFile::State::LOADED && file.count == 0) {
        mWarnings.push_back({"no_rules", std::string(file.path) + ": no rule under the tree tag"});
    }
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

void DetectionRecorder::OnRuleDecided(const RuleDecided& rule)
{
    if (rule.reason == Reason::NO_RUNNER) {
        mWarnings.push_back({"no_code_runner", "the code rule \"" + std::string(rule.ruleName)
            + "\" has no recorded answer, and no --code-runner was given: taken as not present"});
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

} // namespace command
