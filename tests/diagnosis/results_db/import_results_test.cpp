#include "diagnosis/results_db/import_results.h"

#include <filesystem>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/scratch/folder_lock.h"
#include "diagnosis/sqlite/connection.h"
#include "diagnosis/text/bounded_lines.h"
#include "tests/diagnosis/results_db/damaged_table.h"
#include "tests/diagnosis/results_db/result_lines.h"
#include "tests/support/database_rows.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::Connection;
using diagnosis::results_db::ImportOptions;
using diagnosis::results_db::ImportReport;
using diagnosis::results_db::ImportResults;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class ImportResultsTest : public testing::Test {
protected:
    // Imports lines, by default into r.db.
    ImportReport Import(const std::vector<LineOf>& lines, const ImportOptions& options = {})
    {
        std::string text;
        for (const LineOf& line : lines) {
            text += line.Text();
        }
        return ImportText(text, options);
    }

    ImportReport ImportText(const std::string& text, const ImportOptions& options = {})
    {
        mDir.Write("lines.jsonl", text);
        return ImportResults({"lines.jsonl"}, "r.db", options);
    }

    // "new 2, replaced 0, there 1, skipped 0", or the first failure.
    static std::string Text(const ImportReport& report)
    {
        const auto& counts = report.counts;
        return report.isImported ? "new " + std::to_string(counts.added) + ", replaced " + std::to_string(counts.replaced)
                + ", there " + std::to_string(counts.there) + ", skipped " + std::to_string(counts.skipped)
                                 : CodeWord(report.failures.at(0).code) + (": " + report.failures.at(0).message);
    }

    static std::vector<std::string> Rows(const std::string& sql) { return DatabaseRows("r.db", sql); }

    static std::vector<std::string> Bundles() { return Rows("SELECT bundle, ok, error, rule_set FROM bundles ORDER BY 1, 2, 3, 4"); }

    TempDir mDir;
};

TEST_F(ImportResultsTest, ViewsShowAllThatTheLinesSay)
{
    EXPECT_EQ(Text(Import({LineOf("b1").Fault("T", {"A & B", "C"}).Undecided("U", "D").Warning("w", "text").Device("dev"),
                  LineOf("b2").Fault("T", {"C"}).NoFault("U").Seconds("1.5"), LineOf("b3").Failed("timeout", true)})),
        "new 3, replaced 0, there 0, skipped 0");
    EXPECT_THAT(Rows("SELECT bundle, ok, engine, rule_set, device, now, seconds, error, error_message, retry FROM bundles"),
        ElementsAre("b1|1|1.0|sha256:aa|dev|2024-05-20 12:00:00|0.25|||0", "b2|1|1.0|sha256:aa||2024-05-20 12:00:00|1.5|||0",
            "b3|0|1.0|sha256:aa||2024-05-20 12:00:00|0.25|timeout|b3: timeout|1"));
    EXPECT_THAT(Rows("SELECT bundle, tree, version, verdict, is_fault, complete, total, decided, not_checked FROM trees"),
        ElementsAre("b1|T|1|fault|1|1|2|2|0", "b1|U|1|undecided|0|0|2|1|1", "b2|T|1|fault|1|1|2|2|0", "b2|U|1|no_fault|0|1|2|2|0"));
    EXPECT_THAT(Rows("SELECT bundle, tree, cause, name, cut_set, fault_description, suggestions FROM root_causes"),
        ElementsAre("b1|T|A|Name of A|TOP_T/A & TOP_T/B|DESC_A|[\"SUGGEST_A\"]", "b1|T|C|Name of C|TOP_T/C|DESC_C|[\"SUGGEST_C\"]",
            "b2|T|C|Name of C|TOP_T/C|DESC_C|[\"SUGGEST_C\"]"));
    EXPECT_THAT(Rows("SELECT bundle, tree, event, rule, \"check\", reason FROM open_checks"),
        ElementsAre("b1|U|D|rule_D|not_checked|no_runner"));
    EXPECT_THAT(Rows("SELECT bundle, code, message FROM warnings"), ElementsAre("b1|w|text"));
    EXPECT_THAT(Rows("SELECT bundle, tree, cause, repair, operation FROM repairs WHERE bundle = 'b2'"),
        ElementsAre("b2|T|C|REPAIR_C|replace"));
    EXPECT_THAT(Rows("SELECT path FROM cut_set_member ORDER BY cause_def, place"),
        ElementsAre("TOP_T/A", "TOP_T/B", "TOP_T/C"));
}

