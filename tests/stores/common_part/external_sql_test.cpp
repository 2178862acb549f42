#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/stores/common_part/external_databases_fixture.h"
#include "tests/support/database_rows.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using ExternalSqlTest = ExternalDatabasesFixture;

TEST_F(ExternalSqlTest, FileThatIsNoDatabaseIsCopiedAndItsSqlFails)
{
    mDir.Write("device/a.db", std::string(2000, 'x'));
    EXPECT_THAT(Copy(".*\\.db", {"create table made(b)"}), ElementsAre("copies/a.db"));
    EXPECT_EQ(mDir.Read("copies/a.db"), std::string(2000, 'x'));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), Contains(Line("IsCreateDbByFileComplete: create table made fail.")));
}

TEST_F(ExternalSqlTest, EmptyPiecesOfSqlArePassedOver)
{
    MakeDb("device/a.db");
    Copy(".*\\.db", {";;create table made(b);;insert into made values (1);"});
    EXPECT_THAT(DatabaseRows(mDir.Path("copies/a.db"), "select * from made"), ElementsAre("1"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ExternalSqlTest, SqlOfSeparatorsAloneOrNoneIsTold)
{
    MakeDb("device/a.db");
    Copy(".*\\.db", {";;", ""});
    const std::string made = Line("IsCreateDbByFileComplete: create table made fail.");
    EXPECT_THAT(mLog.Lines(), ElementsAre(Line("CreateTable: sql empty."), made,
        Line("CreateTable: createTable input is null."), made));
}

TEST_F(ExternalSqlTest, FirstFailingStatementEndsItsTextAndKeepsWhatRan)
{
    MakeDb("device/a.db");
    Copy(".*\\.db", {"create table one(a); no sql; create table two(a)", "create table three(a)"});
    EXPECT_THAT(DatabaseRows(mDir.Path("copies/a.db"), "select name from sqlite_master order by name"),
        ElementsAre("one", "t", "three"));
}

TEST_F(ExternalSqlTest, SemicolonInALiteralCutsTheStatement)
{
    MakeDb("device/a.db");
    Copy(".*\\.db", {"insert into t values ('x;y'); insert into t values (7)"});
    EXPECT_THAT(DatabaseRows(mDir.Path("copies/a.db"), "select * from t"), ElementsAre("1"));
}

TEST_F(ExternalSqlTest, SqlReachesNoOtherFile)
{
    const std::string before = MakeDb("device/a.db");
    const std::string path = mDir.Path("device/a.db");
    Copy(".*\\.db", {"attach '" + path + "' as x; delete from x.t", "attach '" + path + "' || '' as x",
        "vacuum into '" + mDir.Path("new.db") + "'", "vacuum", "delete from t"});
    EXPECT_EQ(mDir.Read("device/a.db"), before);
    EXPECT_FALSE(mDir.Has("new.db"));
    const std::string fail = Line("CreateTable: execute sql fail.");
    const std::string made = Line("IsCreateDbByFileComplete: create table made fail.");
    const auto denied = testing::AnyOf(HasSubstr("not authorized"), HasSubstr("authorization denied"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(denied, fail, made, denied, fail, made, denied, fail, made));
    EXPECT_THAT(DatabaseRows(mDir.Path("copies/a.db"), "select count(*) from t"), ElementsAre("0"));
}

} // namespace
