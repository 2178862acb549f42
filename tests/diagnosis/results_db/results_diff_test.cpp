#include "diagnosis/results_db/results_diff.h"

#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "diagnosis/results_db/import_results.h"
#include "tests/diagnosis/results_db/damaged_table.h"
#include "tests/diagnosis/results_db/result_lines.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::results_db::CompareResults;
using diagnosis::results_db::NotComparable;
using diagnosis::results_db::NotComparableWord;
using diagnosis::results_db::Occurrences;
using diagnosis::results_db::ResultsDiff;
using diagnosis::results_db::VerdictWord;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Lines = std::vector<LineOf>;

std::string Bundles(const std::string& what, const Occurrences& occurrences)
{
    std::string text = occurrences.count == 0 ? "" : " " + what + " " + std::to_string(occurrences.count) + ":";
    for (const std::string& example : occurrences.examples) {
        text += " " + example;
    }
    return text;
}

std::string Joined(const std::vector<std::string>& texts)
{
    std::string text;
    for (const std::string& part : texts) {
        text += (text.empty() ? "" : " & ") + part;
    }
    return text;
}

// "T A (TOP_T/A): new 1: b gone 2: c d"
std::vector<std::string> Causes(const ResultsDiff& diff)
{
    std::vector<std::string> texts;
    for (const auto& cause : diff.causes) {
        texts.push_back(cause.tree + " " + cause.id + " (" + Joined(cause.cutSet) + "):" + Bundles("new", cause.added)
            + Bundles("gone", cause.gone) + Bundles("unchanged", cause.unchanged)
            + Bundles("not comparable", cause.notComparable));
    }
    return texts;
}

std::vector<std::string> Verdicts(const ResultsDiff& diff)
{
    std::vector<std::string> texts;
    for (const auto& change : diff.verdicts) {
        texts.push_back(change.tree + " " + VerdictWord(change.before) + " -> " + VerdictWord(change.after)
            + Bundles("in", change.bundles));
    }
    return texts;
}

std::vector<std::string> NotCompared(const ResultsDiff& diff)
{
    std::vector<std::string> texts;
    for (std::size_t reason = 0; reason < diff.notComparable.size(); ++reason) {
        if (diff.notComparable[reason].count > 0) {
            texts.push_back(
                Bundles(NotComparableWord(static_cast<NotComparable>(reason)), diff.notComparable[reason]).substr(1));
        }
    }
    return texts;
}

class ResultsDiffTest : public testing::Test {
protected:
    static std::string TextOf(const Lines& lines)
    {
        std::string text;
        for (const LineOf& line : lines) {
            text += line.Text();
        }
        return text;
    }

    ResultsDiff Compare(const Lines& before, const Lines& after)
    {
        mDir.Write("before.jsonl", TextOf(before));
        mDir.Write("after.jsonl", TextOf(after));
        ResultsDiff diff;
        const auto failure = CompareResults("before.jsonl", "after.jsonl", diff);
        EXPECT_FALSE(failure) << failure->message;
        return diff;
    }

    std::string FailureOf(const std::string& before, const std::string& after)
    {
        ResultsDiff diff;
        const auto failure = CompareResults(before, after, diff);
        return failure ? CodeWord(failure->code) + (": " + failure->message) : "none";
    }

    TempDir mDir;
};

TEST_F(ResultsDiffTest, ADatabaseThatAnImportHasLockedIsWaitedFor)
{
    mDir.Write("lines.jsonl", TextOf({LineOf("b").NoFault("T")}));
    ASSERT_TRUE(diagnosis::results_db::ImportResults({"lines.jsonl"}, "r.db", {}).isImported);
    diagnosis::Connection importing;
    ASSERT_TRUE(importing.Open("r.db", diagnosis::Connection::Mode::CREATE) && importing.Execute("BEGIN EXCLUSIVE; UPDATE bundle SET ok = ok"));
    ASSERT_TRUE(mDir.Has("r.db-journal"));
    ResultsDiff diff;
    EXPECT_TRUE(CompareResults("r.db", "lines.jsonl", diff, [](int) { return false; }));
    EXPECT_FALSE(CompareResults("r.db", "lines.jsonl", diff, [&importing](int) { return importing.Execute("COMMIT"); }));
}