TEST_F(ImportResultsTest, SummingViewsAreSortedByNumber)
{
    Import({LineOf("b1").Fault("T", {"A", "C"}).Undecided("U", "D"), LineOf("b2").Fault("T", {"C"}).Undecided("U", "E", "no_nodes"),
        LineOf("b3").NoFault("T").Undecided("U", "D"), LineOf("b4").Failed("bad_zip"), LineOf("b5").Failed("timeout", true),
        LineOf("b6").Failed("timeout", true)});
    EXPECT_THAT(Rows("SELECT tree, cause, cut_set, bundles FROM top_causes"), ElementsAre("T|C|TOP_T/C|2", "T|A|TOP_T/A|1"));
    EXPECT_THAT(Rows("SELECT reason, trees, bundles, checks FROM undecided_by_reason"),
        ElementsAre("no_runner|2|2|2", "no_nodes|1|1|1"));
    EXPECT_THAT(Rows("SELECT code, retry, bundles, example FROM failed_by_code"),
        ElementsAre("timeout|1|2|b5: timeout", "bad_zip|0|1|b4: bad_zip"));
}

TEST_F(ImportResultsTest, WhatRulesSayIsKeptOnce)
{
    Import({LineOf("b1").Fault("T", {"A"}).Undecided("U", "D"), LineOf("b2").Fault("T", {"A"}).Undecided("U", "D")});
    Import({LineOf("b3").Fault("T", {"A"}).Undecided("U", "D"), LineOf("b4").Fault("T", {"A & B"})});
    EXPECT_THAT(Rows("SELECT (SELECT count(*) FROM run), (SELECT count(*) FROM tree_def), (SELECT count(*) FROM outcome_def),"
                     " (SELECT count(*) FROM cause_def), (SELECT count(*) FROM check_def)"),
        ElementsAre("1|2|2|2|1"));
}

TEST_F(ImportResultsTest, TextsThatJoinAlikeAreDifferentRows)
{
    Import({LineOf("b1").Fault("T", {"A & B"})});
    Import({LineOf("b2").Fault("T", {"A", "B"})});
    Import({LineOf("b3").Fault("T", {"A", "B"}), LineOf("b4").Fault("T", {"A & B"})});
    EXPECT_THAT(Rows("SELECT count(*) FROM cause_def"), ElementsAre("3"));
}

TEST_F(ImportResultsTest, ImportingAgainAddsNothing)
{
    const std::vector<LineOf> lines = {LineOf("b1").Fault("T", {"A"}).Warning("w", "text"), LineOf("b2").Failed("timeout", true),
        LineOf("b3").Failed("no_bundle").RuleSet("").Now(""), LineOf("b4").NoFault("T").Now("")};
    Import(lines);
    const auto before = Rows("SELECT * FROM bundle, run");
    EXPECT_EQ(Text(Import(lines)), "new 0, replaced 0, there 4, skipped 0");
    EXPECT_EQ(Rows("SELECT * FROM bundle, run"), before);
    EXPECT_THAT(Rows("SELECT count(*) FROM warning"), ElementsAre("1"));
}

TEST_F(ImportResultsTest, ABundleTwiceInOneFileIsOne)
{
    EXPECT_EQ(Text(Import({LineOf("b").NoFault("T"), LineOf("b").NoFault("T").Seconds("9")})),
        "new 1, replaced 0, there 1, skipped 0");
}

