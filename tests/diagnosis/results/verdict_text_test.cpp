#include "diagnosis/results/verdict_text.h"

#include <gtest/gtest.h>

#include "tests/support/case_name.h"

namespace {

using diagnosis::MissingText;
using Evidence::Reason;

struct MissingCase { const char* name; Reason reason; const char* detail; const char* text; };
void PrintTo(const MissingCase& missing, std::ostream* out) { *out << missing.name; }
class WhatIsMissing : public testing::TestWithParam<MissingCase> {};

TEST_P(WhatIsMissing, IsToldInWords)
{
    EXPECT_EQ(MissingText(GetParam().reason, GetParam().detail), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Table, WhatIsMissing, testing::Values(
    MissingCase{"Log", Reason::LOG_UNAVAILABLE, "", "the event log"},
    MissingCase{"SoundLog", Reason::LOG_DAMAGED, "log.db: it\nis damaged", "a sound event log (log.db: it\\x0Ais damaged)"},
    MissingCase{"Node", Reason::NODE_UNREADABLE, "/sys/temp", "the node file /sys/temp"},
    MissingCase{"SomeNode", Reason::NODE_UNREADABLE, "", "the node file"},
    MissingCase{"Database", Reason::DATABASE_UNAVAILABLE, "D", "a database (D)"},
    MissingCase{"Table", Reason::TABLE_INCOMPLETE, "T", "a complete table (T)"},
    MissingCase{"Runner", Reason::NO_RUNNER, "", "a program for code rules"},
    MissingCase{"Answer", Reason::RUNNER_FAILED, "info", "an answer to a code rule (info)"},
    MissingCase{"Rule", Reason::NO_EVENT_RULE, "", "a rule"}, MissingCase{"RuleName", Reason::NO_RULE_NAMES, "", "a rule"},
    MissingCase{"NamedRule", Reason::NO_SUCH_RULE, "r", "a rule (r)"}, MissingCase{"Time", Reason::STOPPED, "", "time"},
    MissingCase{"WorkingRule", Reason::NO_ITEMS, "", "a rule that can work, no_items,"},
    MissingCase{"Data", Reason::ROWS_UNSEEN, "2 rows", "data, rows_unseen (2 rows),"}), CaseName());

TEST(VerdictWordsTest, ATreeWithoutChecksLacksThem)
{
    Evidence::TreeVerdict verdict;
    EXPECT_EQ(diagnosis::VerdictWords(verdict), "no fault, UNDECIDED: it has no checks");
    verdict.isTrueWithoutCause = true;
    EXPECT_EQ(diagnosis::VerdictWords(verdict), "no fault, UNDECIDED: its top event is TRUE, and no cut set explains it");
}

} // namespace
