#ifndef ARBORIST_DIAGNOSIS_SWEEP_SWEEP_RECORDER_H
#define ARBORIST_DIAGNOSIS_SWEEP_SWEEP_RECORDER_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "arborist/frame/sweep_observer.h"
#include "diagnosis/evidence/detection_warnings.h"
#include "diagnosis/sweep/grounds.h"
#include "diagnosis/sweep/timeline.h"

namespace diagnosis {

/// One root cause of a tree: true while it is found, not judged while open checks could add it.
struct SweptCause {
    std::string id;
    /// The path of each member.
    std::vector<std::string> cutSet;
    Timeline timeline;
    /// Ids of the members and of all events above them.
    std::vector<std::string> wayUp = {};
    /// What the rules of these events rest on.
    Grounds grounds = {};
};

/// A tree: true while it is a fault, false while it is none or doesn't apply, not judged while it is undecided.
struct SweptTree {
    std::string id;
    /// From 1 in the order of the results of a detection: a rule set may have several trees of one id.
    std::size_t number = 0;
    Timeline timeline;
    /// Each that is ever found, in the order in which they are first found.
    std::vector<SweptCause> causes;
    /// What the rules of its events rest on.
    Grounds grounds = {};
};

/// The ids of trees, each of several with one id with which it is: "T (1 of 2)".
std::vector<std::string> NamesOf(const std::vector<SweptTree>& trees);

/// A rule of one event: true while it fires, not judged while it is not asked or has no data.
struct SweptRule {
    std::string eventId;
    std::string name;
    SweptSource source = SweptSource::LOG;
    /// True if the time that it looks at begins at a repair at some moment.
    bool isFloored = false;
    Timeline timeline;

    Grounds GetGrounds() const { return {source, isFloored}; }
};

/// Makes timelines of the calls of a sweep.
class SweepRecorder : public SweepObserver {
public:
    void OnRuleSetRead(Evidence::RuleSet ruleSet) override;
    void OnTrouble(Evidence::Trouble trouble) override { mWarnings.OnTrouble(trouble); }
    void OnPlan(SweepPlan plan) override;
    void OnEventDecided(std::int64_t moment, const Evidence::Event& event) override;
    void OnTreeJudged(std::int64_t moment, std::size_t tree, const Evidence::TreeResult& result,
        const std::vector<Evidence::RootCause>& rootCauses) override;

    void OnStopped(std::int64_t moment) override { mStopped = moment; }

    /// Ends all timelines. A root cause that was found later only is left out.
    void Close(std::int64_t until);
    /// Tells what trees and root causes rest on, from the ids of the events of each tree. Call it after Close.
    void TellGrounds(const std::vector<std::set<std::string>>& eventsOfTrees);

    /// The moment at which the sweep was stopped, whose answers are not complete; nothing if it came to its end.
    std::optional<std::int64_t> GetStopped() const { return mStopped; }

    const Evidence::RuleSet& GetRuleSet() const { return mRuleSet; }
    /// The problems that make the answers less reliable, of all moments together.
    DetectionWarnings& GetWarnings() { return mWarnings; }
    const SweepPlan& GetPlan() const { return mPlan; }
    std::vector<SweptTree> TakeTrees() { return std::move(mTrees); }
    std::vector<SweptRule> TakeRules() { return std::move(mRules); }

private:
    using CutSet = std::vector<std::string>;

    /// What open checks could add to a tree from a moment on.
    struct Possible {
        std::int64_t moment = 0;
        std::set<CutSet> causes;
        bool areTruncated = false;

        SweptState StateOf(const CutSet& cutSet) const;
    };

    /// What is kept of a tree beside its timelines.
    struct TreeMemory {
        std::map<CutSet, std::size_t> causes; // index of each
        std::vector<Possible> possible;
    };

    void TakeRule(
        std::int64_t moment, const std::string& eventId, const Evidence::Rule& rule, const std::string& unswept);
    void TakeCauses(std::int64_t moment, std::size_t tree, const std::vector<Evidence::RootCause>& rootCauses);

    Evidence::RuleSet mRuleSet;
    DetectionWarnings mWarnings;
    SweepPlan mPlan;
    std::optional<std::int64_t> mStopped;
    std::map<std::pair<std::string, std::string>, std::string> mUnswept; // reasons by event and rule
    std::vector<SweptTree> mTrees;
    std::vector<SweptRule> mRules;
    std::map<std::pair<std::string, std::string>, std::size_t> mRuleOf; // by event and rule
    std::vector<TreeMemory> mMemories; // of each tree
};

} // namespace diagnosis

#endif
