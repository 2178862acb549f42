#include "diagnosis/rule_set/reach.h"

#include <gmock/gmock.h>

#include "tests/diagnosis/rule_set/rule_set_folder.h"

namespace {

using diagnosis::lint::DeviceProfile;
using diagnosis::rule_set::ReachOf;
using testing::ElementsAre;
using testing::IsEmpty;

const DeviceProfile DEVICE{"P1", "x86", "laptop", {1}};

// "A yes", "B no: A: production ..."
std::vector<std::string> Causes(const TreeXml& trees, const RuleXml& rules, const DeviceProfile& device = DEVICE)
{
    TempDir dir;
    WriteRuleSet(dir, "rules", trees, rules);
    const auto read = ReadFolder("rules");
    std::vector<std::string> texts;
    for (const auto& tree : ReachOf(*read->tags.front(), device)) {
        for (const auto& cause : tree.causes) {
            std::string text = cause.event + (cause.isReachable ? " yes" : " no");
            for (const auto& obstacle : cause.obstacles) {
                text += "; " + obstacle.event + ": " + (obstacle.rule.empty() ? "" : obstacle.rule + ": ") + obstacle.reason;
            }
            texts.push_back(text);
        }
    }
    return texts;
}

TreeXml OneEvent() { return TreeXml("Tag").Tree("T", Or({Basic("A")})); }
Xml RuleWith(const std::string& name, const std::string& filter, const std::string& text)
{
    return CodeRuleXml(name, "C").Attr(filter, text);
}
RuleXml DecidedBy(const Xml& rule) { return RuleXml("Tag").EventRule("A", {Single("r")}).Rule(rule); }

TEST(Reach, LetsThroughWhatNoFilterRejects)
{
    EXPECT_THAT(Causes(OneEvent(), DecidedBy(RuleWith("r", "production", "P1,P2"))), ElementsAre("A yes"));
}

TEST(Reach, NamesTheFilterThatRejects)
{
    EXPECT_THAT(Causes(OneEvent(), DecidedBy(RuleWith("r", "production", "P2"))),
        ElementsAre("A no; A: r: production \"P2\" does not contain \"P1\""));
    EXPECT_THAT(Causes(OneEvent(), DecidedBy(RuleWith("r", "blackProducts", "P10"))),
        ElementsAre("A no; A: r: blackProducts \"P10\" contains \"P1\""));
    EXPECT_THAT(Causes(OneEvent(), DecidedBy(RuleWith("r", "platform", "arm"))),
        ElementsAre("A no; A: r: platform \"arm\" does not contain \"x86\""));
    EXPECT_THAT(Causes(OneEvent(), DecidedBy(RuleWith("r", "deviceType", "phone"))),
        ElementsAre("A no; A: r: deviceType \"phone\" does not contain \"laptop\""));
    EXPECT_THAT(Causes(OneEvent(), DecidedBy(CodeRuleXml("r", "C", "", "2"))),
        ElementsAre("A no; A: r: detectScene \"2\" does not contain \"1\""));
}

TEST(Reach, NeedsOneSceneForAllRulesOfAGroup)
{
    const RuleXml rules = RuleXml("Tag").EventRule("A", {Multiple({"r", "s"})}).Rule(CodeRuleXml("r", "C", "", "1"))
        .Rule(CodeRuleXml("s", "D", "", "2"));
    const std::string never = "A no; A: no scene lets all the rules run that are needed at once";
    EXPECT_THAT(Causes(OneEvent(), rules, {"P1", "", "", {1, 2}}), ElementsAre(never));
    EXPECT_THAT(Causes(OneEvent(), rules, {"P1", "", "", {12}}), ElementsAre("A no; A: r: detectScene \"1\" does not "
        "contain \"12\"; A: s: detectScene \"2\" does not contain \"12\""));
    EXPECT_THAT(Causes(OneEvent(), rules, {"P1", "", "", {}}), ElementsAre(never));
}

TEST(Reach, RejectsARuleWithoutScenesAlsoWhenAnySceneMayBeAsked)
{
    EXPECT_THAT(Causes(OneEvent(), DecidedBy(Xml("codeRule").Attr("name", "r").Child(Xml("detectInfo"))), {"", "", "", {}}),
        ElementsAre("A no; A: r: it names no scene in detectScene, and so never runs"));
}

TEST(Reach, TakesWhatAProfileDoesNotTellAsAny)
{
    EXPECT_THAT(Causes(OneEvent(), DecidedBy(RuleWith("r", "production", "P2")), {"", "x86", "", {1}}), ElementsAre("A yes"));
}

TEST(Reach, TellsOfEventsWithoutRulesOfMissingRulesAndOfThoseForTheHost)
{
    EXPECT_THAT(Causes(TreeXml("Tag").Tree("T", Or({Basic("A"), Basic("B"), Basic("C", {"", "", "", "2"})})),
                    RuleXml("Tag").EventRule("B", {Single("gone")}).EventRule("C", {Single("r")}).Rule(CodeRuleXml("r", "C"))),
        ElementsAre("A no; A: no rule decides it", "B no; B: gone: no rule has this name",
            "C no; C: its DetectMode is 2: a detection leaves it to the host"));
}

TEST(Reach, OfAnAndGateNeedsAllOfItsEvents)
{
    const TreeXml trees = TreeXml("Tag").Tree("T", And({Basic("A"), Intermediate("G", Or({Basic("B"), Basic("C")}))}));
    const RuleXml rules = RuleXml("Tag").EventRule("A", {Single("r")}).Rule(CodeRuleXml("r", "C"));
    EXPECT_THAT(Causes(trees, rules), ElementsAre("A no; B: no rule decides it; C: no rule decides it"));
    RuleXml more = rules;
    EXPECT_THAT(Causes(trees, more.EventRule("C", {Single("r")})), ElementsAre("A yes"));
}

TEST(Reach, TellsOfTwentyObstaclesAtMost)
{
    std::vector<Xml> events{Basic("A")};
    for (int i = 0; i < 30; ++i) {
        events.push_back(Basic("B" + std::to_string(i)));
    }
    const auto causes = Causes(TreeXml("Tag").Tree("T", And(events)), DecidedBy(CodeRuleXml("r", "C")));
    ASSERT_EQ(causes.size(), 1U);
    EXPECT_THAT(causes[0], testing::AllOf(testing::HasSubstr("B19: no rule decides it"), testing::Not(testing::HasSubstr("B20"))));
}

TEST(Reach, OfAnEventBelowOneWithRulesOfItsOwnNeedsThem)
{
    const TreeXml trees = TreeXml("Tag").Tree("T", Or({Intermediate("G", Or({Basic("A")}))}));
    const RuleXml rules = RuleXml("Tag").EventRule("A", {Single("r")}).EventRule("G", {Single("s")})
        .Rule(CodeRuleXml("r", "C")).Rule(RuleWith("s", "platform", "arm"));
    EXPECT_THAT(Causes(trees, rules), ElementsAre("A no; G: s: platform \"arm\" does not contain \"x86\""));
}

TEST(Reach, SplitsNamesAtCommasAsTheEngineDoes)
{
    const RuleXml rules = RuleXml("Tag").EventRule("A", {Single("r,s")}).Rule(CodeRuleXml("r", "C"))
        .Rule(RuleWith("s", "platform", "arm"));
    EXPECT_THAT(Causes(OneEvent(), rules), ElementsAre("A no; A: s: platform \"arm\" does not contain \"x86\""));
}

TEST(Reach, PassesOverLeavesThatAreNeverFirst)
{
    EXPECT_THAT(Causes(TreeXml("Tag").Tree("T", And({Basic("A"), Basic("B")})), RuleXml("Tag")),
        ElementsAre("A no; A: no rule decides it"));
}

TEST(Reach, OfATreeWithoutCombinationsIsEmpty)
{
    EXPECT_THAT(Causes(TreeXml("Tag").Tree("T", And({})), RuleXml("Tag")), IsEmpty());
}

} // namespace
