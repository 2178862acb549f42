#include "tools/arborist/batch/bundle_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"

namespace {

using diagnosis::command::ParseShard;
using diagnosis::command::ReadBundleList;
using diagnosis::command::TakeShard;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(BundleListTest, EntriesEndInLinesOrNulCharacters)
{
    const TempDir dir;
    dir.Write("lines", "a\r\n\nb c\r\n\r\nlast");
    dir.Write("nul", std::string("a\r\0\0b\nc", 7));
    std::vector<std::string> lines;
    std::vector<std::string> names;
    EXPECT_FALSE(ReadBundleList("lines", false, lines));
    EXPECT_FALSE(ReadBundleList("nul", true, names));
    EXPECT_THAT(lines, ElementsAre("a", "b c", "last"));
    EXPECT_THAT(names, ElementsAre("a\r", "b\nc"));
}

#if defined(__linux__)
TEST(BundleListTest, AListThatCannotBeReadToItsEndIsTold)
{
    std::vector<std::string> bundles;
    EXPECT_EQ(ReadBundleList("/proc/self/mem", false, bundles), "/proc/self/mem: can't be read to its end");
}
#endif

TEST(ShardTest, IsANumberUpToItsCount)
{
    const auto shard = ParseShard("2/8");
    ASSERT_TRUE(shard);
    EXPECT_EQ(shard->number, 2U);
    EXPECT_EQ(shard->count, 8U);
    for (const char* text : {"", "2", "a/8", "2/", "2/x", "2/8x", "2-8", "0/8", "9/8", "1/99999999999999999999"}) {
        EXPECT_FALSE(ParseShard(text)) << text;
    }
}

TEST(ShardTest, ShardsOfAnyCountHaveEachBundleOnce)
{
    const std::vector<std::string> bundles = {"a", "b", "c"};
    EXPECT_THAT(TakeShard(bundles, {1, 2}), ElementsAre("a", "c"));
    EXPECT_THAT(TakeShard(bundles, {2, 2}), ElementsAre("b"));
    EXPECT_THAT(TakeShard(bundles, {3, SIZE_MAX}), ElementsAre("c"));
    EXPECT_THAT(TakeShard(bundles, {4, SIZE_MAX}), IsEmpty());
}

} // namespace
