#include "diagnosis/archive/zip_writer.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/archive/zip_reader.h"
#include "tests/support/temp_dir.h"
#include "tests/support/zip_file.h"

namespace {

namespace fs = std::filesystem;

TEST(ZipWriterTest, WritingAndReadingGiveTheSameFilesAndTheSameBytes)
{
    const TempDir dir;
    dir.Write("f/b/deep/file", "content");
    dir.Write("f/a", std::string(200000, 'y'));
    dir.MakeDir("f/empty");
    EXPECT_FALSE(diagnosis::PackZip("f", "z.zip", "z.zip").has_value());
    EXPECT_FALSE(diagnosis::PackZip("f", "again.zip", "again.zip").has_value());
    EXPECT_EQ(dir.Read("z.zip"), dir.Read("again.zip"));
    dir.MakeDir("in/out");
    std::vector<diagnosis::Warning> warnings;
    EXPECT_FALSE(diagnosis::UnpackZip("z.zip", "z.zip", "in/out", warnings).has_value());
    EXPECT_EQ(dir.Read("in/out/b/deep/file"), "content");
    EXPECT_EQ(dir.Read("in/out/a"), std::string(200000, 'y'));
    EXPECT_TRUE(fs::is_directory("in/out/empty"));
    EXPECT_THAT(ReadZip("z.zip"), testing::SizeIs(5));
}

} // namespace
