#include "tests/support/evidence_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Evidence::Reason;
using testing::ElementsAre;

TEST(EvidenceLinesTest, TellWhatAnAlarmRuleCounted)
{
    const Evidence::Start start{
        {100, ""}, {90, ""}, {100, ""}, {}, {}, Evidence::Floor::RESET, 30, "1", "", ""};
    Evidence::Rule rule;
    rule.part = Evidence::Alarm{{{0, 10, 20, "latest", 7, 5, start, true, {6, 1, 2, 3, 11, Evidence::Measure::WEIGHTS},
        false, Reason::WINDOW_SHORT, {}, {{"DROP", "int", "ge", "5", 6, 4}}}}};
    EXPECT_THAT(EvidenceLines(rule),
        ElementsAre("start 100 of period 90 reset 100 update 0 repair 0 by reset days 30 flag '1' repair id ''",
            "test DROP int ge '5' passed 4 of 6",
            "window item 0 ids 10-20 latest days 7 threshold 5 since 100 by version rows 6 other version 1 failed 2 "
            "reached 3 weights by 11 miss [window_short]"));
    EXPECT_THAT(EvidenceLines(rule, "test"), ElementsAre("test DROP int ge '5' passed 4 of 6"));
}

TEST(EvidenceLinesTest, TellWhatACommandRuleAsked)
{
    Evidence::Statement failed{"j.db", "select", true, 0, "incomplete input", {}, {}, {}};
    Evidence::Statement statement{"j.db", "select 1", true, 1, "", Evidence::Interval{"begin", "end", 5, 0, 0, false},
        {{"1", "key", "int", "7", "8"}}, {{"1", "key", "int", "gt", "8", "5", "dynamic", "limit", true}}};
    Evidence::Rule rule;
    rule.reason = Reason::NOT_SQL;
    rule.badName = "LUA";
    rule.part = Evidence::Command{{}, {failed, statement}, Evidence::Hits{"panels", 3, 1, 2}};
    EXPECT_THAT(EvidenceLines(rule),
        ElementsAre("name 'LUA' [not_sql]", "query j.db rows 0: select failed: incomplete input",
            "query j.db rows 1: select 1", "interval begin=5 to end=0 days 0 unusable",
            "parameter 1 key int '7' -> '8'", "compare 1 key int '8' gt '5' from dynamic limit holds",
            "hits 1 of 3 panels needed 2"));
}

TEST(EvidenceLinesTest, TellWhatNodeAndCodeRulesSaw)
{
    Evidence::Rule node;
    node.part = Evidence::Node{{{"p", "/node", true, "5"}}, Evidence::Formula{"a-b-c", "a - (b - c)", "9.000000", "ret"},
        {{"1", "key", "int", "gt", "8", "5", "static", "", true}}};
    node.Note(Reason::NODE_UNREADABLE);
    EXPECT_THAT(EvidenceLines(node), ElementsAre("node p /node = '5'", "formula ret = a-b-c as a - (b - c) -> 9.000000",
                                         "compare 1 key int '8' gt '5' from static holds", "note [node_unreadable]"));
    Evidence::Rule code;
    code.part = Evidence::Code{"C", {"F1", "F2"}, {}, {}, "info", true};
    EXPECT_THAT(EvidenceLines(code), ElementsAre("code C faults F1,F2 suggestions  repairs  info 'info' yes"));
}

} // namespace
