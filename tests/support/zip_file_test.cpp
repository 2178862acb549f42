#include "tests/support/zip_file.h"

#include <gmock/gmock.h>

#include "tests/support/temp_dir.h"

namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(ZipFileTest, ReadsWhatWasWritten)
{
    const TempDir dir;
    WriteZip(dir.Path("a.zip"), {{"folder/", ""}, {"folder/file", "content"}, {"../bad", ""}});
    EXPECT_THAT(ReadZip(dir.Path("a.zip")),
        ElementsAre(Pair("folder/", ""), Pair("folder/file", "content"), Pair("../bad", "")));
}

TEST(ZipFileTest, ThrowsWhenThereIsNoArchive)
{
    const TempDir dir;
    EXPECT_ANY_THROW(ReadZip(dir.Path("a.zip")));
    EXPECT_ANY_THROW(WriteZip(dir.Path("missing/a.zip"), {}));
}

TEST(ZipFileTest, ChecksumOfADamagedArchiveIsSeen)
{
    const TempDir dir;
    EXPECT_THROW(ReadZip(WriteDamagedZip("a.zip", {{"a", "1"}, {"b", "2"}})), std::runtime_error);
    EXPECT_NO_THROW(ReadZip(WriteZip("a.zip", {{"a", "1"}, {"b", "2"}})));
}

} // namespace
