#include "diagnosis/text/file_pattern.h"

#include <gtest/gtest.h>

namespace {

using diagnosis::IsFilePattern;

TEST(FilePatternTest, IsARegularExpressionThatIsNotTooLong)
{
    EXPECT_TRUE(IsFilePattern(".*/usage\\.db"));
    EXPECT_FALSE(IsFilePattern("*.db"));
    EXPECT_FALSE(IsFilePattern("(usage"));
    EXPECT_TRUE(IsFilePattern(std::string(4096, 'a')));
    EXPECT_FALSE(IsFilePattern(std::string(4097, 'a')));
}

} // namespace