TEST_F(ResultsDiffTest, ADatabaseIsNotChangedWhileItIsCompared)
{
    mDir.Write("lines.jsonl", TextOf({LineOf("b").NoFault("T")}));
    ASSERT_TRUE(diagnosis::results_db::ImportResults({"lines.jsonl"}, "r.db", {}).isImported);
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    std::thread other([this] {
        std::ofstream pipe("pipe"); // opens when it is read, behind the database
        diagnosis::Connection importing;
        EXPECT_TRUE(importing.Open("r.db", diagnosis::Connection::Mode::CREATE));
        importing.WhileLocked(nullptr);
        EXPECT_FALSE(importing.Execute("DELETE FROM bundle"));
        pipe << mDir.Read("lines.jsonl");
    });
    ResultsDiff diff;
    EXPECT_FALSE(CompareResults("r.db", "pipe", diff));
    EXPECT_EQ(diff.compared, 1);
    other.join();
}

TEST_F(ResultsDiffTest, ADatabaseMayHaveAnyName)
{
    mDir.Write("lines.jsonl", TextOf({LineOf("b").NoFault("T")}));
    for (const char* name : {":memory:", "file:r.db?mode=ro"}) {
        ASSERT_TRUE(diagnosis::results_db::ImportResults({"lines.jsonl"}, name, {}).isImported) << name;
        EXPECT_EQ(diagnosis::results_db::ImportResults({"lines.jsonl"}, name, {}).counts.there, 1) << name;
        ResultsDiff diff;
        EXPECT_FALSE(CompareResults(name, "lines.jsonl", diff)) << name;
        EXPECT_EQ(diff.compared, 1) << name;
    }
}

TEST_F(ResultsDiffTest, EqualResultsHaveNoDifference)
{
    const Lines lines = {LineOf("b").Fault("T", {"A"}).Undecided("U", "D"), LineOf("c").Failed("timeout", true)};
    const ResultsDiff diff = Compare(lines, lines);
    EXPECT_FALSE(diff.HasDifference());
    EXPECT_THAT(Causes(diff), ElementsAre("T A (TOP_T/A): unchanged 1: b"));
    EXPECT_THAT(NotCompared(diff), ElementsAre("failed_both 1: c", "undecided_both 1: b"));
    EXPECT_EQ(diff.compared, 1);
}

TEST_F(ResultsDiffTest, CausesAreNewGoneOrUnchangedByBundle)
{
    const ResultsDiff diff = Compare(
        {LineOf("b1").Fault("T", {"A", "B"}), LineOf("b2").Fault("T", {"A"}), LineOf("b3").NoFault("T"), LineOf("b4").Fault("T", {"A"})},
        {LineOf("b1").Fault("T", {"A"}), LineOf("b2").NoFault("T"), LineOf("b3").Fault("T", {"A"}), LineOf("b4").Fault("T", {"B"})});
    EXPECT_THAT(Causes(diff), ElementsAre("T A (TOP_T/A): new 1: b3 gone 2: b2 b4 unchanged 1: b1", "T B (TOP_T/B): new 1: b4 gone 1: b1"));
    EXPECT_THAT(Verdicts(diff), ElementsAre("T fault -> no_fault in 1: b2", "T no_fault -> fault in 1: b3"));
    EXPECT_EQ(diff.Added() * 10 + diff.Gone(), 23);
    EXPECT_EQ(diff.ChangedVerdicts(), 2);
    EXPECT_EQ(diff.matrix[0][0], 2);
    EXPECT_TRUE(diff.HasDifference());
}

