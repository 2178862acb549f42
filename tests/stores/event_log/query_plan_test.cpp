#include "arborist/stores/event_log/query_plan.h"

#include "arborist/stores/event_log/event_query.h"
#include "tests/stores/event_log/log_reading.h"

namespace {

class QueryPlanTest : public LogReadingTest {
protected:
    void Open(const std::string& sql)
    {
        EventLogBuilder().Row({10, 7, "", ""}).Sql(sql).WriteTo(mPath);
        mDatabase.Open(mPath);
    }

    bool IsScan() const { return QueryPlan::IsScanOfEvents(mDatabase.GetHandle(), EventQuery::TextFor(7, 0)); }
    std::string RowName() const { return QueryPlan::RowNameOfEvents(mDatabase.GetHandle()); }
};

constexpr char NEW_EVENTS[] = "drop table event_info; create table event_info ";

TEST_F(QueryPlanTest, QueryOfAPlainLogIsAScanOfItsEvents)
{
    Open("select 1");
    EXPECT_TRUE(IsScan());
    EXPECT_EQ(RowName(), "_ID");
}

TEST_F(QueryPlanTest, IndexesAndViewsAreOtherPlans)
{
    Open("create index i on event_info(event_id)");
    EXPECT_FALSE(IsScan());
    Open("create index i on event_info_flow(occurrence_time)");
    EXPECT_FALSE(IsScan());
    Open("alter table event_info rename to t; create view event_info as select * from t");
    EXPECT_FALSE(IsScan());
    EXPECT_EQ(RowName(), "");
}

TEST_F(QueryPlanTest, RowNumbersAreKnownByWhatTheyAre)
{
    Open(std::string(NEW_EVENTS) + "(_ID, event_id, extra, version_id)");
    EXPECT_EQ(RowName(), "rowid");
    Open(std::string(NEW_EVENTS) + "(_ID, event_id, extra, version_id, rowid)");
    EXPECT_EQ(RowName(), "_rowid_");
    Open(std::string(NEW_EVENTS) + "(_ID, event_id, extra, version_id, rowid text primary key, _rowid_)");
    EXPECT_EQ(RowName(), "oid");
    Open(std::string(NEW_EVENTS) + "(_ID, event_id, extra, version_id, rowid, _rowid_, oid)");
    EXPECT_EQ(RowName(), "");
    Open(std::string(NEW_EVENTS) + "(_ID integer primary key, event_id, extra, version_id, rowid, _rowid_, oid)");
    EXPECT_EQ(RowName(), "_ID");
}

} // namespace
