#include "diagnosis/redaction/hash_key.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/digest/digest.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::DeviceNames;
using diagnosis::ReadHashKey;

TEST(HashKeyTest, EachByteOfTheFileIsPartOfTheKey)
{
    const TempDir dir;
    std::string problem;
    EXPECT_EQ(ReadHashKey(dir.Write("key", std::string("0123456789\0abcde\n", 17)), problem),
        std::string("0123456789\0abcde\n", 17));
    EXPECT_EQ(problem, "");
}

TEST(HashKeyTest, AShortOrMissingKeyIsRefused)
{
    const TempDir dir;
    dir.Write("key", "0123456789abcde");
    std::string problem;
    EXPECT_FALSE(ReadHashKey("key", problem).has_value());
    EXPECT_EQ(problem, "key: a key needs 16 bytes, and this one has 15");
    EXPECT_FALSE(ReadHashKey("none", problem).has_value());
    EXPECT_EQ(problem, "none: the key can't be read");
}

TEST(HashKeyTest, AFileLargerThanAMebibyteIsRefused)
{
    const TempDir dir;
    std::string problem;
    EXPECT_TRUE(ReadHashKey(dir.Write("full", std::string(1 << 20, 'x')), problem).has_value());
    dir.Write("key", std::string((1 << 20) + 1, 'x'));
    EXPECT_FALSE(ReadHashKey("key", problem).has_value());
    EXPECT_EQ(problem, "key: is larger than 1 MiB");
}

TEST(HashKeyTest, ADeviceIsNamedByItsHashAndWithoutAKeyNotAtAll)
{
    const DeviceNames hashed{"0123456789abcdef"};
    EXPECT_EQ(hashed.Of("SN-1"), diagnosis::KeyedHash("0123456789abcdef", "SN-1"));
    EXPECT_EQ(hashed.Of(""), "");
    EXPECT_EQ(DeviceNames().Of("SN-1"), "");
    EXPECT_EQ((DeviceNames{"", true}).Of("SN-1"), "SN-1");
}

} // namespace