TEST_F(ResultsDiffTest, CutSetsAreComparedWhateverTheirOrder)
{
    EXPECT_FALSE(Compare({LineOf("b").Fault("T", {"A & B"})}, {LineOf("b").Fault("T", {"B & A"})}).HasDifference());
    const ResultsDiff diff = Compare({LineOf("b").Fault("T", {"A & B"})}, {LineOf("b").Fault("T", {"A & B & C"})});
    EXPECT_THAT(Causes(diff), ElementsAre("T A (TOP_T/A & TOP_T/B): gone 1: b", "T A (TOP_T/A & TOP_T/B & TOP_T/C): new 1: b"));
}

TEST_F(ResultsDiffTest, WhatFailedOrIsMissingIsNeitherNewNorGone)
{
    const ResultsDiff diff = Compare(
        {LineOf("b1").Fault("T", {"A"}), LineOf("b2").Fault("T", {"A"}), LineOf("b3").Failed("crashed"), LineOf("b4").Failed("crashed")},
        {LineOf("b1").Failed("timeout"), LineOf("b3").Fault("T", {"A"}), LineOf("b4").Failed("timeout"), LineOf("b5").Fault("T", {"A"})});
    EXPECT_THAT(Causes(diff), IsEmpty());
    EXPECT_THAT(NotCompared(diff), ElementsAre("missing_before 1: b5", "missing_after 1: b2", "failed_before 1: b3",
        "failed_after 1: b1", "failed_both 1: b4"));
    EXPECT_TRUE(diff.HasDifference());
    EXPECT_EQ(diff.before.bundles * 10 + diff.before.failed, 42);
    EXPECT_EQ(diff.compared, 0);
}

TEST_F(ResultsDiffTest, CausesOfUndecidedTreesAreNeitherNewNorGone)
{
    const ResultsDiff diff = Compare({LineOf("b1").Fault("T", {"A"}), LineOf("b2").Undecided("T", "A")},
        {LineOf("b1").Undecided("T", "B"), LineOf("b2").Fault("T", {"C"})});
    EXPECT_THAT(Causes(diff), ElementsAre("T A (TOP_T/A): not comparable 1: b1", "T C (TOP_T/C): not comparable 1: b2"));
    EXPECT_THAT(Verdicts(diff), IsEmpty());
    EXPECT_THAT(NotCompared(diff), ElementsAre("undecided_before 1: b2", "undecided_after 1: b1"));
    EXPECT_TRUE(diff.HasDifference());
}

TEST_F(ResultsDiffTest, ACauseWhoseCheckIsOpenOnTheOtherSideIsNeitherNewNorGone)
{
    const ResultsDiff diff = Compare({LineOf("b1").Fault("T", {"A", "B"}), LineOf("b2").Fault("T", {"A"}).Open("T", "B")},
        {LineOf("b1").Fault("T", {"A"}).Open("T", "B"), LineOf("b2").Fault("T", {"A", "B"})});
    EXPECT_THAT(Causes(diff), ElementsAre("T B (TOP_T/B): not comparable 2: b1 b2", "T A (TOP_T/A): unchanged 2: b1 b2"));
    EXPECT_THAT(NotCompared(diff), ElementsAre("open_before 1: b2", "open_after 1: b1"));
}

TEST_F(ResultsDiffTest, AnOpenCheckOfAnotherEventOrTreeHidesNothing)
{
    const ResultsDiff diff = Compare({LineOf("b").Fault("T", {"A", "B"}).NoFault("U")},
        {LineOf("b").Fault("T", {"A"}).Open("T", "C").NoFault("U").Open("U", "B")});
    EXPECT_THAT(Causes(diff), ElementsAre("T B (TOP_T/B): gone 1: b", "T A (TOP_T/A): unchanged 1: b"));
}

TEST_F(ResultsDiffTest, AnOpenEventWithASlashInItsIdMayBeAnywhere)
{
    const ResultsDiff diff = Compare({LineOf("b").Fault("T", {"A", "X/Y"})}, {LineOf("b").Fault("T", {"A"}).Open("T", "X/Y")});
    EXPECT_THAT(Causes(diff), ElementsAre("T X/Y (TOP_T/X/Y): not comparable 1: b", "T A (TOP_T/A): unchanged 1: b"));
}

