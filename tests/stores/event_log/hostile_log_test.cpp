// Logs that no service writes: results and log lines must equal those of one query for each id.
#include <random>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/stores/event_log/hostile_log.h"
#include "tests/support/case_name.h"

namespace {

struct OddLog {
    const char* name;
    const char* sql;
};

void PrintTo(const OddLog& log, std::ostream* out)
{
    *out << log.name;
}

class OddLogs : public HostileLogTest, public testing::WithParamInterface<OddLog> {};

TEST_P(OddLogs, AnswerAsOneQueryForEachId)
{
    EventLogBuilder()
        .Rows({{10, 1, "1.0", "{\"a\":1}"}, {20, 2, "2.0", "x"}, {30, 1, "", ""}, {40, 3, "2.0", "y"}})
        .Sql(GetParam().sql)
        .WriteTo(mPath);
    for (const std::int64_t start : {std::int64_t{0}, std::int64_t{25}, INT64_MIN, INT64_MAX}) {
        for (const bool fromUpdate : {false, true}) {
            for (const bool withTexts : {false, true}) {
                ExpectOneAnswer(start, fromUpdate, withTexts);
            }
        }
    }
}

constexpr char AS_VIEW[] = "alter table event_info rename to t; create view event_info as select * from t";

INSTANTIATE_TEST_SUITE_P(Table, OddLogs, testing::Values(
    OddLog{"Plain", "select 1"},
    OddLog{"View", AS_VIEW},
    OddLog{"ViewOfFlow", "alter table event_info_flow rename to t; create view event_info_flow as select * from t "
        "union all select * from t"},
    OddLog{"ViewOfVersions", "alter table event_version rename to t; create view event_version as select * from t"},
    OddLog{"Trigger", "create trigger t after update on event_info begin delete from event_info; end"},
    OddLog{"TextIds", "update event_info set event_id = '1' || 'x' where _ID = 2"},
    OddLog{"BlobIds", "update event_info set event_id = x'31' where _ID = 2"},
    OddLog{"RealIds", "update event_info set event_id = 2.5 where _ID = 2"},
    OddLog{"WholeRealIds", "create table t(_ID integer primary key, event_id real, extra, version_id); insert into t "
        "select * from event_info; drop table event_info; alter table t rename to event_info"},
    OddLog{"TextColumns", "create table t(_ID text, event_id text, extra, version_id text); insert into t "
        "select * from event_info; drop table event_info; alter table t rename to event_info"},
    OddLog{"TextTimes", "create table t(_ID text, event_pid, occurrence_time text); insert into t "
        "select * from event_info_flow; drop table event_info_flow; alter table t rename to event_info_flow"},
    OddLog{"TextInAColumnOfIntegers", "create table t(_ID integer primary key, event_id, extra, version_id); insert into t "
        "select * from event_info; update t set event_id = '0.2e1' where _ID = 1; drop table event_info; alter table t "
        "rename to event_info; pragma writable_schema = 1; update sqlite_master set sql = "
        "replace(sql, 'event_id', 'event_id integer') where name = 'event_info'"},
    OddLog{"HugeIds", "update event_info set event_id = 4294967297 where _ID = 2"},
    OddLog{"HugeTimes", "update event_info_flow set occurrence_time = 9223372036854775807 where _ID = 2"},
    OddLog{"NegativeTimes", "update event_info_flow set occurrence_time = -5 where _ID = 2"},
    OddLog{"NegativeRowNumbers", "update event_info set _ID = -3 where _ID = 3; "
        "update event_info_flow set _ID = -3 where _ID = 3"},
    OddLog{"HugeRowNumbers", "update event_info set _ID = 5000000000 where _ID = 3; "
        "update event_info_flow set _ID = 5000000000 where _ID = 3"},
    OddLog{"HugeVersionNumbers", "update event_version set _ID = 9223372036854775807 where _ID = 2; "
        "update event_info set version_id = 9223372036854775807 where version_id = 2"},
    OddLog{"NegativeVersionNumbers", "update event_version set _ID = -1 where _ID = 2; "
        "update event_info set version_id = -1 where version_id = 2"},
    OddLog{"BlobExtra", "update event_info set extra = x'7B00FF'"},
    OddLog{"BlobVersion", "update event_version set VERSION_NAME = cast('1.0' as blob) where _ID = 2"},
    OddLog{"ZeroByteInVersion", "update event_version set VERSION_NAME = '1.0' || char(0) || 'x' where _ID = 2"},
    OddLog{"NumberAsVersion", "create table t(_ID integer primary key, VERSION_NAME real); insert into t "
        "select * from event_version; drop table event_version; alter table t rename to event_version"},
    OddLog{"NullVersion", "update event_version set VERSION_NAME = null where _ID = 2"},
    OddLog{"TwoVersionsOfOneNumber", "create table t(_ID integer, VERSION_NAME text); insert into t select * from "
        "event_version; insert into t values (1, '1.0'), (1, '3.0'); drop table event_version; alter table t rename "
        "to event_version"},
    OddLog{"VersionNumbersAsText", "create table t(_ID text, VERSION_NAME text); insert into t select * from "
        "event_version; drop table event_version; alter table t rename to event_version"},
    OddLog{"WithoutRowNumbers", "create table t(_ID integer primary key, event_id, extra, version_id) without rowid; "
        "insert into t select * from event_info; drop table event_info; alter table t rename to event_info"},
    OddLog{"GeneratedColumns", "create table t(_ID integer primary key, event_id integer as (_ID % 3), extra text as "
        "(hex(_ID)), version_id integer as (1)); insert into t(_ID) values (1), (2), (3); drop table event_info; alter "
        "table t rename to event_info"},
    OddLog{"RowidIsAColumn", "alter table event_info add column rowid; update event_info set rowid = 'x'"},
    OddLog{"RowidIsAColumnOfNumbers", "alter table event_info add column rowid; update event_info set rowid = 5 - _ID"},
    OddLog{"AllNamesOfRowNumbersAreColumns", "create table t(_ID, event_id integer, extra, version_id, rowid, _rowid_, "
        "oid); insert into t select *, 5 - _ID, 5 - _ID, 5 - _ID from event_info; drop table event_info; alter table t "
        "rename to event_info"},
    OddLog{"RowNumbersOfAnotherColumn", "create table t(_ID, event_id integer, extra, version_id, rowid, oid); insert "
        "into t select *, 5 - _ID, 5 - _ID from event_info order by _ID desc; drop table event_info; alter table t "
        "rename to event_info"},
    OddLog{"IndexedTimes", "create index i on event_info_flow(occurrence_time)"},
    OddLog{"SecondColumnOfAnId", "alter table event_version add column event_id"},
    OddLog{"NoExtraColumn", "alter table event_info rename column extra to other"},
    OddLog{"NoVersionName", "alter table event_version rename column VERSION_NAME to other"},
    OddLog{"IndexedEvents", "create index i on event_info(event_id); analyze"},
    OddLog{"DescendingIndex", "create index i on event_info_flow(occurrence_time desc); create index j on "
        "event_info(version_id desc)"},
    OddLog{"CollatedNoCase", "create table t(_ID integer primary key, event_id collate nocase, extra, version_id); "
        "insert into t select * from event_info; drop table event_info; alter table t rename to event_info"},
    OddLog{"OddCaseOfNames", "alter table event_info rename to t; alter table t rename to EVENT_INFO"}), CaseName());

class EndlessLogs : public HostileLogTest, public testing::WithParamInterface<OddLog> {};

TEST_P(EndlessLogs, AreGivenUp)
{
    EventLogBuilder().Row({10, 1, "1.0", "{\"a\":1}"}).Sql(GetParam().sql).WriteTo(mPath);
    const auto isExpected = testing::AnyOf(
        testing::HasSubstr("Execute sql failed: interrupted"), testing::HasSubstr("version name: 1.0"));
    EXPECT_THAT(AskForEachId(0, false).lines, testing::Each(isExpected));
    EXPECT_THAT(VisitAll(0, false).lines, testing::Each(isExpected));
}

INSTANTIATE_TEST_SUITE_P(Table, EndlessLogs, testing::Values(
    OddLog{"Recursive", "alter table event_info rename to t; create view event_info as with recursive n(i) as (select "
        "1 union all select i + 1 from n) select i as _ID, -9 as event_id, '' as extra, 1 as version_id from n"},
    OddLog{"RecursiveWithRows", "alter table event_info rename to t; create view event_info as with recursive n(i) as "
        "(select 1 union all select i + 1 from n) select 1 as _ID, 1 as event_id, 'x' as extra, 1 as version_id "
        "from n"},
    OddLog{"Product", "alter table event_version rename to t; with recursive n(i) as (select 2 union all select i + 1 "
        "from n where i < 300) insert into t select i, '' from n; create view event_version as select a._ID as _ID, "
        "'' as VERSION_NAME from t a, t b, t c, t d, t e where a._ID + b._ID + c._ID + d._ID + e._ID < 0"}),
    CaseName());

TEST_F(HostileLogTest, DamagedFilesAreReadAsFarAsTheyGoAndStayAsTheyAre)
{
    EventLogBuilder builder;
    for (int row = 0; row < 300; ++row) {
        builder.Row({row, row % LAST_ID, row % 2 == 0 ? "1.0" : "2.0", "{\"a\":" + std::to_string(row) + "}"});
    }
    builder.WriteTo(mPath);
    EventLogBuilder::Run(mPath, "pragma page_size = 512; vacuum");
    const std::string whole = mDir.Read("data/Comms/Lumbra/workDir/0/log.db");
    const auto seed = static_cast<unsigned>(std::random_device()());
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 100; ++round) {
        std::string damaged = whole;
        for (auto hits = 1 + random() % 8; hits != 0; --hits) {
            damaged[random() % damaged.size()] = static_cast<char>(random());
        }
        if (random() % 4 == 0) {
            damaged.resize(random() % damaged.size());
        }
        mDir.Write("data/Comms/Lumbra/workDir/0/log.db", damaged);
        AskForEachId(0, true);
        VisitAll(0, true);
        ASSERT_EQ(mDir.Read("data/Comms/Lumbra/workDir/0/log.db"), damaged) << round;
    }
}

} // namespace
