#include "arborist/stores/common_part/event_id_list.h"

#include <cstdint>
#include <limits>

#include <gmock/gmock.h>

#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"

namespace {

using testing::ElementsAre;
using testing::StartsWith;

constexpr std::int32_t LOWEST = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t HIGHEST = std::numeric_limits<std::int32_t>::max();

TEST(EventIdListTest, FewIdsAreSpelledOutInTheOrderAddedDoublesIncluded)
{
    EventIdList ids;
    ids.Append(7, 8);
    ids.Append(-1, -1);
    ids.Append(8, 8);
    EXPECT_EQ(ids.ToSql(),
        " ( event_info.event_id = 7 OR event_info.event_id = 8 OR event_info.event_id = -1 OR "
        "event_info.event_id = 8)");
}

TEST(EventIdListTest, RangeFromAGreaterToASmallerIdIsEmpty)
{
    EventIdList ids;
    ids.Append(8, 7);
    EXPECT_TRUE(ids.IsEmpty());
}

TEST(EventIdListTest, GreatestIdIsSelectedAndEndsTheRange)
{
    EventIdList ids;
    ids.Append(HIGHEST, HIGHEST);
    EXPECT_EQ(ids.ToSql(), " ( event_info.event_id = 2147483647)");
}

TEST(EventIdListTest, ManyIdsAreWrittenAsRanges)
{
    EventIdList ids;
    ids.Append(LOWEST, HIGHEST);
    EXPECT_THAT(ids.ToSql(), StartsWith(" ( CAST(event_info.event_id AS INTEGER) BETWEEN -2147483648 AND 2147483647 AND "));
}

class EventIdSelection : public testing::Test {
protected:
    EventIdSelection() { EventLogBuilder().WriteTo(mPath); }

    void Log(const std::string& eventIds)
    {
        EventLogBuilder::Run(mPath, "insert into event_info (event_id) values " + eventIds);
    }

    std::vector<std::string> Selected(const EventIdList& ids) const
    {
        return DatabaseRows(mPath, "select event_id from event_info where" + ids.ToSql() + " order by event_id");
    }

    TempDir mDir;
    std::string mPath = mDir.Path("log.db");
};

TEST_F(EventIdSelection, OfWideRangesIsTheSame)
{
    Log("(1), (2), (2000001), (3000000), (3000001), (-5), (2147483647), (null), (2.5), ('abc'), (x'41')");
    EventIdList ids;
    ids.Append(2, 3000000);
    ids.Append(2147483640, HIGHEST);
    ids.Append(-5, -5);
    EXPECT_THAT(Selected(ids), ElementsAre("-5", "2", "2000001", "3000000", "2147483647"));
}

TEST_F(EventIdSelection, OfThousandsOfSeparateIdsAndRangesIsTheSame)
{
    Log("(1), (10), (11), (99990), (99995), (100000), (500010), (500011), (500020), (500031), (899980), (899999)");
    EventIdList ids;
    for (std::int32_t id = 10; id < 100000; id += 10) {
        ids.Append(id, id); // single ids
    }
    for (std::int32_t id = 500000; id < 900000; id += 40) {
        ids.Append(id, id + 20); // ranges
    }
    EXPECT_THAT(Selected(ids), ElementsAre("10", "99990", "500010", "500011", "500020", "899980"));
}

TEST_F(EventIdSelection, OfTheLastNumberThatIsSpelledOutWorksAndSoDoesOneMore)
{
    Log("(1), (900), (901), (902)");
    EventIdList ids;
    ids.Append(1, 900);
    EXPECT_THAT(Selected(ids), ElementsAre("1", "900"));
    EXPECT_THAT(ids.ToSql(), testing::HasSubstr(" OR event_info.event_id = 900)"));
    ids.Append(901, 901);
    EXPECT_THAT(Selected(ids), ElementsAre("1", "900", "901"));
    EXPECT_THAT(ids.ToSql(), StartsWith(" ( CAST(event_info.event_id AS INTEGER) BETWEEN 1 AND 901 "));
}

// Compares with the plain condition, split into parts that fit into an expression.
TEST_F(EventIdSelection, OfManyIdsIsTheSameWhateverTheColumnIsDeclaredAs)
{
    EventIdList ids;
    ids.Append(3, 1200);
    ids.Append(4000, 6000);
    ids.Append(-7, -7);
    ids.Append(70000, 70002);
    for (const char* const type : {"", "integer", "text", "varchar(10)", "real", "numeric", "blob"}) {
        EventLogBuilder::Run(mPath, std::string("drop table event_info; create table event_info(event_id ") + type + ")");
        Log("(20), ('20'), ('3'), (3), ('0900'), (900), ('900'), ('900.0'), (900.0), (' 7'), ('-7'), (-7), (5000), "
            "('5000'), ('5e3'), (7.5), ('7.5'), ('7 s'), (x'37'), (null), ('70001'), (70003), (2), ('12000'), (12000)");
        std::string list;
        for (const auto& [first, last] : {std::pair(3, 1200), {4000, 6000}, {-7, -7}, {70000, 70002}}) {
            for (int id = first; id <= last; ++id) {
                list += (list.empty() ? "" : ", ") + std::to_string(id);
            }
        }
        const std::string select = "select quote(event_id) from event_info where";
        const auto expected = DatabaseRows(mPath, select + " event_id in (" + list + ") order by rowid");
        EXPECT_EQ(DatabaseRows(mPath, select + ids.ToSql() + " order by rowid"), expected) << type;
        EXPECT_GT(expected.size(), 3U) << type;
    }
}

} // namespace