TEST_F(ResultsDiffTest, ATreeOfOneRuleSetAloneIsAbsentInTheOther)
{
    const ResultsDiff diff = Compare({LineOf("b").Fault("OLD", {"A"})}, {LineOf("b").Fault("NEW", {"A"})});
    EXPECT_THAT(Verdicts(diff), ElementsAre("NEW absent -> fault in 1: b", "OLD fault -> absent in 1: b"));
    EXPECT_THAT(Causes(diff), ElementsAre("NEW A (TOP_NEW/A): new 1: b", "OLD A (TOP_OLD/A): gone 1: b"));
}

TEST_F(ResultsDiffTest, NewlyOpenChecksAreTold)
{
    const ResultsDiff diff = Compare({LineOf("b").Undecided("T", "A").NoFault("U")},
        {LineOf("b").Undecided("T", "A").Undecided("U", "D", "no_nodes")});
    ASSERT_EQ(diff.newlyOpen.size(), 1U);
    const auto& open = diff.newlyOpen[0];
    EXPECT_EQ(open.tree + " " + open.event + " " + open.rule + " " + open.reason + Bundles("in", open.bundles), "U D rule_D no_nodes in 1: b");
}

TEST_F(ResultsDiffTest, ANewlyOpenCheckIsADifferenceOfATreeThatStaysAFault)
{
    const ResultsDiff diff = Compare({LineOf("b").Fault("T", {"A"})}, {LineOf("b").Fault("T", {"A"}).Open("T", "D", "no_ids")});
    EXPECT_EQ(diff.Added() + diff.Gone() + diff.ChangedVerdicts(), 0);
    EXPECT_TRUE(diff.HasDifference());
}

TEST_F(ResultsDiffTest, SidesAreDescribed)
{
    const ResultsDiff diff = Compare({LineOf("b").NoFault("T").Seconds("1"), LineOf("c").NoFault("T").Now("2024-05-22 00:00:00").Seconds("2")},
        {LineOf("b").NoFault("T").Engine("2.0").RuleSet("sha256:bb").Now("2024-05-23 00:00:00").Seconds("0.5"),
            LineOf("d").Failed("no_bundle").RuleSet("").Now("").Seconds("9")});
    EXPECT_EQ(diff.before.path, "before.jsonl");
    EXPECT_THAT(diff.before.engines, ElementsAre("1.0"));
    EXPECT_THAT(diff.after.engines, ElementsAre("1.0", "2.0"));
    EXPECT_THAT(diff.after.ruleSets, ElementsAre("sha256:bb"));
    EXPECT_EQ(diff.before.firstMoment + " " + diff.before.lastMoment, "2024-05-20 12:00:00 2024-05-22 00:00:00");
    EXPECT_EQ(diff.otherMoment, 1);
    EXPECT_EQ(diff.before.seconds, 1);
    EXPECT_EQ(diff.after.seconds, 0.5);
}

TEST_F(ResultsDiffTest, OfSeveralLinesOfABundleThatOfTheLatestCommonMomentCounts)
{
    const LineOf early = LineOf("b").Fault("T", {"A"}).Now("2024-01-01 00:00:00");
    const LineOf late = LineOf("b").Fault("T", {"B"}).Now("2024-02-01 00:00:00");
    const LineOf latest = LineOf("b").Fault("T", {"C"}).Now("2024-03-01 00:00:00");
    EXPECT_THAT(Causes(Compare({early, latest, late}, {late, early})), ElementsAre("T B (TOP_T/B): unchanged 1: b"));
    EXPECT_THAT(Causes(Compare({early, late}, {latest})), ElementsAre("T B (TOP_T/B): gone 1: b", "T C (TOP_T/C): new 1: b"));
}