TEST_F(ImportResultsTest, AnotherMomentOfABundleIsAnotherResult)
{
    EXPECT_EQ(Text(Import({LineOf("b").NoFault("T"), LineOf("b").NoFault("T").Now("2024-05-21 00:00:00")})),
        "new 2, replaced 0, there 0, skipped 0");
}

TEST_F(ImportResultsTest, AnotherEngineIsAnotherRun)
{
    Import({LineOf("b").NoFault("T"), LineOf("b").NoFault("T").Engine("2.0")});
    EXPECT_THAT(Rows("SELECT engine, rule_set FROM run"), ElementsAre("1.0|sha256:aa", "2.0|sha256:aa"));
    EXPECT_THAT(Bundles(), SizeIs(2));
}

TEST_F(ImportResultsTest, AResultTakesThePlaceOfAFailure)
{
    Import({LineOf("b").Failed("timeout", true).Warning("w", "text"), LineOf("c").Failed("crashed", true).RuleSet("")});
    EXPECT_EQ(Text(Import({LineOf("b").NoFault("T"), LineOf("c").NoFault("T")})), "new 0, replaced 2, there 0, skipped 0");
    EXPECT_THAT(Bundles(), ElementsAre("b|1||sha256:aa", "c|1||sha256:aa"));
    EXPECT_THAT(Rows("SELECT * FROM failure UNION SELECT bundle, 0, 0, 0 FROM warning"), IsEmpty());
}

TEST_F(ImportResultsTest, AFailureTakesThePlaceOfAnEarlierOne)
{
    Import({LineOf("b").Failed("crashed", true).RuleSet("")});
    EXPECT_EQ(Text(Import({LineOf("b").Failed("timeout", true)})), "new 0, replaced 1, there 0, skipped 0");
    EXPECT_THAT(Bundles(), ElementsAre("b|0|timeout|sha256:aa"));
    EXPECT_EQ(Text(Import({LineOf("b").Failed("crashed", true).RuleSet("")})), "new 0, replaced 1, there 0, skipped 0");
    EXPECT_THAT(Bundles(), ElementsAre("b|0|crashed|"));
}

TEST_F(ImportResultsTest, AFailureIsPassedOverWhereThereIsAResult)
{
    Import({LineOf("b").NoFault("T")});
    EXPECT_EQ(Text(Import({LineOf("b").Failed("timeout", true), LineOf("b").Failed("crashed").RuleSet("").Now("")})),
        "new 0, replaced 0, there 2, skipped 0");
    EXPECT_THAT(Bundles(), ElementsAre("b|1||sha256:aa"));
}

TEST_F(ImportResultsTest, AFailureUnderAnotherRuleSetStands)
{
    ImportOptions mixed;
    mixed.acceptsMixedRules = true;
    Import({LineOf("b").NoFault("T")});
    EXPECT_EQ(Text(Import({LineOf("b").Failed("timeout").RuleSet("sha256:bb")}, mixed)), "new 1, replaced 0, there 0, skipped 0");
    EXPECT_THAT(Bundles(), ElementsAre("b|0|timeout|sha256:bb", "b|1||sha256:aa"));
}

TEST_F(ImportResultsTest, RuleSetsAreMixedOnlyIfAsked)
{
    const std::vector<LineOf> lines = {LineOf("b1").NoFault("T"), LineOf("b2").NoFault("T").RuleSet("sha256:bb")};
    EXPECT_EQ(Text(Import(lines)), "mixed_rules: lines.jsonl:2: is of the rule set \"sha256:bb\", and r.db has results of "
                                   "\"sha256:aa\"; --mixed-rules takes both");
    EXPECT_FALSE(mDir.Has("r.db"));
    Import({lines[0]});
    EXPECT_THAT(Text(Import({lines[1]})), HasSubstr("lines.jsonl:1: is of the rule set \"sha256:bb\""));
    EXPECT_THAT(Bundles(), SizeIs(1));
    ImportOptions options;
    options.acceptsMixedRules = true;
    EXPECT_EQ(Text(Import(lines, options)), "new 1, replaced 0, there 1, skipped 0");
}

