#include "tests/support/database_rows.h"

#include <gmock/gmock.h>

#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"

namespace {

using testing::ElementsAre;

TEST(DatabaseRowsTest, JoinsTheColumnsOfEachRow)
{
    const TempDir dir;
    EventLogBuilder::Run(dir.Path("a.db"), "create table t(a, b); insert into t values (1, 'x'), (null, '')");
    EXPECT_THAT(DatabaseRows(dir.Path("a.db"), "select * from t"), ElementsAre("1|x", "null|"));
}

TEST(DatabaseRowsTest, TellsWhatFailed)
{
    const TempDir dir;
    EventLogBuilder::Run(dir.Path("a.db"), "create table t(a)");
    EXPECT_THAT(DatabaseRows(dir.Path("a.db"), "select * from u"), ElementsAre("error: no such table: u"));
    EXPECT_THAT(DatabaseRows(dir.Path("none.db"), "select 1"), ElementsAre("error: unable to open database file"));
}

} // namespace