TEST_F(ResultsDiffTest, SeveralResultsOfTheMomentThatCountsAreRefused)
{
    const LineOf early = LineOf("b").Fault("T", {"A"}).Now("2024-01-01 00:00:00");
    const LineOf late = LineOf("b").Fault("T", {"B"}).Now("2024-02-01 00:00:00");
    LineOf otherRules = LineOf("b").Fault("T", {"B"}).Now("2024-02-01 00:00:00").RuleSet("sha256:bb");
    const std::string refusal = ": has several results of the bundle \"b\" as of 2024-02-01 00:00:00, of different rule sets or "
        "engines, and none of them is the latest: compare results of one rule set and one engine";
    mDir.Write("one.jsonl", early.Text() + late.Text());
    mDir.Write("mixed.jsonl", early.Text() + late.Text() + otherRules.Text());
    EXPECT_EQ(FailureOf("one.jsonl", "mixed.jsonl"), "mixed_rules: mixed.jsonl" + refusal);
    EXPECT_EQ(FailureOf("mixed.jsonl", "one.jsonl"), "mixed_rules: mixed.jsonl" + refusal);
    mDir.Write("mixed.jsonl", early.Text() + late.Text() + LineOf("b").NoFault("T").Now("2024-02-01 00:00:00").Engine("2").Text());
    EXPECT_EQ(FailureOf("one.jsonl", "mixed.jsonl"), "mixed_rules: mixed.jsonl" + refusal);
    // Another moment counts, or no other line of it was diagnosed.
    mDir.Write("one.jsonl", early.Text());
    EXPECT_EQ(FailureOf("one.jsonl", "mixed.jsonl"), "none");
    mDir.Write("mixed.jsonl", early.Text() + otherRules.Text() + LineOf("b").Failed("timeout").Now("2024-02-01 00:00:00").Text());
    mDir.Write("one.jsonl", late.Text());
    EXPECT_THAT(FailureOf("one.jsonl", "mixed.jsonl"), "none");
    EXPECT_EQ(FailureOf("mixed.jsonl", "mixed.jsonl"), "none");
}

TEST_F(ResultsDiffTest, FiveExamplesAreTheFirstByName)
{
    Lines before;
    Lines after;
    for (const char* name : {"b7", "b3", "b5", "b1", "b6", "b2", "b4"}) {
        before.push_back(LineOf(name).Fault("T", {"A"}));
        after.push_back(LineOf(name).NoFault("T"));
    }
    EXPECT_THAT(Causes(Compare(before, after)), ElementsAre("T A (TOP_T/A): gone 7: b1 b2 b3 b4 b5"));
}

TEST_F(ResultsDiffTest, DatabasesAndLinesCompareAlike)
{
    const Lines before = {LineOf("b").Fault("T", {"A"}), LineOf("c").NoFault("T")};
    const Lines after = {LineOf("b").NoFault("T"), LineOf("c").Fault("T", {"A"})};
    const auto expected = Causes(Compare(before, after));
    ASSERT_TRUE(diagnosis::results_db::ImportResults({"before.jsonl"}, "before.db", {}).isImported);
    ASSERT_TRUE(diagnosis::results_db::ImportResults({"after.jsonl"}, "after.db", {}).isImported);
    const std::string bytes = mDir.Read("before.db");
    for (const std::string first : {"before.db", "before.jsonl"}) {
        for (const std::string second : {"after.db", "after.jsonl"}) {
            ResultsDiff diff;
            EXPECT_FALSE(CompareResults(first, second, diff));
            EXPECT_EQ(Causes(diff), expected) << first << " " << second;
        }
    }
    EXPECT_EQ(mDir.Read("before.db"), bytes);
}

TEST_F(ResultsDiffTest, TheOrderOfLinesMakesNoDifference)
{
    std::mt19937 random(7);
    Lines before;
    Lines after;
    for (int bundle = 0; bundle < 60; ++bundle) {
        for (Lines* lines : {&before, &after}) {
            LineOf line("b" + std::to_string(bundle));
            const auto kind = random() % 5;
            lines->push_back(kind == 0 ? line.NoFault("T") : kind == 1 ? line.Undecided("T", "A") : kind == 2 ? line.Failed("timeout")
                : line.Fault("T", {kind == 3 ? "A" : "B", "C"}).NoFault("U"));
        }
    }
    const ResultsDiff diff = Compare(before, after);
    std::shuffle(before.begin(), before.end(), random);
    std::shuffle(after.begin(), after.end(), random);
    const ResultsDiff other = Compare(before, after);
    EXPECT_EQ(Causes(other), Causes(diff));
    EXPECT_EQ(Verdicts(other), Verdicts(diff));
    EXPECT_EQ(NotCompared(other), NotCompared(diff));
    EXPECT_EQ(other.matrix, diff.matrix);
}