TEST_F(ImportResultsTest, ALineWithoutRuleSetMixesWithAny)
{
    EXPECT_EQ(Text(Import({LineOf("b1").NoFault("T"), LineOf("b2").Failed("no_bundle").RuleSet("")})),
        "new 2, replaced 0, there 0, skipped 0");
}

TEST_F(ImportResultsTest, ABadLineIsToldWithItsPlaceAndNothingIsImported)
{
    const std::string good = LineOf("b1").NoFault("T").Text();
    const ImportReport report = ImportText(good + "\n  \nnonsense\n" + good + "{}\n");
    EXPECT_FALSE(report.isImported);
    ASSERT_THAT(report.failures, SizeIs(2));
    EXPECT_THAT(report.failures[0].message, HasSubstr("lines.jsonl:4: line 1, column 1"));
    EXPECT_EQ(report.failures[1].message, "lines.jsonl:6: schema is missing");
    EXPECT_FALSE(mDir.Has("r.db"));
}

TEST_F(ImportResultsTest, ABadLineLeavesTheDatabaseAsItWas)
{
    Import({LineOf("b1").NoFault("T")});
    const std::string before = mDir.Read("r.db");
    EXPECT_FALSE(ImportText(LineOf("b2").NoFault("T").Text() + "nonsense\n").isImported);
    EXPECT_EQ(mDir.Read("r.db"), before);
    EXPECT_FALSE(mDir.Has("r.db-journal"));
}

TEST_F(ImportResultsTest, BadLinesAreSkippedIfAsked)
{
    ImportOptions options;
    options.skipsBadLines = true;
    const ImportReport report = ImportText("nonsense\n" + LineOf("b1").NoFault("T").Text(), options);
    EXPECT_EQ(Text(report), "new 1, replaced 0, there 0, skipped 1");
    EXPECT_THAT(report.failures, SizeIs(1));
}

TEST_F(ImportResultsTest, TwentyBadLinesAreListed)
{
    std::string text;
    for (int line = 0; line < 100; ++line) {
        text += "nonsense\n";
    }
    EXPECT_THAT(ImportText(text).failures, SizeIs(21));
    ImportOptions options;
    options.skipsBadLines = true;
    EXPECT_EQ(Text(ImportText(text, options)), "new 0, replaced 0, there 0, skipped 100");
}

TEST_F(ImportResultsTest, EvidenceIsKeptIfAsked)
{
    const LineOf line = LineOf("b").NoFault("T").Explained("T", R"({"event": "A", "rules": []})");
    Import({line});
    EXPECT_THAT(Rows("SELECT name FROM sqlite_master WHERE name = 'evidence'"), IsEmpty());
    ImportOptions options;
    options.withEvidence = true;
    EXPECT_EQ(Text(Import({line, LineOf("c").NoFault("T").Explained("T", R"({"event": "A", "rules": []})")}, options)),
        "new 1, replaced 0, there 1, skipped 0");
    EXPECT_THAT(Rows("SELECT name, tree, event, evidence FROM evidence JOIN bundle ON bundle.id = bundle JOIN tree_def"
                     " ON tree_def.id = tree_def"),
        ElementsAre(R"(c|T|A|{"event": "A", "rules": []})"));
}

TEST_F(ImportResultsTest, SeveralFilesAreOneTransaction)
{
    mDir.Write("one.jsonl", LineOf("b1").NoFault("T").Text());
    mDir.Write("two.jsonl", LineOf("b2").NoFault("T").Text());
    EXPECT_EQ(Text(ImportResults({"one.jsonl", "two.jsonl"}, "folder/r.db", {})), "new 2, replaced 0, there 0, skipped 0");
    EXPECT_EQ(Text(ImportResults({"one.jsonl", "none.jsonl"}, "r.db", {})), "no_results: none.jsonl: can't be read: No such file or directory");
    EXPECT_EQ(Text(ImportResults({"."}, "r.db", {})), "no_results: .: can't be read: is a folder");
    EXPECT_FALSE(mDir.Has("r.db"));
}

