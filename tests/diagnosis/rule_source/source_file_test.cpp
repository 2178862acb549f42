#include "diagnosis/rule_source/source_file.h"

#include <limits>

#include <gmock/gmock.h>

namespace diagnosis::rule_source {
namespace {

TEST(SourceFileTest, LinesAreWithoutTheirEnds)
{
    const auto file = SourceFile::Of("f.xml", "<a>\n\r\n <b/>\r\n</a>");
    EXPECT_EQ(file->Line(1), "<a>");
    EXPECT_EQ(file->Line(2), "");
    EXPECT_EQ(file->Line(3), " <b/>");
    EXPECT_EQ(file->Line(4), "</a>");
    for (const int none : {std::numeric_limits<int>::min(), -1, 0, 5, std::numeric_limits<int>::max()}) {
        EXPECT_EQ(file->Line(none), "") << none;
    }
    const auto ended = SourceFile::Of("f.xml", "<a/>\n");
    EXPECT_EQ(ended->Line(1), "<a/>");
    EXPECT_EQ(ended->Line(2), "");
    EXPECT_EQ(SourceFile::Of("f.xml", "")->Line(1), "");
}

// A file without line ends: to look for the end of its line at each request would take minutes here.
TEST(SourceFileTest, LineOfManyMegabytesIsNotSearchedForItsEnd)
{
    const std::string text = "<a b='" + std::string(8'000'000, 'x') + "'/>";
    const auto file = SourceFile::Of("f.xml", text);
    for (int request = 0; request < 200'000; ++request) {
        ASSERT_EQ(file->Line(1).size(), text.size());
    }
}

} // namespace
} // namespace diagnosis::rule_source
