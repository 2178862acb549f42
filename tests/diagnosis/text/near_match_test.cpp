#include "diagnosis/text/near_match.h"

#include <gtest/gtest.h>

namespace {

using diagnosis::NearMatch;

TEST(NearMatchTest, FindsSlipsAndIgnoresWhatIsFar)
{
    const std::vector<std::string> keys = {"treeTag", "ruleFileDir", "device", "now", "tz"};
    EXPECT_EQ(NearMatch("treetag", keys), "treeTag");
    EXPECT_EQ(NearMatch("TREETAG", keys), "treeTag");
    EXPECT_EQ(NearMatch("ruleFileDirs", keys), "ruleFileDir");
    EXPECT_EQ(NearMatch("devcie", keys), "device");
    EXPECT_EQ(NearMatch("n", keys), "");
    EXPECT_EQ(NearMatch("comment", keys), "");
    EXPECT_EQ(NearMatch("", keys), "");
    EXPECT_EQ(NearMatch(std::string(100000, 'a'), keys), "");
}

} // namespace
