#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/lint/rule_findings.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> InCommandRule(const std::string& rest, const std::set<std::string>& checks)
{
    return FindingsInRules("<commandRule name='r' detectScene='1'>" + rest + "</commandRule>", checks);
}

TEST(CommandChecks, WhatAQueryLacksIsNamed)
{
    EXPECT_THAT(InCommandRule("", {"A612"}), ElementsAre("A612: the rule \"r\" has no \"AnalysisMethod\""));
    EXPECT_THAT(InCommandRule("<AnalysisMethod/>", {"A612"}), ElementsAre("A612: the rule \"r\" has no analysis of the type \"SQL\""));
    EXPECT_THAT(InCommandRule("<AnalysisMethod type='SQL'/>", {"A612"}), ElementsAre("A612: the rule \"r\" has no \"SQL_Condition\""));
    EXPECT_THAT(InCommandRule("<AnalysisMethod type='SQL'><SQL_Condition/></AnalysisMethod>", {"A612"}),
        ElementsAre("A612: the rule \"r\" has no \"SQLItem\""));
}

} // namespace
