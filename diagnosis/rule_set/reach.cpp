#include "diagnosis/rule_set/reach.h"

#include <optional>
#include <set>
#include <unordered_map>

#include "diagnosis/lint/reading/cut_sets.h"
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
    std::set<int> scenes(device.scenes.begin(), device.scenes.end());
    for (int digit = 0; digit < 10 && device.scenes.empty(); ++digit) {
        scenes.insert(digit);
    }
    DeviceProfile inScene{device.product, device.platform, device.deviceType, {}};
    std::vector<DeviceProfile> devices;
    for (const int scene : scenes) {
        inScene.scenes = {scene};
        devices.push_back(inScene);
    }
    return devices;
}

/// Finds the causes of each tree.
class ReachFinder {
public:
    ReachFinder(const RuleSet& rules, const DeviceProfile& device)
        : mRules(rules), mDevice(device), mCutSets(rules.trees), mIsReachable(rules.trees.events.size())
    {
        for (const DeviceProfile& inScene : InEachScene(device)) {
            SceneReach scene(rules, mCutSets, inScene);
            for (std::size_t event = 0; event < mIsReachable.size(); ++event) {
                mIsReachable[event] = mIsReachable[event] || scene.MayBeReported(event);
            }
            if (!mFirstScene) {
                mFirstScene.emplace(std::move(scene));
            }
        }
    }

    std::vector<ReachedTree> Trees()
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
    std::vector<ReachedCause> CausesOf(const Tree& tree)
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

    ReachedCause CauseOf(std::size_t event)
    {
        const TreeEvent& leaf = mRules.trees.events[event];
        ReachedCause cause{std::string(leaf.id), PlaceOf(leaf.element), false, {}};
        cause.isReachable = mIsReachable[event];
        if (!cause.isReachable) {
            // Of several scenes, the first one's obstacles are shown.
            for (const std::size_t blocker : mFirstScene->BlockersOf(event)) {
                AddObstacles(blocker, cause.obstacles);
            }
        }
        return cause;
    }

    void AddObstacles(std::size_t event, std::vector<Obstacle>& obstacles)
    {
        const auto [found, isNew] = mObstacles.try_emplace(event);
        if (isNew) {
            found->second = ObstaclesOf(mRules, mRules.trees.events[event], mDevice);
        }
        for (const Obstacle& obstacle : found->second) {
            if (obstacles.size() < MOST_OBSTACLES) {
                obstacles.push_back(obstacle);
            }
        }
    }

    const RuleSet& mRules;
    const DeviceProfile& mDevice;
    lint::CutSets mCutSets;
    std::vector<bool> mIsReachable;
    std::optional<SceneReach> mFirstScene;
    /// By event, as many leaves may have the same event in the way.
    std::unordered_map<std::size_t, std::vector<Obstacle>> mObstacles;
};

} // namespace

std::vector<ReachedTree> ReachOf(const RuleSet& rules, const DeviceProfile& device)
{
    return ReachFinder(rules, device).Trees();
}

} // namespace diagnosis::rule_set
