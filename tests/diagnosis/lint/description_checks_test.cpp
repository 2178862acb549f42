#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/lint/rule_findings.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The findings in the entry of one section, whose content this is.
std::vector<std::string> InEntry(const std::string& section, const std::string& content, const std::set<std::string>& checks)
{
    return FindingsInSections("<" + section + "><Laptop><Event>" + content + "</Event></Laptop></" + section + ">", checks);
}

std::vector<std::string> InRepair(const std::string& extra)
{
    return InEntry("RepairDescriptions", "<ID>E</ID><Descriptions><description id='R' extra='" + extra + "'/></Descriptions>", {"A906"});
}

TEST(DescriptionChecks, WordsOfAnotherSectionAreToldOnce)
{
    const std::set<std::string> checks = {"A104", "A905"};
    EXPECT_THAT(InEntry("EventSolutions", "<ID>E</ID><Solutions><description id='X'/></Solutions>", checks),
        ElementsAre("A905: \"description\" is no entry of \"Solutions\""));
    EXPECT_THAT(InEntry("EventFaultDescriptions", "<ID>E</ID><FaultDescriptions><solution id='X'/></FaultDescriptions>", checks),
        ElementsAre("A905: \"solution\" is no entry of \"FaultDescriptions\""));
    EXPECT_THAT(InEntry("RepairDescriptions", "<ID>E</ID><Descriptions><solution id='X'/></Descriptions>", checks),
        ElementsAre("A905: \"solution\" is no entry of \"Descriptions\""));
    EXPECT_THAT(InEntry("EventSolutions", "<ID>E</ID><Solutions><advice id='X'/></Solutions>", checks),
        ElementsAre("A104: \"advice\" in \"Solutions\" is not read"));
}

TEST(DescriptionChecks, EntriesWithoutAnIdAreTold)
{
    EXPECT_THAT(InEntry("EventSolutions", "<ID>E</ID><Solutions><solution/></Solutions>", {"A905"}),
        ElementsAre("A905: this \"solution\" has no \"id\""));
    EXPECT_THAT(InEntry("EventSolutions", "<Solutions><solution id='S'/></Solutions>", {"A905"}),
        ElementsAre("A905: this entry names no event"));
    EXPECT_THAT(InEntry("EventSolutions", "<ID/><Solutions><solution id='S'/></Solutions>", {"A905"}),
        ElementsAre("A905: this entry names no event"));
}

TEST(DescriptionChecks, AnExtraOfARepairIsAnObjectOfTexts)
{
    EXPECT_THAT(InRepair("[1]"), ElementsAre("A906: the \"extra\" of the repair \"R\" is a list and no JSON object"));
    EXPECT_THAT(InRepair("{&quot;R&quot;: 5}"), ElementsAre(
        "A906: the \"extra\" of the repair \"R\" has \"R\" as a number and not as a text with JSON in it"));
    EXPECT_THAT(InRepair("{&quot;R&quot;: &quot;{}&quot;}"), IsEmpty());
    EXPECT_THAT(InRepair("no JSON"), IsEmpty()) << "a text for the host";
}

} // namespace
