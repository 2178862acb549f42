#include "arborist/stores/event_log/id_table.h"

#include <map>
#include <random>

#include <gmock/gmock.h>

namespace {

TEST(IdTableTest, AppendsIdsInOrderOfAppearance)
{
    IdTable::Ids ids;
    IdTable table;
    EXPECT_EQ(table.Find(ids, 7), IdTable::NONE);
    EXPECT_EQ(table.FindOrAppend(ids, 7), 0U);
    EXPECT_EQ(table.FindOrAppend(ids, -7), 1U);
    EXPECT_EQ(table.FindOrAppend(ids, 7), 0U);
    EXPECT_THAT(ids, testing::ElementsAre(7, -7));
    EXPECT_EQ(table.Find(ids, -7), 1U);
    EXPECT_EQ(table.Find(ids, 8), IdTable::NONE);
}

TEST(IdTableTest, AgreesWithAMap)
{
    const unsigned int seed = 99;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    IdTable::Ids ids;
    IdTable table;
    std::map<std::int32_t, std::uint32_t> map;
    const auto anyId = [&random] {
        return static_cast<std::int32_t>(random() % 20000 * (random() % 2 == 0 ? 65536U : 1U));
    };
    for (int round = 0; round < 50000; ++round) {
        const std::int32_t id = anyId();
        ASSERT_EQ(table.FindOrAppend(ids, id), map.emplace(id, static_cast<std::uint32_t>(map.size())).first->second);
    }
    EXPECT_EQ(ids.size(), map.size());
    const IdTable ofAll(ids);
    for (int round = 0; round < 50000; ++round) {
        const std::int32_t id = anyId();
        const auto known = map.find(id);
        ASSERT_EQ(ofAll.Find(ids, id), known == map.end() ? IdTable::NONE : known->second);
    }
}

} // namespace
