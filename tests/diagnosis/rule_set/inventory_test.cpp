#include "diagnosis/rule_set/inventory.h"

#include <gmock/gmock.h>

#include "tests/diagnosis/rule_set/rule_set_folder.h"

namespace {

using diagnosis::rule_set::CountsOf;
using diagnosis::rule_set::Entry;
using diagnosis::rule_set::InventoryOf;
using diagnosis::rule_set::Link;
using diagnosis::rule_set::NamesOf;
using diagnosis::rule_set::Show;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

std::vector<std::string> Texts(const std::vector<Link>& links)
{
    std::vector<std::string> texts;
    for (const Link& link : links) {
        texts.push_back(link.relation + " " + link.name + (link.detail.empty() ? "" : " (" + link.detail + ")"));
    }
    return texts;
}

std::vector<std::string> Texts(const std::vector<Entry>& entries)
{
    std::vector<std::string> texts;
    for (const Entry& entry : entries) {
        texts.push_back(std::string(KindWord(entry.kind)) + " " + entry.name
            + (entry.detail.empty() ? "" : " (" + entry.detail + ")"));
    }
    return texts;
}

class Inventory : public testing::Test {
protected:
    void SetUp() override
    {
        WriteRuleSet(mDir, "rules",
            TreeXml("Tag").Tree("T", Or({Basic("A"), Intermediate("G", And({Basic("B"), Basic("A")}))})).Tree("U", Or({Basic("A")})),
            RuleXml("Tag")
                .EventRule("A", {Single("r"), Multiple({"r", "gone"})})
                .Rule(AlarmRuleXml("r", {}))
                .Rule(CommandRuleXml("sql").Child(
                    Xml("referenceCommonPart").TextChild("commonPartName", "bean")).Child(
                    Xml("referenceDefDB").TextChild("defDBName", "nowhere")))
                .Rule(CodeRuleXml("r", "C"))
                .FaultDescription("A", {"D1", "D2"})
                .Repair("A", {{"R", "{}"}})
                .CommonPart({Xml("thresholdsOrLumbraData").Attr("name", "bean")}));
        mRules = ReadFolder("rules");
    }

    const diagnosis::rule_source::RuleSet& Rules() const { return *mRules->tags.front(); }

    TempDir mDir;
    std::unique_ptr<diagnosis::rule_set::ReadRuleSet> mRules;
};

TEST_F(Inventory, ListsEachIdOnceAndRulesByFamily)
{
    EXPECT_THAT(Texts(InventoryOf(Rules())),
        ElementsAre("tree T (5 events)", "tree U (2 events)", "event T (intermediate)", "event A (basic)",
            "event G (intermediate)", "event B (basic)", "event U (intermediate)",
            "rule r (alarm, replaced by a later rule of this name)", "rule sql (command)", "rule r (code)",
            "shared data bean"));
}

TEST_F(Inventory, ShowsAllThatTouchesAnEvent)
{
    const auto shown = Show(Rules(), "A");
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0].items.size(), 3U);
    EXPECT_EQ(shown[0].items[1].name, "T/T/G/A");
    EXPECT_THAT(Texts(shown[0].links),
        ElementsAre("stands in T (basic)", "stands in T (basic)", "stands in U (basic)", "decided by r (code)",
            "decided by r (code, in a group of 2)", "decided by gone (no such rule, in a group of 2)", "described by D1",
            "described by D2", "repaired by R ({})"));
}

TEST_F(Inventory, ShowsTheRepairThatAnEventCountsSinceForItAndItsRules)
{
    const TempDir dir;
    WriteRuleSet(dir, "rules",
        TreeXml("Tag").Tree("T", Or({Basic("A").TextChild("UserDefined", R"({"Repairid": "R7"})"), Basic("B")})),
        RuleXml("Tag").EventRule("A", {Single("r")}).Rule(AlarmRuleXml("r", {})));
    const auto rules = ReadFolder("rules");
    EXPECT_THAT(Texts(Show(*rules->tags.front(), "A").front().links),
        ElementsAre("stands in T (basic)", "decided by r (alarm)", "counts since repair R7"));
    EXPECT_THAT(Texts(Show(*rules->tags.front(), "r").front().links),
        ElementsAre("decides A", "stands in T (basic)", "counts since repair R7"));
    EXPECT_THAT(Texts(Show(*rules->tags.front(), "B").front().links), ElementsAre("stands in T (basic)"));
}

