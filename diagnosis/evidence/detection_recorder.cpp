#include "diagnosis/evidence/detection_recorder.h"

namespace diagnosis {

void DetectionRecorder::OnRuleSetRead(Evidence::RuleSet ruleSet)
{
    mWarnings.OnRuleSet(ruleSet);
    mRuleSet = std::move(ruleSet);
}

void DetectionRecorder::OnTreeStarted(Evidence::TreeHead)
{
    mTrees.emplace_back();
    mAsked.clear();
    mPaths.reset();
}

void DetectionRecorder::OnEventDecided(Evidence::Event event)
{
    mWarnings.OnEvent(event);
    if (mDetail < Detail::EVIDENCE) {
        return;
    }
    std::vector<Evidence::Event>& evidence = Tree().evidence;
    auto& runs = mAsked[event.id].runs;
    if (!runs.empty() && evidence[runs.back().first] == event) {
        ++runs.back().second;
        return;
    }
    runs.emplace_back(evidence.size(), 1);
    evidence.push_back(std::move(event));
}

void DetectionRecorder::OnTreeFolded(std::vector<Evidence::FoldedEvent> folded)
{
    if (mDetail < Detail::EVENTS) {
        return;
    }
    std::vector<RecordedEvent>& events = Tree().events;
    std::vector<std::size_t> open; // indexes of the events above the one that is being added
    const auto closeTo = [&](std::size_t depth) {
        for (; open.size() > depth; open.pop_back()) {
            events[open.back()].end = events.size();
        }
    };
    events.reserve(folded.size());
    for (Evidence::FoldedEvent& event : folded) {
        closeTo(event.depth);
        const std::size_t parent = open.empty() ? RecordedEvent::NONE : open.back();
        const std::size_t evidence = NextEvidence(event.id);
        open.push_back(events.size());
        events.push_back({std::move(event), parent, 0, evidence});
    }
    closeTo(0);
}

void DetectionRecorder::OnRootCause(Evidence::RootCause rootCause)
{
    if (mDetail < Detail::EVENTS && !mKeepsCutSets) {
        return;
    }
    RecordedCause& cause = Tree().causes.emplace_back(RecordedCause{std::move(rootCause.id)});
    if (mDetail >= Detail::EVENTS) {
        cause.members = PlacesOf(rootCause.cutSet);
    }
    if (mKeepsCutSets) {
        cause.cutSet = std::move(rootCause.cutSet);
    }
}

std::vector<std::size_t> DetectionRecorder::PlacesOf(const std::vector<std::string>& paths)
{
    if (!mPaths) {
        mPaths.emplace(Tree().events);
    }
    std::vector<std::size_t> places;
    places.reserve(paths.size());
    for (const std::string& path : paths) {
        places.push_back(mPaths->Find(path));
    }
    return places;
}

void DetectionRecorder::OnTreeFinished(Evidence::TreeResult result)
{
    mWarnings.OnTreeFinished(result);
    mTrees.back().verdict = std::move(result.verdict);
    mPaths.reset();
}

// Events are decided and folded in the same order, so that the nth event with an id is the same both times.
std::size_t DetectionRecorder::NextEvidence(const std::string& id)
{
    const auto entry = mAsked.find(id);
    if (entry == mAsked.end() || entry->second.run == entry->second.runs.size()) {
        return RecordedEvent::NONE;
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
