#include "diagnosis/results_db/schema.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/results_db/results_database.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::Connection;
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
        ASSERT_TRUE(database.Execute(sql)) << database.GetError();
    }

    std::string MessageOf(const std::string& path)
    {
        Connection database;
        const auto failure = OpenResults(path, database);
        return failure ? CodeWord(failure->code) + (": " + failure->message) : "none";
    }

    TempDir mDir;
};

TEST_F(SchemaTest, ViewsCanBeAskedOfAnEmptyDatabase)
{
    Make(diagnosis::results_db::EVIDENCE_SCHEMA);
    Connection database;
    ASSERT_FALSE(OpenResults("r.db", database));
    for (const std::string view : {"bundles", "trees", "root_causes", "open_checks", "warnings", "repairs", "top_causes",
             "undecided_by_reason", "failed_by_code", "evidence"}) {
        auto statement = database.Prepare("SELECT * FROM " + view);
        ASSERT_TRUE(statement) << view << ": " << database.GetError();
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

} // namespace