TEST_F(ImportResultsTest, OtherFilesAreNotTouched)
{
    Connection other;
    ASSERT_TRUE(other.Open("r.db", Connection::Mode::CREATE));
    ASSERT_TRUE(other.Execute("CREATE TABLE bundle(id)"));
    const std::string before = mDir.Read("r.db");
    EXPECT_EQ(Text(Import({LineOf("b").NoFault("T")})), "bad_results: r.db: is no results database");
    EXPECT_EQ(mDir.Read("r.db"), before);
    EXPECT_EQ(Text(ImportResults({"r.db"}, "r.db", {})), "results_not_written: r.db: is a file that is read");
    EXPECT_EQ(Text(ImportResults({"lines.jsonl"}, ".", {})), "bad_results: .: is a folder");
}

TEST_F(ImportResultsTest, AnEmptyFileBecomesADatabase)
{
    mDir.Write("r.db", "");
    EXPECT_EQ(Text(Import({LineOf("b").NoFault("T")})), "new 1, replaced 0, there 0, skipped 0");
}

TEST_F(ImportResultsTest, AnAlteredDatabaseIsAFailure)
{
    Import({LineOf("b1").NoFault("T")});
    Connection database;
    ASSERT_TRUE(database.Open("r.db", Connection::Mode::CREATE));
    ASSERT_TRUE(database.Execute("DROP TABLE tree"));
    EXPECT_EQ(Text(Import({LineOf("b2").NoFault("T")})), "bad_results: r.db: lacks the table tree");
}

TEST_F(ImportResultsTest, WhatCannotBeWrittenIsToldWithItsReason)
{
    const auto failureAt = [this](const std::string& target) {
        mDir.Write("lines.jsonl", LineOf("b").NoFault("T").Text());
        return ImportResults({"lines.jsonl"}, target, {}).failures.at(0);
    };
    mDir.Write("file", "");
    EXPECT_EQ(failureAt("file/r.db").message, "file/r.db: can't be written: Not a directory");
    EXPECT_EQ(failureAt("file/r.db").status, diagnosis::ExitStatus::INTERNAL);
    EXPECT_EQ(failureAt("lines.jsonl").status, diagnosis::ExitStatus::WRONG_USE);
    Import({LineOf("b1").NoFault("T")});
    Connection database;
    ASSERT_TRUE(database.Open("r.db", Connection::Mode::CREATE));
    ASSERT_TRUE(database.Execute("CREATE TABLE bystander(id); BEGIN IMMEDIATE"));
    EXPECT_EQ(failureAt("r.db").message, "r.db: database is locked");
}

TEST_F(ImportResultsTest, AnImportWaitsForTheOneThatHasTheDatabaseLocked)
{
    Import({LineOf("b1").NoFault("T")});
    Connection database;
    ASSERT_TRUE(database.Open("r.db", Connection::Mode::CREATE));
    ASSERT_TRUE(database.Execute("BEGIN IMMEDIATE"));
    mDir.Write("lines.jsonl", LineOf("b2").NoFault("T").Text());
    ImportOptions options;
    options.tryAgain = [&database](int tries) { return tries < 9 && (tries == 0 || database.Execute("COMMIT")); };
    EXPECT_EQ(ImportResults({"lines.jsonl"}, "r.db", options).counts.added, 1);
}

TEST_F(ImportResultsTest, ImportsThatMakeADatabaseTakeTurns)
{
    mDir.Write("lines.jsonl", LineOf("b1").NoFault("T").Text());
    mDir.Write("others.jsonl", LineOf("b2").NoFault("T").Text());
    ImportReport refused;
    ImportOptions options;
    options.redact = [&refused](diagnosis::results_db::ResultLine&) { refused = ImportResults({"others.jsonl"}, "r.db", {}); };
    EXPECT_TRUE(ImportResults({"lines.jsonl"}, "r.db", options).isImported);
    ASSERT_EQ(refused.failures.size(), 1U);
    EXPECT_EQ(refused.failures[0].message, "r.db: another program is making a database in this folder");
    // The second finds the file of the first when its turn has come.
    std::filesystem::rename("r.db", "first.db");
    auto turn = std::make_unique<diagnosis::FolderLock>();
    ASSERT_TRUE(turn->Take(".", nullptr));
    options = {};
    options.tryAgain = [&turn](int) {
        std::filesystem::rename("first.db", "r.db");
        turn.reset();
        return true;
    };
    EXPECT_EQ(ImportResults({"others.jsonl"}, "r.db", options).counts.added, 1);
    EXPECT_THAT(DatabaseRows("r.db", "SELECT name FROM bundle"), ElementsAre("b1", "b2"));
}

