#include "arborist/utilities/directory_walk.h"

#include <vector>

#include <gmock/gmock.h>

#include "tests/support/temp_dir.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The entries that a walk visits until there are `most`.
std::vector<std::string> Entries(const std::string& path, std::size_t most)
{
    std::vector<std::string> entries;
    DirectoryWalk::Run(path, [&](const std::string& entry) {
        entries.push_back(entry);
        return entries.size() < most;
    });
    return entries;
}

TEST(DirectoryWalkTest, VisitsAFolderBeforeWhatIsInIt)
{
    const TempDir dir;
    dir.Write("d/1/2/a", "");
    EXPECT_THAT(Entries("d", 10), ElementsAre("d/1", "d/1/2", "d/1/2/a"));
    EXPECT_THAT(Entries("d/", 10), ElementsAre("d/1", "d/1/2", "d/1/2/a"));
}

TEST(DirectoryWalkTest, EndsWhereTheVisitorSaysSo)
{
    const TempDir dir;
    dir.Write("d/1/2/a", "");
    EXPECT_THAT(Entries("d", 2), ElementsAre("d/1", "d/1/2"));
}

TEST(DirectoryWalkTest, VisitsNothingWhereThereIsNoFolder)
{
    const TempDir dir;
    dir.Write("file", "");
    EXPECT_THAT(Entries("none", 1), IsEmpty());
    EXPECT_THAT(Entries("file", 1), IsEmpty());
}

} // namespace
