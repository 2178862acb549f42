#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/text/markup.h"

namespace {

using diagnosis::Markup;
using diagnosis::Shortened;
using diagnosis::Wrapped;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(MarkupTest, SignsOfMarkupAreEscaped)
{
    EXPECT_EQ(Markup("<a b='c' d=\"e\">&amp;"), "&lt;a b=&#39;c&#39; d=&quot;e&quot;&gt;&amp;amp;");
}

TEST(MarkupTest, WhatXmlHasNoPlaceForIsShownAsBytes)
{
    EXPECT_EQ(Markup(std::string("a\0b\xFF\n", 5)), "a\\x00b\\xFF\\x0A");
    EXPECT_EQ(Markup("\xEF\xBF\xBF"), "\xEF\xBF\xBD");
    EXPECT_EQ(Markup("\xEF\xBF\xBE"), "\xEF\xBF\xBD");
    EXPECT_EQ(Markup("\xC3\xA4"), "\xC3\xA4");
}

TEST(WrappedTest, LinesEndAtBlanks)
{
    EXPECT_THAT(Wrapped("the disk is full", 9, 9), ElementsAre("the disk", "is full"));
    EXPECT_THAT(Wrapped("the disk is", 8, 9), ElementsAre("the disk", "is"));
}

TEST(WrappedTest, LongWordsAreCutBetweenCharacters)
{
    EXPECT_THAT(Wrapped("\xC3\xA4\xC3\xA4\xC3\xA4", 2, 9), ElementsAre("\xC3\xA4\xC3\xA4", "\xC3\xA4"));
}

TEST(WrappedTest, WhatDoesNotFitEndsInAnEllipsis)
{
    EXPECT_THAT(Wrapped("a b c d", 1, 2), ElementsAre("a", "b\xE2\x80\xA6"));
}

TEST(ShortenedTest, WhatDoesNotFitIsCutBetweenCharactersForAnEllipsis)
{
    EXPECT_EQ(Shortened("T: \xC3\xA4\xC3\xA4", 5), "T: \xC3\xA4\xC3\xA4");
    EXPECT_EQ(Shortened("T: \xC3\xA4\xC3\xA4\xC3\xA4", 5), "T: \xC3\xA4\xE2\x80\xA6");
    EXPECT_EQ(Shortened("", 5), "");
}

TEST(WrappedTest, NothingHasNoLines)
{
    EXPECT_THAT(Wrapped("", 5, 5), IsEmpty());
}

} // namespace