TEST_F(ImportResultsTest, AFileThatAppearsDuringTheImportIsNotReplaced)
{
    mDir.Write("lines.jsonl", LineOf("b1").NoFault("T").Text());
    ImportOptions options;
    options.redact = [this](diagnosis::results_db::ResultLine&) { mDir.Write("r.db", "of another"); };
    const auto report = ImportResults({"lines.jsonl"}, "r.db", options);
    EXPECT_FALSE(report.isImported);
    EXPECT_EQ(report.failures.at(0).message, "r.db: was made by another program meanwhile");
    EXPECT_EQ(mDir.Read("r.db"), "of another");
}

// A line of several bundles' rows, so that some of them are written late.
TEST_F(ImportResultsTest, AFailureOfTheLastRowsIsOneOfTheImport)
{
    Import({LineOf("b1").Fault("T", {"A"})});
    FillTables("r.db");
    DamageLastRows("r.db", "root_cause");
    const std::string before = mDir.Read("r.db");
    EXPECT_EQ(Text(Import({LineOf("b2").Fault("T", {"A"})})), "results_not_written: r.db: database disk image is malformed");
    EXPECT_EQ(mDir.Read("r.db"), before);
}

TEST_F(ImportResultsTest, ARefusedImportLeavesNoFolders)
{
    mDir.MakeDir("there");
    mDir.Write("lines.jsonl", "nonsense\n");
    EXPECT_FALSE(ImportResults({"lines.jsonl"}, "there/new/newer/r.db", {}).isImported);
    EXPECT_TRUE(std::filesystem::is_empty("there"));
    EXPECT_TRUE(mDir.Has("there"));
}

// What is read of such tables is all that a line is compared with: rows that were not read would be there twice.
TEST_F(ImportResultsTest, NothingIsAddedToADatabaseWithADamagedPage)
{
    const std::vector<LineOf> known = {LineOf("b").Fault("T", {"A"}).Open("T", "B").Warning("w", "text")};
    for (const std::string table : {"run", "bundle", "failure", "tree_def", "outcome_def", "check_def", "warning_def",
             "cause_def", "cut_set_member", "repair"}) {
        std::filesystem::remove("r.db");
        ASSERT_TRUE(Import(known).isImported);
        FillTables("r.db");
        DamageLastRows("r.db", table);
        const std::string before = mDir.Read("r.db");
        const std::string code = table == "run" ? "bad_results" : "results_not_written";
        // It has nothing that the tables of definitions don't have in their first rows.
        EXPECT_EQ(Text(Import({LineOf("c").Fault("T", {"A"}).Open("T", "B").Warning("w", "text")})),
            code + ": r.db: database disk image is malformed") << table;
        EXPECT_EQ(mDir.Read("r.db"), before);
    }
}

// SQLite itself writes nothing more after a damaged page, but goes on after a statement that was interrupted.
TEST_F(ImportResultsTest, NothingIsAddedToADatabaseWhoseTablesHaveNoEnd)
{
    for (const std::string table : {"run", "failure", "cut_set_member"}) {
        std::filesystem::remove("r.db");
        Import({LineOf("b").Fault("T", {"A"})});
        MakeEndless("r.db", table);
        EXPECT_EQ(Text(Import({LineOf("c").NoFault("T")})), (table == "run" ? "bad_results" : "results_not_written")
            + std::string(": r.db: takes more work than a database of its size can need"));
    }
}

