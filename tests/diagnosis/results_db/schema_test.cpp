#include "diagnosis/results_db/schema.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/results_db/results_database.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::Connection;
using diagnosis::ReadOnlyDatabase;
using diagnosis::results_db::CreateSchema;
using diagnosis::results_db::OpenResults;

class SchemaTest : public testing::Test {
protected:
    // Creates a results database and runs `sql` in it.
    void Make(const std::string& sql)
    {
        Connection database;
        ASSERT_TRUE(database.Open("r.db", Connection::Mode::CREATE));
        ASSERT_FALSE(CreateSchema(database, "r.db"));
        ASSERT_TRUE(database.Execute(diagnosis::results_db::EVIDENCE_SCHEMA + sql)) << database.GetError();
    }

    std::string MessageOf(const std::string& path)
    {
        ReadOnlyDatabase database;
        const auto failure = OpenResults(path, database);
        return failure ? CodeWord(failure->code) + (": " + failure->message) : "none";
    }

    TempDir mDir;
};

TEST_F(SchemaTest, ADatabaseThatAnImportHasLockedIsWaitedFor)
{
    Make("");
    Connection importing;
    ASSERT_TRUE(importing.Open("r.db", Connection::Mode::CREATE) && importing.Execute("BEGIN EXCLUSIVE"));
    ReadOnlyDatabase reading;
    EXPECT_EQ(OpenResults("r.db", reading, [](int) { return false; })->message, "r.db: database is locked");
    EXPECT_FALSE(OpenResults("r.db", reading, [&importing](int) { return importing.Execute("COMMIT"); }));
}

TEST_F(SchemaTest, ADatabaseWhoseLastImportHasNotEndedIsReadWithoutIt)
{
    Make("");
    Connection importing;
    ASSERT_TRUE(importing.Open("r.db", Connection::Mode::CREATE) && importing.Execute("PRAGMA synchronous = OFF; BEGIN; DROP VIEW trees"));
    for (const char* part : {"", "-journal"}) {
        std::filesystem::copy_file(std::string("r.db") + part, std::string("dead.db") + part);
    }
    EXPECT_EQ(MessageOf("dead.db"), "none");
    EXPECT_TRUE(mDir.Has("dead.db-journal")) << "it is left to the next import";
}

TEST_F(SchemaTest, ViewsCanBeAskedOfAnEmptyDatabase)
{
    Make("");
    ReadOnlyDatabase database;
    ASSERT_FALSE(OpenResults("r.db", database));
    for (const std::string view : {"bundles", "trees", "root_causes", "open_checks", "warnings", "repairs", "top_causes",
             "undecided_by_reason", "failed_by_code", "evidence"}) {
        auto statement = database.Get().Prepare("SELECT * FROM " + view);
        ASSERT_TRUE(statement) << view << ": " << database.Get().GetError();
        EXPECT_FALSE(statement->Step());
    }
}

TEST_F(SchemaTest, OtherFilesAreNoResults)
{
    Connection other;
    ASSERT_TRUE(other.Open("other.db", Connection::Mode::CREATE));
    ASSERT_TRUE(other.Execute("CREATE TABLE bundle(id)"));
    mDir.Write("text", "not a database, but long enough to be read as one by SQLite, which looks at a hundred bytes of it"
        "                                           ");
    EXPECT_EQ(MessageOf("other.db"), "bad_results: other.db: is no results database");
    EXPECT_EQ(MessageOf("text"), "bad_results: text: file is not a database");
    EXPECT_EQ(MessageOf("none.db"), "bad_results: none.db: no such file");
    EXPECT_FALSE(mDir.Has("none.db"));
}

TEST_F(SchemaTest, AnotherVersionIsRefusedWithBothNumbers)
{
    Make("PRAGMA user_version = 7");
    EXPECT_EQ(MessageOf("r.db"), "bad_results: r.db: is a results database of version 7, and this command reads version 1: "
                                 "import the lines again");
}

TEST_F(SchemaTest, StatementsOnAnOpenDatabaseAreLimitedByItsSize)
{
    Make("");
    ReadOnlyDatabase database;
    ASSERT_FALSE(OpenResults("r.db", database));
    auto endless = database.Get().Prepare("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT max(i) FROM n");
    ASSERT_TRUE(endless);
    EXPECT_FALSE(endless->Step());
    EXPECT_TRUE(database.Get().IsInterrupted());
}

struct AlteredCase {
    const char* name;
    const char* sql;
    const char* message;
};
void PrintTo(const AlteredCase& altered, std::ostream* out) { *out << altered.name; }
class AlteredSchemaTest : public SchemaTest, public testing::WithParamInterface<AlteredCase> {};

TEST_P(AlteredSchemaTest, IsToldByWhatMayRun)
{
    Make(GetParam().sql);
    EXPECT_EQ(MessageOf("r.db"), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(Table, AlteredSchemaTest, testing::Values(
    AlteredCase{"TableMissing", "DROP TABLE evidence; DROP TABLE repaired", "bad_results: r.db: lacks the table repaired"},
    AlteredCase{"ViewMissing", "DROP VIEW trees", "bad_results: r.db: lacks the view trees"},
    AlteredCase{"IndexMissing", "DROP INDEX bundle_name", "bad_results: r.db: lacks the index bundle_name"},
    AlteredCase{"ViewInPlaceOfATable", "DROP TABLE run; CREATE VIEW run AS SELECT 1 AS id, '' AS engine, '' AS rule_set",
        "bad_results: r.db: lacks the index sqlite_autoindex_run_1"},
    AlteredCase{"ColumnMore", "ALTER TABLE tree ADD COLUMN more", "bad_results: r.db: has another table tree than a results database"},
    AlteredCase{"OtherEvidence", "DROP TABLE evidence; CREATE TABLE evidence(bundle)",
        "bad_results: r.db: lacks the index sqlite_autoindex_evidence_1"},
    AlteredCase{"NoEvidence", "DROP TABLE evidence", "none"},
    AlteredCase{"Trigger", "CREATE TRIGGER t AFTER INSERT ON tree BEGIN DELETE FROM run; END",
        "bad_results: r.db: has the trigger t, which an import would run"},
    AlteredCase{"IndexOfAnExpression", "CREATE INDEX i ON tree(abs(bundle))",
        "bad_results: r.db: has the index i, which an import would run"},
    AlteredCase{"IndexWithACondition", "CREATE INDEX i ON tree(bundle) WHERE abs(bundle) > 0",
        "bad_results: r.db: has the index i, which an import would run"},
    AlteredCase{"UniqueIndex", "CREATE UNIQUE INDEX i ON tree(outcome_def)",
        "bad_results: r.db: has the index i, which an import would run"},
    AlteredCase{"IndexOfColumns", "CREATE INDEX i ON root_cause(cause_def, bundle)", "none"},
    AlteredCase{"OwnViewAndTable", "CREATE VIEW mine AS SELECT 1; CREATE TABLE notes(id, text UNIQUE)", "none"},
    AlteredCase{"Statistics", "ANALYZE", "none"}),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace
