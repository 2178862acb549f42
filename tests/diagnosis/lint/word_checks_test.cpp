#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/lint/rule_findings.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(WordChecks, ASectionThatIsNoneIsTold)
{
    EXPECT_THAT(FindingsInSections("<Foo/><EventRules/>", {"A104"}),
        ElementsAre("A104: \"Foo\" is no section of the rule file and is not read"));
    EXPECT_THAT(FindingsInSections("<EventSolution/>", {"A104"}), IsEmpty()) << "another check names the section that is meant";
}

TEST(WordChecks, WhatAnotherCheckTellsInDetailIsNotToldTwice)
{
    EXPECT_THAT(FindingsInItem("<alarmId Eventid_Max='5'><BeginFlag>1</BeginFlag></alarmId>", {"A104"}), IsEmpty());
    EXPECT_THAT(FindingsInItem("<alarmId Eventid_Max='5'><EndFlag>1</EndFlag></alarmId>", {"A104"}),
        ElementsAre("A104: \"EndFlag\" in \"alarmId\" is not read"));
    EXPECT_THAT(FindingsInItem("<alarmId Eventid_Max='5'><condition><or type='single_logic'><same/><eq/></or></condition></alarmId>",
        {"A104"}), IsEmpty());
}

} // namespace
