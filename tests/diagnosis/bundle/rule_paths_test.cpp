#include "diagnosis/bundle/rule_paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(RulePathsTest, RulePathsAreThoseOfTheTagEachOnce)
{
    const TempDir dir;
    const auto node = [](const std::string& path) { return NodeRuleXml("r" + path, {NodeInfoXml("T", path)}); };
    dir.Write("rules/P_FaultTreeRules.xml", RuleXml("Tag").Rule(node("/sys/b")).Rule(node("a")).Rule(node("/sys/b"))
        .Rule(AlarmRuleXml("w", {AlarmIdXml("1", "1", {TimeXml("latest", "90", "1"), TimeXml("duration", "0", "1")})}))
        .Text());
    diagnosis::Bundle bundle;
    bundle.treeTag = "Tag";
    bundle.ruleFilePrefix = "P";
    const auto paths = diagnosis::ReadRulePaths(bundle);
    EXPECT_THAT(paths.nodeFiles, ElementsAre("/sys/b", "a"));
    EXPECT_EQ(paths.longestWindow, 90);
    bundle.treeTag = "Other";
    EXPECT_THAT(diagnosis::ReadRulePaths(bundle).nodeFiles, IsEmpty());
}

TEST(RulePathsTest, WindowsThatWrapAroundHaveNoBound)
{
    const TempDir dir;
    dir.Write("rules/FaultTreeRules.xml", RuleXml("Tag").Rule(
        AlarmRuleXml("w", {AlarmIdXml("1", "1", {TimeXml("latest", "24856", "1")})})).Text());
    diagnosis::Bundle bundle;
    bundle.treeTag = "Tag";
    EXPECT_FALSE(diagnosis::ReadRulePaths(bundle).longestWindow.has_value());
}

} // namespace
