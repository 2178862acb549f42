#include <memory>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/arborist.h"
#include "diagnosis/rule_set/reach.h"
#include "tests/diagnosis/rule_set/rule_set_folder.h"
#include "tests/support/code_runner_stub.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_cases.h"

namespace {

/// Builds random trees in which every event has an id of its own, and rules with random filters.
class RandomRuleSet {
public:
    explicit RandomRuleSet(RandomCases& random) : mRandom(random) {}

    TreeXml Trees() { return TreeXml("Tag").Tree("T", Gate(3)); }

    /// After Trees.
    RuleXml Rules()
    {
        RuleXml rules("Tag");
        for (const std::string& id : mIds) {
            if (!mRandom.OnceIn(4)) {
                rules.EventRule(id, Alternatives());
            }
        }
        for (int rule = 0; rule < RULES; ++rule) {
            Xml xml = CodeRuleXml("r" + std::to_string(rule), "C", "", mRandom.OneOf({"1", "2", "1,2", "12", ""}));
            for (const char* filter : {"production", "blackProducts", "platform", "deviceType"}) {
                if (mRandom.OnceIn(6)) {
                    xml.Attr(filter, mRandom.OneOf({"P1", "P", "P12", "x", "xy", "z"}));
                }
            }
            rules.Rule(xml);
        }
        return rules;
    }

private:
    static constexpr int RULES = 6;

    Xml Gate(int levels)
    {
        std::vector<Xml> events;
        for (std::size_t count = mRandom.OnceIn(10) ? 0 : 1 + mRandom.Below(3); count > 0; --count) {
            events.push_back(Event(levels));
        }
        return mRandom.OnceIn(2) ? Or(events) : And(events);
    }

    Xml Event(int levels)
    {
        const std::string id = "E" + std::to_string(mIds.size());
        const bool isInner = levels > 0 && mRandom.OnceIn(2);
        // Few inner events have rules of their own.
        if (!isInner || mRandom.OnceIn(5)) {
            mIds.push_back(id);
        } else {
            return Intermediate("G" + std::to_string(++mGates), Gate(levels - 1));
        }
        return isInner                ? Intermediate(id, Gate(levels - 1))
            : mRandom.OnceIn(8)       ? Xml("House").TextChild("ID", id)
                                      : Basic(id, {"", "", "", mRandom.OnceIn(10) ? "2" : ""});
    }

    std::string RuleName() { return "r" + std::to_string(mRandom.Below(RULES + 1)); }

    std::vector<Xml> Alternatives()
    {
        std::vector<Xml> alternatives;
        for (std::size_t count = 1 + mRandom.Below(2); count > 0; --count) {
            const std::string one = RuleName();
            const std::string other = RuleName();
            alternatives.push_back(mRandom.OnceIn(3) ? Multiple({one, other})
                    : mRandom.OnceIn(10)             ? Single(one + "," + other)
                                                     : Single(one));
        }
        return alternatives;
    }

    RandomCases& mRandom;
    std::vector<std::string> mIds;
    int mGates = 0;
};

// What a detection reports if every rule that runs finds its fault.
std::set<std::string> Detected(const TempDir& dir, const diagnosis::lint::DeviceProfile& device)
{
    auto info = DetectInfoFor(dir, "Tag");
    info->mRuleFileDir = dir.Path("rules");
    info->mDetectScene = device.scenes.front();
    info->mDeviceDetails->SetProduct(device.product);
    info->mDeviceDetails->SetPlatform(device.platform);
    info->mDeviceDetails->SetDeviceType(device.deviceType);
    const auto runner = std::make_shared<CodeRunnerStub>();
    runner->answer = true;
    info->mCodeRuleRunner = runner;
    std::set<std::string> causes;
    Arborist arborist(info);
    for (const auto& result : arborist.StartDetection()) {
        for (const auto& node : result->GetTreeNodes()) {
            causes.insert(node->mId);
        }
    }
    return causes;
}

std::set<std::string> Reached(const diagnosis::lint::DeviceProfile& device)
{
    const auto rules = ReadFolder("rules");
    std::set<std::string> causes;
    for (const auto& tree : diagnosis::rule_set::ReachOf(*rules->tags.front(), device)) {
        for (const auto& cause : tree.causes) {
            EXPECT_EQ(cause.obstacles.empty(), cause.isReachable) << cause.event;
            if (cause.isReachable) {
                causes.insert(cause.event);
            }
        }
    }
    return causes;
}

// The events of these trees have no other rules than those that a host answers, and the host always finds a fault.
TEST(ReachRandom, IsWhatADetectionReportsIfEveryRuleThatRunsFires)
{
    const LogCapture log;
    RandomCases random(150);
    std::size_t reached = 0;
    for (int i = 0; i < random.GetCount(); ++i) {
        const TempDir dir;
        RandomRuleSet ruleSet(random);
        const TreeXml trees = ruleSet.Trees();
        WriteRuleSet(dir, "rules", trees, ruleSet.Rules());
        const diagnosis::lint::DeviceProfile device{"P1", "x", "xy", {random.OnceIn(2) ? 1 : 2}};
        const auto causes = Reached(device);
        ASSERT_EQ(causes, Detected(dir, device)) << "case " << i << "\n" << dir.Read("rules/FaultTrees.xml")
            << dir.Read("rules/FaultTreeRules.xml");
        reached += causes.size();
    }
    EXPECT_GT(reached, static_cast<std::size_t>(random.GetCount()) / 4);
}

} // namespace
