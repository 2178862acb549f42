#include "diagnosis/rule_set/reach.h"

#include <algorithm>

#include "diagnosis/lint/checks/cut_sets.h"
#include "diagnosis/rule_set/obstacles.h"
#include "diagnosis/rule_set/scene_reach.h"

namespace diagnosis::rule_set {

namespace {

using lint::DeviceProfile;
using rule_source::RuleSet;
using rule_source::Tree;
using rule_source::TreeEvent;

// A scene passes a filter that has its digits. Whatever scene passes some filters, a scene of one digit does, too.
std::vector<DeviceProfile> InEachScene(const DeviceProfile& device)
{
    std::vector<int> scenes = device.scenes;
    for (int digit = 0; digit < 10 && device.scenes.empty(); ++digit) {
        scenes.push_back(digit);
    }
    std::vector<DeviceProfile> devices;
    for (const int scene : scenes) {
        devices.push_back(device);
        devices.back().scenes = {scene};
    }
    return devices;
}

/// Finds the causes of each tree.
class ReachFinder {
public:
    ReachFinder(const RuleSet& rules, const DeviceProfile& device)
        : mRules(rules), mDevice(device), mCutSets(rules.trees)
    {
        for (const DeviceProfile& inScene : InEachScene(device)) {
            mScenes.emplace_back(rules, mCutSets, inScene);
        }
    }

    std::vector<ReachedTree> Trees() const
    {
        std::vector<ReachedTree> trees;
        for (const Tree& tree : mRules.trees.trees) {
            if (tree.isKept) {
                trees.push_back({std::string(tree.id), PlaceOf(tree.element), CausesOf(tree)});
            }
        }
        return trees;
    }

private:
    std::vector<ReachedCause> CausesOf(const Tree& tree) const
    {
        std::vector<ReachedCause> causes;
        for (std::size_t event = tree.begin; event < tree.end; ++event) {
            const TreeEvent& leaf = mRules.trees.events[event];
            if (leaf.kind != rule_source::EventKind::INTERMEDIATE && mCutSets.MayBeFirst(event)) {
                causes.push_back(CauseOf(event));
            }
        }
        return causes;
    }

    ReachedCause CauseOf(std::size_t event) const
    {
        const TreeEvent& leaf = mRules.trees.events[event];
        ReachedCause cause{std::string(leaf.id), PlaceOf(leaf.element), false, {}};
        cause.isReachable = std::any_of(
            mScenes.begin(), mScenes.end(), [event](const SceneReach& scene) { return scene.MayBeReported(event); });
        if (!cause.isReachable) {
            // With several scenes the first one tells.
            for (const std::size_t blocker : mScenes.front().BlockersOf(event)) {
                AddObstacles(mRules.trees.events[blocker], cause.obstacles);
            }
        }
        return cause;
    }

    void AddObstacles(const TreeEvent& event, std::vector<Obstacle>& obstacles) const
    {
        for (Obstacle& obstacle : ObstaclesOf(mRules, event, mDevice)) {
            if (obstacles.size() < MOST_OBSTACLES) {
                obstacles.push_back(std::move(obstacle));
            }
        }
    }

    const RuleSet& mRules;
    const DeviceProfile& mDevice;
    lint::CutSets mCutSets;
    std::vector<SceneReach> mScenes;
};

} // namespace

std::vector<ReachedTree> ReachOf(const RuleSet& rules, const DeviceProfile& device)
{
    return ReachFinder(rules, device).Trees();
}

} // namespace diagnosis::rule_set
