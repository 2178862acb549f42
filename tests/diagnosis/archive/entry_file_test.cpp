#include "diagnosis/archive/entry_file.h"

#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"

namespace {

using diagnosis::EntryFile;

TEST(EntryFileTest, TakesBytesAsTheyAre)
{
    const TempDir dir;
    const std::string bytes("a\r\nb\n\x1a\0c", 8);
    {
        EntryFile file(dir.Path("new"));
        ASSERT_TRUE(file.IsOpen());
        EXPECT_TRUE(file.Write(bytes.data(), bytes.size()));
    }
    EXPECT_EQ(dir.Read("new"), bytes);
}

TEST(EntryFileTest, NeverOpensAFileThatIsThere)
{
    const TempDir dir;
    dir.Write("there", "content");
    EXPECT_FALSE(EntryFile(dir.Path("there")).IsOpen());
    EXPECT_EQ(dir.Read("there"), "content");
}

} // namespace
