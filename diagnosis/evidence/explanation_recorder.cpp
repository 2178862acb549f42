#include "diagnosis/evidence/explanation_recorder.h"

namespace diagnosis {

void ExplanationRecorder::OnTreeStarted(Evidence::TreeHead tree)
{
    mTree = ExplainedTree();
    mTree.id = tree.id;
    mTree.version = tree.version;
    mAsked.clear();
    mPaths.reset();
    DetectionRecorder::OnTreeStarted(std::move(tree));
}

void ExplanationRecorder::OnEventDecided(Evidence::Event event)
{
    NoteWarnings(event);
    auto& runs = mAsked[event.id].runs;
    if (!runs.empty() && mTree.evidence[runs.back().first] == event) {
        ++runs.back().second;
        return;
    }
    runs.emplace_back(mTree.evidence.size(), 1);
    mTree.evidence.push_back(std::move(event));
}

void ExplanationRecorder::OnTreeFolded(std::vector<Evidence::FoldedEvent> events)
{
    if (KeepsEvents()) {
        DetectionRecorder::OnTreeFolded(events);
    }
    std::vector<std::size_t> open; // indexes of the events above the one that is being added
    const auto closeTo = [this, &open](std::size_t depth) {
        for (; open.size() > depth; open.pop_back()) {
            mTree.events[open.back()].end = mTree.events.size();
        }
    };
    mTree.events.reserve(events.size());
    for (Evidence::FoldedEvent& event : events) {
        closeTo(event.depth);
        const std::size_t parent = open.empty() ? ExplainedEvent::NONE : open.back();
        const std::size_t evidence = NextEvidence(event.id);
        open.push_back(mTree.events.size());
        mTree.events.push_back({std::move(event), parent, 0, evidence});
    }
    closeTo(0);
}

void ExplanationRecorder::OnRootCause(Evidence::RootCause rootCause)
{
    if (!mPaths) {
        mPaths.emplace(mTree.events);
    }
    ExplainedCause& cause = mTree.causes.emplace_back();
    cause.id = rootCause.id;
    cause.members.reserve(rootCause.cutSet.size());
    for (const std::string& path : rootCause.cutSet) {
        cause.members.push_back(mPaths->Find(path));
    }
    DetectionRecorder::OnRootCause(std::move(rootCause));
}

void ExplanationRecorder::OnTreeFinished(Evidence::TreeResult result)
{
    mTree.isFault = result.isFault;
    mTree.verdict = result.verdict;
    DetectionRecorder::OnTreeFinished(std::move(result));
    mPaths.reset();
    mExplanation->trees.push_back(std::move(mTree));
    mTree = ExplainedTree();
}

// Events are decided and folded in the same order, so that the nth event with an id is the same both times.
std::size_t ExplanationRecorder::NextEvidence(const std::string& id)
{
    const auto entry = mAsked.find(id);
    if (entry == mAsked.end() || entry->second.run == entry->second.runs.size()) {
        return ExplainedEvent::NONE;
    }
    Asked& asked = entry->second;
    const auto [evidence, length] = asked.runs[asked.run];
    if (++asked.taken == length) {
        asked.taken = 0;
        ++asked.run;
    }
    return evidence;
}

} // namespace diagnosis
