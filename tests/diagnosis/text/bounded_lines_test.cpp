#include "diagnosis/text/bounded_lines.h"

#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using diagnosis::BoundedLines;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t LONGEST = 10;

// Each line as "NUMBER@START TEXT", with "..." for one that is too long, and "|" behind one with an end.
std::vector<std::string> LinesOf(const std::string& text)
{
    std::istringstream stream(text);
    BoundedLines lines(stream, LONGEST);
    std::vector<std::string> texts;
    while (lines.Next()) {
        texts.push_back(std::to_string(lines.Number()) + "@" + std::to_string(lines.Start()) + " "
            + (lines.IsTooLong() ? "..." : "") + std::string(lines.Line()) + (lines.HasEnd() ? "|" : ""));
    }
    return texts;
}

TEST(BoundedLinesTest, LinesHaveTheirNumberAndPlace)
{
    EXPECT_THAT(LinesOf(""), IsEmpty());
    EXPECT_THAT(LinesOf("one\n\nthree\r\nlast"), ElementsAre("1@0 one|", "2@4 |", "3@5 three\r|", "4@12 last"));
}

TEST(BoundedLinesTest, ALineOfTheLongestLengthIsKept)
{
    EXPECT_THAT(LinesOf("0123456789\n0123456789"), ElementsAre("1@0 0123456789|", "2@11 0123456789"));
}

TEST(BoundedLinesTest, ALongerLineIsPassedOverToItsEnd)
{
    EXPECT_THAT(LinesOf("0123456789a\nnext\n0123456789a"), ElementsAre("1@0 ...|", "2@12 next|", "3@17 ..."));
    const std::string longLine(1'000'000, 'x');
    EXPECT_THAT(LinesOf(longLine + "\nnext"), ElementsAre("1@0 ...|", "2@1000001 next"));
    EXPECT_THAT(LinesOf(longLine), ElementsAre("1@0 ..."));
}

TEST(BoundedLinesTest, LinesThatMeetTheEndOfWhatIsReadAtOnceAreWhole)
{
    std::string text;
    for (int line = 0; line < 100'000; ++line) {
        text += std::to_string(line) + "\n";
    }
    std::istringstream stream(text);
    BoundedLines lines(stream, LONGEST);
    for (int line = 0; line < 100'000; ++line) {
        ASSERT_TRUE(lines.Next());
        ASSERT_EQ(lines.Line(), std::to_string(line));
    }
    EXPECT_FALSE(lines.Next());
}

TEST(BoundedLinesTest, AStreamThatFailsHasNoFurtherLine)
{
    std::istringstream stream("one\ntw");
    BoundedLines lines(stream);
    ASSERT_TRUE(lines.Next());
    stream.setstate(std::ios::badbit);
    EXPECT_FALSE(lines.Next());
}

} // namespace