TEST_F(ImportResultsTest, ALineMayBeLongerThanTheDatabase)
{
    Import({LineOf("b").NoFault("T")});
    const LineOf large = LineOf("c").Warning("w", std::string(2'000'000, 'x')).NoFault("T");
    EXPECT_EQ(Text(Import({large})), "new 1, replaced 0, there 0, skipped 0");
}

TEST_F(ImportResultsTest, ALineWithoutAnEndIsRefusedByItsNumber)
{
    const std::string good = LineOf("b").NoFault("T").Text();
    const std::string text = good + std::string(diagnosis::LONGEST_LINE + 1, ' ') + "\n";
    EXPECT_EQ(Text(ImportText(text + good)), "bad_line: lines.jsonl:2: the line is longer than 64 MiB");
    ImportOptions options;
    options.skipsBadLines = true;
    EXPECT_EQ(Text(ImportText(text + LineOf("c").NoFault("T").Text(), options)), "new 2, replaced 0, there 0, skipped 1");
}

TEST_F(ImportResultsTest, ForeignTextIsText)
{
    const std::string name = "x'); DROP TABLE bundle; --";
    EXPECT_EQ(Text(Import({LineOf(name).NoFault("T'\\u0000")})), "new 1, replaced 0, there 0, skipped 0");
    EXPECT_THAT(Rows("SELECT name FROM bundle"), ElementsAre(name));
    EXPECT_EQ(Text(Import({LineOf(name).NoFault("T'\\u0000")})), "new 0, replaced 0, there 1, skipped 0");
}

TEST_F(ImportResultsTest, WhatALineSaysTwiceCountsOnce)
{
    EXPECT_EQ(Text(Import({LineOf("b").Fault("T", {"A", "A"}).Fault("T", {"A"}).Warning("w", "text").Warning("w", "text")})),
        "new 1, replaced 0, there 0, skipped 0");
    EXPECT_THAT(Rows("SELECT (SELECT count(*) FROM tree), (SELECT count(*) FROM root_cause), (SELECT count(*) FROM warning)"),
        ElementsAre("1|1|1"));
}

TEST_F(ImportResultsTest, OfTreesWithOneIdTheMostSeriousVerdictCounts)
{
    Import({LineOf("a").NoFault("T").Fault("T", {"A"}), LineOf("b").Fault("T", {"B"}).Undecided("T", "D"),
        LineOf("c").NoFault("T").Undecided("T", "D")});
    EXPECT_THAT(Rows("SELECT bundle, verdict, is_fault FROM trees ORDER BY bundle"),
        ElementsAre("a|fault|1", "b|fault|1", "c|undecided|0"));
    EXPECT_THAT(Rows("SELECT bundle, event FROM open_checks ORDER BY bundle"), ElementsAre("b|D", "c|D"));
}

TEST_F(ImportResultsTest, RepairsOnRecordHaveTheirDate)
{
    Import({LineOf("b").NoFault("T").Repaired("FAN", "2024-05-01 08:00:00").Repaired("FAN", "soon"),
        LineOf("c").Failed("crashed").Repaired("FAN", "")});
    EXPECT_THAT(Rows("SELECT name, place, repair, datetime(date, 'unixepoch') FROM repaired JOIN bundle ON id = bundle"),
        ElementsAre("b|0|FAN|2024-05-01 08:00:00", "b|1|FAN|null", "c|0|FAN|null"));
    Import({LineOf("c").NoFault("T")});
    EXPECT_THAT(Rows("SELECT count(*) FROM repaired"), ElementsAre("2"));
}

TEST_F(ImportResultsTest, MomentsOfAllYearsComeBack)
{
    for (const std::string now : {"1969-12-31 23:59:59", "2000-02-29 00:00:00", "9999-12-31 23:59:59"}) {
        Import({LineOf("at " + now).NoFault("T").Now(now)});
        EXPECT_THAT(Rows("SELECT now FROM bundles WHERE bundle = 'at " + now + "'"), ElementsAre(now));
    }
}

} // namespace
