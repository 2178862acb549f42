#include "diagnosis/text/file_text.h"

#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"

namespace {

using diagnosis::FileText;
using diagnosis::ReadJsonFile;

TEST(FileTextTest, IsAllThatAFileHas)
{
    const TempDir dir;
    const std::string large(200'000, 'x');
    EXPECT_EQ(FileText(dir.Write("empty", "")), "");
    EXPECT_EQ(FileText(dir.Write("zero", std::string("a\0b", 3))), std::string("a\0b", 3));
    EXPECT_EQ(FileText(dir.Write("large", large)), large);
}

TEST(FileTextTest, OfAFileWithoutAnEndIsReadAsFarAsAsked)
{
    const auto text = FileText("/dev/zero", 100'000);
    ASSERT_TRUE(text);
    EXPECT_GT(text->size(), 100'000U);
    EXPECT_LT(text->size(), 200'000U);
}

TEST(FileTextTest, OfAFolderAndOfNothingIsNone)
{
    const TempDir dir;
    EXPECT_EQ(FileText(dir.Path()), std::nullopt);
    EXPECT_EQ(FileText("none"), std::nullopt);
}

TEST(FileTextTest, JsonIsReadStrictlyAndAProblemNamesTheFile)
{
    const TempDir dir;
    std::string problem;
    EXPECT_EQ((*ReadJsonFile(dir.Write("a.json", "{\"a\": 5}"), problem))["a"].asInt(), 5);
    EXPECT_FALSE(ReadJsonFile("none.json", problem));
    EXPECT_EQ(problem, "none.json: it can't be read");
    dir.Write("b.json", "{\n");
    EXPECT_FALSE(ReadJsonFile("b.json", problem));
    EXPECT_EQ(problem.rfind("b.json: line 2", 0), 0U) << problem;
}

} // namespace
