#include "diagnosis/text/printable.h"

#include <gtest/gtest.h>

namespace {

using diagnosis::Printable;

TEST(PrintableTest, KeepsTextAndEscapesWhatSteersATerminal)
{
    EXPECT_EQ(Printable("plain \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80"), "plain \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80");
    EXPECT_EQ(Printable("a\nb\t\x1b\x7f"), "a\\x0Ab\\x09\\x1B\\x7F");
    EXPECT_EQ(Printable("\xC2\x9B"), "\\xC2\\x9B");
    EXPECT_EQ(Printable("\xE2\x80\xAE"), "\\xE2\\x80\\xAE");
    EXPECT_EQ(Printable("\xE2\x81\xA6"), "\\xE2\\x81\\xA6");
    EXPECT_EQ(Printable("\xE2\x81\xAA"), "\xE2\x81\xAA");
    EXPECT_EQ(Printable("\xC3(\xE2\x82("), "\\xC3(\\xE2\\x82(");
    EXPECT_EQ(Printable("\xFF\xC3"), "\\xFF\\xC3");
    EXPECT_EQ(Printable("\xC0\xAF\xED\xA0\x80"), "\\xC0\\xAF\\xED\\xA0\\x80");
    EXPECT_EQ(Printable(std::string("a\0b", 3)), "a\\x00b");
}

TEST(PrintableTest, NothingIsShownAsEmptyAndListsInOneLine)
{
    EXPECT_EQ(diagnosis::Shown(""), "(empty)");
    EXPECT_EQ(diagnosis::Shown("a\n"), "a\\x0A");
    EXPECT_EQ(diagnosis::Joined({"a", "", "b\x1b"}, " + "), "a + (empty) + b\\x1B");
    EXPECT_EQ(diagnosis::Joined({}, ", "), "");
}

} // namespace
