#include "diagnosis/archive/zip_writer.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "diagnosis/archive/zip_reader.h"
#include "tests/support/full_disk.h"
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

// Wherever the disk ends: in the head of an entry, in its content, in a folder or in the list of all.
TEST(ZipWriterTest, AnArchiveThatDoesNotFitOnTheDiskIsTold)
{
    const TempDir dir;
    std::string noise;
    for (std::uint32_t number = 1; noise.size() < 150000; number = number * 1664525 + 1013904223) {
        noise += static_cast<char>(number >> 24);
    }
    dir.Write("f/noise", noise);
    for (int file = 0; file < 30; ++file) {
        dir.Write("f/" + std::to_string(file) + std::string(200, 'x') + "/" + std::string(200, 'y'), "content");
    }
    ASSERT_FALSE(diagnosis::PackZip("f", "z.zip", "z.zip").has_value());
    const rlim_t size = fs::file_size("z.zip");
    for (rlim_t bytes = 0; bytes < size; bytes += 1511) {
        const FullDisk disk(bytes);
        const auto failure = diagnosis::PackZip("f", "z.zip", "z.zip");
        ASSERT_TRUE(failure.has_value()) << bytes;
        EXPECT_EQ(failure->message, "z.zip: can't be written");
    }
    const FullDisk disk(size);
    EXPECT_FALSE(diagnosis::PackZip("f", "z.zip", "z.zip").has_value());
}

TEST(ZipWriterTest, LinksAndPipesAreLeftOut)
{
    const TempDir dir;
    dir.Write("f/a", "content");
    fs::create_symlink("a", "f/link");
    ASSERT_EQ(mkfifo("f/pipe", 0600), 0);
    EXPECT_FALSE(diagnosis::PackZip("f", "z.zip", "z.zip").has_value());
    EXPECT_THAT(ReadZip("z.zip"), testing::ElementsAre(testing::Pair("a", "content")));
}

TEST(ZipWriterTest, AnArchiveThatCannotBeMadeIsTold)
{
    const TempDir dir;
    dir.Write("f/a", "content");
    const auto failure = diagnosis::PackZip("f", "none/z.zip", "z.zip");
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->code, diagnosis::FailureCode::NOT_PACKED);
    EXPECT_EQ(failure->message, "z.zip: can't be written");
}

} // namespace