TEST_F(Inventory, ShowsTheEventsAndRulesThatARepairTouches)
{
    const TempDir dir;
    WriteRuleSet(dir, "rules",
        TreeXml("Tag").Tree("T", Or({Basic("A").TextChild("UserDefined", R"({"Repairid": "R7"})"), Basic("B"), Basic("C")})),
        RuleXml("Tag")
            .EventRule("A", {Single("r")})
            .EventRule("B", {Single("s")})
            .EventRule("C", {Single("t")})
            .Rule(AlarmRuleXml("r", {}))
            .Rule(CodeRuleXml("s", "C"))
            .Rule(CodeRuleXml("t", "C"))
            .Repair("B", {{"R7", "{}"}, {"R8", ""}}));
    const auto rules = ReadFolder("rules");
    const auto shown = Show(*rules->tags.front(), "R7");
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0].items.size(), 1U);
    EXPECT_THAT(Texts(shown[0].links),
        ElementsAre("listed by B ({})", "named by A", "decided by r (alarm)", "decided by s (code)"));
    EXPECT_THAT(Texts(Show(*rules->tags.front(), "R8").front().links), ElementsAre("listed by B", "decided by s (code)"));
    EXPECT_THAT(Show(*rules->tags.front(), ""), IsEmpty());
    EXPECT_THAT(Show(*rules->tags.front(), "R"), IsEmpty());
}

TEST_F(Inventory, ShowsAllThatTouchesARule)
{
    const auto shown = Show(Rules(), "r");
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_THAT(Texts(shown[0].links),
        ElementsAre("decides A", "decides A", "stands in T (basic)", "stands in T (basic)", "stands in U (basic)",
            "described by D1", "described by D2", "repaired by R ({})"));
    EXPECT_THAT(Texts(Show(Rules(), "sql").front().links), ElementsAre("uses bean", "uses nowhere (no such database)"));
}

TEST_F(Inventory, TiesARuleToNoEntryThatALaterOneReplaces)
{
    WriteRuleSet(mDir, "twice", TreeXml("Tag").Tree("T", Or({Basic("A")})),
        RuleXml("Tag").EventRule("A", {Single("old")}).EventRule("A", {Single("new")}).Rule(CodeRuleXml("old", "C"))
            .Rule(CodeRuleXml("new", "C")));
    const auto rules = ReadFolder("twice");
    EXPECT_THAT(Show(*rules->tags.front(), "old").front().links, IsEmpty());
    EXPECT_THAT(Texts(Show(*rules->tags.front(), "A").front().links),
        ElementsAre("stands in T (basic)", "decided by new (code)"));
}

TEST_F(Inventory, ShowsTheUsersOfSharedDataAndTheEventsOfATree)
{
    EXPECT_THAT(Texts(Show(Rules(), "bean").front().links), ElementsAre("used by sql (command)"));
    const auto shown = Show(Rules(), "U");
    ASSERT_EQ(shown.size(), 2U); // the tree and its top event
    EXPECT_THAT(Texts(shown[0].links),
        ElementsAre("holds U (intermediate)", "holds A (basic)", "decided by r (code)",
            "decided by r (code, in a group of 2)", "decided by gone (no such rule, in a group of 2)"));
}

TEST_F(Inventory, ShowsNothingForAnUnknownName)
{
    EXPECT_THAT(Show(Rules(), "nowhere"), IsEmpty());
    EXPECT_THAT(NamesOf(Rules()), ElementsAre("A", "B", "G", "R", "T", "U", "bean", "r", "sql"));
}

TEST_F(Inventory, CountsWhatIsKept)
{
    const auto counts = CountsOf(Rules());
    EXPECT_THAT(counts, testing::IsSupersetOf({Pair("trees", 2U), Pair("places of events", 7U), Pair("events", 5U),
        Pair("AND gates", 1U), Pair("OR gates", 2U), Pair("levels", 3U), Pair("cut sets", 3U), Pair("rules", 2U),
        Pair("alarm rules", 0U), Pair("code rules", 1U), Pair("command rules", 1U), Pair("alternatives", 2U),
        Pair("groups", 1U), Pair("rules that no event names", 1U), Pair("shared data", 1U), Pair("databases", 0U)}));
}

TEST(ReadInto, TellsWhichFileCannotBeReadAndWhichTagIsUnknown)
{
    TempDir dir;
    diagnosis::rule_set::ReadRuleSet rules;
    EXPECT_EQ(ReadInto({"rules", "", ""}, rules)->message, "rules/FaultTrees.xml: there is no such file");
    WriteRuleSet(dir, "rules", TreeXml("Tag").Tree("T", Or({})), RuleXml("Tag"));
    EXPECT_EQ(ReadInto({"rules", "", "tag"}, rules)->message,
        "rules/FaultTrees.xml: it has no tag \"tag\"; did you mean \"Tag\"?");
    dir.Write("rules/FaultTreeRules.xml", "<a>\n<b>\n</a>");
    const auto failure = ReadInto({"rules", "", ""}, rules);
    EXPECT_EQ(failure->status, diagnosis::ExitStatus::RULE_SET);
    EXPECT_THAT(failure->message, testing::StartsWith("rules/FaultTreeRules.xml:2: mismatched element"));
}

} // namespace
