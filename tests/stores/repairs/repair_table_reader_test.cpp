#include "arborist/stores/repairs/repair_table_reader.h"

#include <gmock/gmock.h>

#include "arborist/frame/trouble_watch.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RepairTableReaderTest : public testing::Test {
protected:
    RepairTableReaderTest()
    {
        EventLogBuilder::Run(mPath, "create table repair_data(repair_id text collate nocase)");
        mDatabase.Open(mPath);
    }

    TempDir mDir;
    LogCapture mLog;
    std::string mPath = mDir.Path("a.db");
    FT::sql::SqlDatabase mDatabase;
    RepairTableReader mReader{mDatabase};
};

TEST_F(RepairTableReaderTest, SeesTheTableGoAndNoViewInItsPlace)
{
    EXPECT_TRUE(mReader.IsThere());
    mReader.Release();
    EventLogBuilder::Run(mPath, "drop table repair_data");
    EXPECT_FALSE(mReader.IsThere());
    EventLogBuilder::Run(mPath, "create view repair_data as select 1");
    EXPECT_FALSE(mReader.IsThere());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RepairTableReaderTest, FileStaysAsItIsUntilTheRelease)
{
    ASSERT_TRUE(mReader.IsThere());
    FT::sql::SqlDatabase other;
    other.Open(mPath);
    const auto insert = [&] {
        FT::sql::SqlCursor statement(other.GetHandle(), "insert into repair_data values ('R')");
        statement.Step();
        return statement.IsOk();
    };
    EXPECT_FALSE(insert());
    mReader.Release();
    EXPECT_TRUE(insert());
}

TEST_F(RepairTableReaderTest, ClosedDatabaseHasNoTable)
{
    mDatabase.Close();
    EXPECT_FALSE(mReader.IsThere());
}

TEST_F(RepairTableReaderTest, IdIsFoundLetterByLetterWhateverTheColumnsOpinion)
{
    EventLogBuilder::Run(mPath, "insert into repair_data values ('other'), ('it''s'), ('')");
    EXPECT_TRUE(mReader.Holds("it's"));
    EXPECT_FALSE(mReader.Holds("It's"));
    EXPECT_FALSE(mReader.Holds("R"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(RepairTableReaderTest, FailureIsToldAsThatOfAnyStatement)
{
    EventLogBuilder::Run(mPath, "drop table repair_data");
    std::string file;
    const TroubleWatch watch([&file](const Evidence::Trouble& trouble) { file = trouble.file; });
    EXPECT_FALSE(mReader.Holds("R"));
    EXPECT_EQ(file, mPath);
    EXPECT_THAT(mLog.Lines(),
        ElementsAre("FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: no such table: repair_data"));
}

} // namespace
