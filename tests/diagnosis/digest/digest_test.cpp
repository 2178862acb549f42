#include "diagnosis/digest/digest.h"

#include <gtest/gtest.h>

namespace {

using diagnosis::KeyedHash;
using diagnosis::Sha256Hex;
using diagnosis::Sha256HexOf;

TEST(Sha256, GivesThePublishedDigests)
{
    EXPECT_EQ(Sha256Hex(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(Sha256Hex("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(Sha256Hex(std::string(1'000'000, 'a')), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sha256, CountsBytesAfterANulCharacter)
{
    EXPECT_NE(Sha256Hex(std::string("a\0b", 3)), Sha256Hex(std::string("a\0c", 3)));
}

TEST(Sha256OfSeveralTexts, HasTheLengthOfEachBeforeIt)
{
    const std::string two("\2\0\0\0\0\0\0\0", 8);
    const std::string long260("\4\1\0\0\0\0\0\0", 8);
    const std::string text(260, 'x');
    EXPECT_EQ(Sha256HexOf({"ab", text}), Sha256Hex(two + "ab" + long260 + text));
}

TEST(Sha256OfSeveralTexts, ChangesWhenBytesMoveFromOneToTheNext)
{
    EXPECT_NE(Sha256HexOf({"ab", "c"}), Sha256HexOf({"a", "bc"}));
    EXPECT_NE(Sha256HexOf({"", ""}), Sha256HexOf({""}));
}

TEST(KeyedHash, IsTheBeginningOfThePublishedCodes)
{
    EXPECT_EQ(KeyedHash("Jefe", "what do ya want for nothing?"), "5bdcc146bf60754e6a042426089575c7");
    EXPECT_EQ(KeyedHash(std::string(20, '\x0b'), "Hi There"), "b0344c61d8db38535ca8afceaf0bf12b");
}

TEST(KeyedHash, TakesKeysLongerThanABlock)
{
    EXPECT_EQ(KeyedHash(std::string(131, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First"),
        "60e431591ee0b67f0d8a26aacbf5b77f");
}

TEST(KeyedHash, DiffersByKeyAndByText)
{
    EXPECT_NE(KeyedHash("one", "device"), KeyedHash("other", "device"));
    EXPECT_NE(KeyedHash("one", "device"), KeyedHash("one", "other"));
    EXPECT_EQ(KeyedHash("", "").size(), 32U);
}

} // namespace