TEST_F(ResultsDiffTest, WhatIsNoResultsIsAFailure)
{
    mDir.Write("good.jsonl", LineOf("b").NoFault("T").Text());
    mDir.Write("bad.jsonl", LineOf("b").NoFault("T").Text() + "nonsense\n");
    EXPECT_THAT(FailureOf("good.jsonl", "bad.jsonl"), HasSubstr("bad_line: bad.jsonl:2: line 1, column 1"));
    EXPECT_EQ(FailureOf("none.jsonl", "good.jsonl"), "no_results: none.jsonl: can't be read: No such file or directory");
    diagnosis::Connection other;
    ASSERT_TRUE(other.Open("other.db", diagnosis::Connection::Mode::CREATE));
    ASSERT_TRUE(other.Execute("CREATE TABLE bundle(id)"));
    EXPECT_EQ(FailureOf("other.db", "good.jsonl"), "bad_results: other.db: is no results database");
}

TEST_F(ResultsDiffTest, AnAlteredDatabaseIsAFailureOrReadAsFarAsItGoes)
{
    mDir.Write("good.jsonl", LineOf("b").Fault("T", {"A"}).Open("T", "B").Text());
    ASSERT_TRUE(diagnosis::results_db::ImportResults({"good.jsonl"}, "r.db", {}).isImported);
    diagnosis::Connection database;
    ASSERT_TRUE(database.Open("r.db", diagnosis::Connection::Mode::CREATE));
    ASSERT_TRUE(database.Execute("DELETE FROM cause_def; DELETE FROM tree_def; DELETE FROM outcome_def; DELETE FROM check_def"));
    EXPECT_EQ(FailureOf("r.db", "good.jsonl"), "none");
    ASSERT_TRUE(database.Execute("DROP TABLE open_check"));
    EXPECT_EQ(FailureOf("good.jsonl", "r.db"), "bad_results: r.db: lacks the table open_check");
}

TEST_F(ResultsDiffTest, ADatabaseWithADamagedPageIsRefusedInsteadOfCompared)
{
    mDir.Write("good.jsonl", LineOf("b").Fault("T", {"A"}).Text());
    for (const std::string table : {"tree_def", "outcome_def", "cause_def", "cut_set_member", "check_def", "tree",
             "root_cause", "open_check", "bundle", "run"}) {
        mDir.Write("lines.jsonl", LineOf("b").Fault("T", {"A"}).Open("T", "B").Text());
        const std::string path = table + ".db";
        ASSERT_TRUE(diagnosis::results_db::ImportResults({"lines.jsonl"}, path, {}).isImported);
        DamageTable(path, table);
        EXPECT_EQ(FailureOf(path, "good.jsonl"), "bad_results: " + path + ": database disk image is malformed");
        EXPECT_EQ(FailureOf("good.jsonl", path), "bad_results: " + path + ": database disk image is malformed");
    }
}

TEST_F(ResultsDiffTest, AViewInPlaceOfATableIsRefused)
{
    mDir.Write("good.jsonl", LineOf("b").Fault("T", {"A"}).Text());
    ASSERT_TRUE(diagnosis::results_db::ImportResults({"good.jsonl"}, "r.db", {}).isImported);
    diagnosis::Connection database;
    ASSERT_TRUE(database.Open("r.db", diagnosis::Connection::Mode::CREATE));
    ASSERT_TRUE(database.Execute("DROP TABLE outcome_def; CREATE VIEW outcome_def AS"
        " WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT i AS id, '' AS verdict FROM n WHERE i < 0"))
        << database.GetError();
    EXPECT_EQ(FailureOf("r.db", "good.jsonl"), "bad_results: r.db: lacks the table outcome_def");
}

} // namespace
