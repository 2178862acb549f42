#ifndef ARBORIST_DIAGNOSIS_RULE_SET_SCENE_REACH_H
#define ARBORIST_DIAGNOSIS_RULE_SET_SCENE_REACH_H

#include <unordered_map>
#include <vector>

#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/reading/cut_sets.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::rule_set {

/// Which events a device can find true in one scene if every rule that its filters let run fires.
class SceneReach {
public:
    /// `device` has one scene. The rule set must outlive the object.
    SceneReach(const rule_source::RuleSet& rules, const lint::CutSets& cutSets, const lint::DeviceProfile& device);

    /// True if a leaf can be the first event of a cut set that explains a fault. All indices are into Trees::events.
    bool MayBeReported(std::size_t leaf) const { return mMayBeReported[leaf]; }
    /// The events whose rules are in the way of a leaf that can't be reported: itself, one above it, or those that an
    /// AND gate above it needs. Only those that are nearest to the leaf.
    std::vector<std::size_t> BlockersOf(std::size_t leaf);

private:
    bool FollowsGate(std::size_t event) const;
    void Fold(std::size_t event, const lint::DeviceProfile& device);
    void MarkReported(std::size_t event);
    /// The children of an AND gate whose combinations are multiplied: a child without any drops those in front of it.
    std::vector<std::size_t> Factors(std::size_t event) const;
    std::vector<std::size_t> BlockersAt(std::size_t event, std::size_t from);
    const std::vector<std::size_t>& MissingChildren(std::size_t event);
    const std::vector<std::size_t>& BlockersBelow(std::size_t event);

    const rule_source::RuleSet& mRules;
    const lint::CutSets& mCutSets;
    /// For each event whether its status can be true ...
    std::vector<bool> mCanBeTrue;
    /// ... and whether one of its combinations can be true with all events above its members, up to the event itself.
    std::vector<bool> mHasCutSet;
    std::vector<bool> mMayBeReported;
    /// Keep what was found, since many leaves may have the same events in the way.
    std::unordered_map<std::size_t, std::vector<std::size_t>> mMissingChildren;
    std::unordered_map<std::size_t, std::vector<std::size_t>> mBlockersBelow;
};

} // namespace diagnosis::rule_set

#endif
