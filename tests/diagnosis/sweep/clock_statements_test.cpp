#include "diagnosis/sweep/clock_statements.h"

#include <string>

#include <gtest/gtest.h>

namespace diagnosis {
namespace {

std::string UseOf(std::string_view sql, bool readsFixedTable = false)
{
    const char* const use = ClockUseOf(sql, readsFixedTable);
    return use == nullptr ? "" : use;
}

TEST(ClockStatementsTest, OrdinaryStatementsDependOnTheirRowsAlone)
{
    for (const char* sql : {"", "select count(*) as n from T", "select max(occurrence_time) as n from T where a = 1",
             "select a, occurrence_time from T order by occurrence_time limit 1", "select t.occurrence_time from T t",
             "select count(*) as n from T where note = 'now'", "select date, time from T -- current_time",
             "select count(distinct date(occurrence_time, 'unixepoch', 'localtime')) as days from T"}) {
        EXPECT_EQ(UseOf(sql), "") << sql;
    }
}

TEST(ClockStatementsTest, WhatReadsTheClockIsNamed)
{
    for (const char* sql : {"select count(*) as n from T where a < strftime('%s', 'now')", "select unixepoch() - a as n from T",
             "select CURRENT_TIMESTAMP as n from T", "select random() as n from T", "select date(a) as n from T",
             "select julianday ( 'now' , 'utc' ) as n from T", "select DateTime('now') as n"}) {
        EXPECT_EQ(UseOf(sql), "reads_clock") << sql;
    }
}

TEST(ClockStatementsTest, ATimeOfItsOwnIsNamed)
{
    for (const char* sql : {"select count(*) from (select a + 5 as occurrence_time from T)",
             "select count(*) from (select a * 2 occurrence_time from T)",
             "select count(*) from (select max(a) \"occurrence_time\" from T)",
             "with t(occurrence_time) as (select a from T) select count(*) as n from t"}) {
        EXPECT_EQ(UseOf(sql), "own_time") << sql;
    }
}

TEST(ClockStatementsTest, TheTimeInAFixedTableIsTheClock)
{
    EXPECT_EQ(UseOf("select occurrence_time as n from PLUS", true), "fixed_table");
    EXPECT_EQ(UseOf("select * from PLUS", true), "fixed_table");
    EXPECT_EQ(UseOf("select count(*) as n from PLUS", true), "");
    EXPECT_EQ(UseOf("select ERRCODE as n from PLUS", true), "");
}

} // namespace
} // namespace diagnosis
