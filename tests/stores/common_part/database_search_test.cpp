#include "arborist/stores/common_part/database_search.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>

#include <gmock/gmock.h>

#include "arborist/frame/stopping.h"
#include "tests/support/temp_dir.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class DatabaseSearchTest : public testing::Test {
protected:
    // Paths below the test's directory.
    std::vector<std::string> Find(const std::string& directory, bool recursive = true,
        const std::string& pattern = ".*\\.db")
    {
        std::vector<std::string> files = DatabaseSearch(pattern).Find(mDir.Path(directory), recursive);
        for (std::string& file : files) {
            file = file.substr(mDir.Path().size() + 1);
        }
        return files;
    }

    TempDir mDir;
};

TEST_F(DatabaseSearchTest, FileInTheDirectoryItselfIsListedOnce)
{
    mDir.Write("d/a.db", "");
    mDir.Write("d/a.txt", "");
    EXPECT_THAT(Find("d"), ElementsAre("d/a.db"));
}

TEST_F(DatabaseSearchTest, EachLevelDoublesTheListings)
{
    mDir.Write("d/1/a.db", "");
    EXPECT_THAT(Find("d"), ElementsAre("d/1/a.db", "d/1/a.db"));
    mDir.Write("e/1/2/a.db", "");
    EXPECT_THAT(Find("e"), SizeIs(4));
    mDir.Write("f/1/2/3/a.db", "");
    EXPECT_THAT(Find("f"), SizeIs(8));
}

TEST_F(DatabaseSearchTest, WithoutRecursionOnlyTheOneWalkCounts)
{
    mDir.Write("d/1/2/a.db", "");
    EXPECT_THAT(Find("d", false), ElementsAre("d/1/2/a.db"));
}

TEST_F(DatabaseSearchTest, WithoutRecursionLinksAreNotFollowed)
{
    mDir.Write("d/a.db", "");
    mDir.Write("e/b.db", "");
    std::filesystem::create_directory_symlink(mDir.Path("e"), mDir.Path("d/link"));
    EXPECT_THAT(Find("d", false), ElementsAre("d/a.db"));
    EXPECT_THAT(Find("d"), UnorderedElementsAre("d/a.db", "e/b.db"));
}

#ifndef _WIN32
// Such a name reads like a folder with a file, whatever the folder is that was visited before.
TEST_F(DatabaseSearchTest, BackslashInANameEndsTheFolderThatWasVisitedBefore)
{
    for (char letter = 'a'; letter <= 'p'; letter = static_cast<char>(letter + 2)) {
        const std::string folder(2, letter);
        const std::string other(2, static_cast<char>(letter + 1));
        mDir.Write("d/" + folder + "/a.db", "");
        mDir.Write("d/" + other + "\\a.txt", "");
    }
    EXPECT_THAT(Find("d", false), SizeIs(8));
}
#endif

TEST_F(DatabaseSearchTest, PathAndPatternMeetInLowerCaseAndTheFileKeepsItsSpelling)
{
    mDir.Write("D/Game.DB", "");
    EXPECT_THAT(Find("D", true, ".*/D/GAME\\.db"), ElementsAre("D/Game.DB"));
}

TEST_F(DatabaseSearchTest, WholePathCountsAndNotTheNameAlone)
{
    mDir.Write("d/a.db", "");
    EXPECT_THAT(Find("d", true, "a\\.db"), IsEmpty());
}

TEST_F(DatabaseSearchTest, WhatIsNoDirectoryHoldsNothing)
{
    mDir.Write("a.db", "");
    EXPECT_THAT(Find("a.db"), IsEmpty());
    EXPECT_THAT(Find("missing"), IsEmpty());
}

TEST_F(DatabaseSearchTest, LinkToADirectoryIsSearchedWhereItLies)
{
    mDir.Write("elsewhere/1/a.db", "");
    mDir.MakeDir("d");
    std::filesystem::create_directory_symlink(mDir.Path("elsewhere"), mDir.Path("d/link"));
    EXPECT_THAT(Find("d"), ElementsAre("elsewhere/1/a.db", "elsewhere/1/a.db"));
}

TEST_F(DatabaseSearchTest, LinksInACircleEnd)
{
    mDir.Write("d/1/a.db", "");
    std::filesystem::create_directory_symlink(mDir.Path("d"), mDir.Path("d/1/back"));
    std::filesystem::create_directory_symlink(mDir.Path("d/1"), mDir.Path("d/1/self"));
    EXPECT_THAT(Find("d"), testing::Contains("d/1/a.db"));
}

TEST_F(DatabaseSearchTest, DeepTreeIsCutShortInsteadOfFillingTheMemory)
{
    std::string path = "d";
    for (int level = 0; level < 40; ++level) {
        path += "/x";
    }
    mDir.Write(path + "/a.db", "");
    DatabaseSearch search(".*\\.db");
    EXPECT_THAT(search.Find(mDir.Path("d"), true), SizeIs(DatabaseSearch::MOST_LISTINGS));
    EXPECT_TRUE(search.IsCutShort());
}

TEST_F(DatabaseSearchTest, SearchEndsBehindTheMostEntriesThatItMayLookAt)
{
    for (const char* name : {"d/1/2/a.db", "d/1/b.db", "d/c.txt"}) { // five entries with the folders
        mDir.Write(name, "");
    }
    DatabaseSearch whole(".*\\.db", 5);
    EXPECT_THAT(whole.Find(mDir.Path("d"), true), SizeIs(6));
    EXPECT_FALSE(whole.HasLeftOutEntries());
    DatabaseSearch shortened(".*\\.db", 4);
    shortened.Find(mDir.Path("d"), true);
    EXPECT_TRUE(shortened.HasLeftOutEntries());
}

TEST_F(DatabaseSearchTest, EntriesBehindLinksCountAsWell)
{
    mDir.Write("e/a.db", "");
    mDir.MakeDir("d");
    std::filesystem::create_directory_symlink(mDir.Path("e"), mDir.Path("d/link"));
    DatabaseSearch search(".*\\.db", 1);
    EXPECT_THAT(search.Find(mDir.Path("d"), true), IsEmpty());
    EXPECT_TRUE(search.HasLeftOutEntries());
}

TEST_F(DatabaseSearchTest, NoFileIsCrowdedOutByRepetitionsOfOthers)
{
    std::string path = "d";
    for (int level = 0; level < 40; ++level) {
        path += "/x";
        mDir.Write(path + "/" + std::to_string(level) + ".db", "");
    }
    mDir.Write("d/y/z/late.db", "");
    DatabaseSearch search(".*\\.db");
    const std::vector<std::string> files = search.Find(mDir.Path("d"), true);
    EXPECT_TRUE(search.IsCutShort());
    EXPECT_THAT(std::set<std::string>(files.begin(), files.end()), SizeIs(41));
    EXPECT_EQ(std::count(files.begin(), files.end(), mDir.Path("d/y/z/late.db")), 4);
    for (int level = 0; level < 40; ++level) {
        const std::string name = "/" + std::to_string(level) + ".db";
        const auto listings = std::count_if(files.begin(), files.end(),
            [&name](const std::string& file) { return file.ends_with(name); });
        EXPECT_EQ(listings, level < 12 ? 2 << level : 8192) << name;
    }
}

TEST_F(DatabaseSearchTest, ManyFilesAreListedAsOftenAsFew)
{
    mDir.MakeDir("d/1");
    for (std::size_t file = 0; file < DatabaseSearch::MOST_LISTINGS + 10; ++file) {
        std::ofstream(mDir.Path("d/1/") + std::to_string(file) + ".db");
    }
    DatabaseSearch search(".*\\.db");
    const std::vector<std::string> files = search.Find(mDir.Path("d"), true);
    EXPECT_THAT(files, SizeIs(2 * (DatabaseSearch::MOST_LISTINGS + 10)));
    EXPECT_THAT(std::set<std::string>(files.begin(), files.end()), SizeIs(DatabaseSearch::MOST_LISTINGS + 10));
    EXPECT_FALSE(search.IsCutShort());
}

TEST_F(DatabaseSearchTest, AListAsLongAsItMayBeStillTakesFilesThatAreNotOnIt)
{
    std::string path = "d";
    for (int level = 0; level < 13; ++level) {
        path += "/x";
    }
    mDir.Write("d/a/late.db", "");
    mDir.Write(path + "/0.db", "");
    for (std::size_t file = 1; file < 130; ++file) { // 130 times 8192 are more than there is room for
        std::ofstream(mDir.Path(path + "/") + std::to_string(file) + ".db");
    }
    mDir.Write("d/y/late.db", ""); // or the one in "d/a": some file systems list the newest first
    DatabaseSearch search(".*\\.db");
    const std::vector<std::string> files = search.Find(mDir.Path("d"), true);
    EXPECT_THAT(std::set<std::string>(files.begin(), files.end()), SizeIs(132));
    EXPECT_LE(files.size(), DatabaseSearch::MOST_LISTINGS_IN_ALL + 132);
    EXPECT_TRUE(search.IsCutShort());
}

// Each path is asked twice whether to stop, when the folder is read and when it is looked at, and each listing of a
// folder once.
TEST_F(DatabaseSearchTest, StepsAndMemoryGrowWithTheFilesAndNoFaster)
{
    constexpr std::size_t FOLDERS = 20;
    for (const std::size_t filesInEach : {std::size_t{50}, std::size_t{1000}}) {
        const std::string root = "d" + std::to_string(filesInEach);
        for (std::size_t folder = 0; folder < FOLDERS; ++folder) {
            const std::string path = mDir.MakeDir(root + "/" + std::to_string(folder)) + "/";
            for (std::size_t file = 0; file < filesInEach; ++file) {
                std::ofstream(path + std::to_string(file) + ".db");
            }
        }
        StopRequest request;
        const StopScope scope(&request);
        request.Start(std::nullopt);
        DatabaseSearch search(".*\\.db");
        const std::vector<std::string> files = search.Find(mDir.Path(root), true);
        EXPECT_THAT(files, SizeIs(2 * FOLDERS * filesInEach));
        EXPECT_LE(files.capacity(), 4 * FOLDERS * filesInEach);
        EXPECT_EQ(request.GetQuestions(), FOLDERS * filesInEach + 3 * FOLDERS); // each entry, each entering of a folder
        EXPECT_FALSE(search.IsCutShort());
    }
}

TEST_F(DatabaseSearchTest, LinksBehindTooManyOthersAreLeftOutAndTold)
{
    const auto link = [this](std::size_t from, std::size_t to) {
        std::filesystem::create_directory_symlink(
            mDir.MakeDir("e/" + std::to_string(to)), mDir.MakeDir("e/" + std::to_string(from)) + "/next");
    };
    for (std::size_t level = 0; level < DatabaseSearch::MOST_LINKS; ++level) {
        link(level, level + 1);
    }
    const std::string last = "e/" + std::to_string(DatabaseSearch::MOST_LINKS);
    mDir.Write(last + "/a.db", "");
    DatabaseSearch search(".*\\.db");
    EXPECT_THAT(search.Find(mDir.Path("e/0"), true), ElementsAre(mDir.Path(last + "/a.db")));
    EXPECT_FALSE(search.HasLeftOutLinks());
    link(DatabaseSearch::MOST_LINKS, DatabaseSearch::MOST_LINKS + 1);
    mDir.Write("e/" + std::to_string(DatabaseSearch::MOST_LINKS + 1) + "/b.db", "");
    DatabaseSearch further(".*\\.db");
    EXPECT_THAT(further.Find(mDir.Path("e/0"), true), ElementsAre(mDir.Path(last + "/a.db")));
    EXPECT_TRUE(further.HasLeftOutLinks());
}

// All of them are found by the first walk, and each leads to the next.
TEST_F(DatabaseSearchTest, LinksBesideEachOtherNestNoDeeperThanTheyMay)
{
    constexpr int FOLDERS = 200;
    for (int folder = 0; folder < FOLDERS; ++folder) {
        std::filesystem::create_directory_symlink(mDir.Path("d/" + std::to_string(folder + 1)),
            mDir.MakeDir("d/" + std::to_string(folder)) + "/next");
    }
    mDir.Write("d/" + std::to_string(FOLDERS) + "/a.db", "");
    DatabaseSearch search(".*\\.db");
    EXPECT_THAT(search.Find(mDir.Path("d"), true), testing::Contains(testing::EndsWith("/a.db")));
    EXPECT_TRUE(search.HasLeftOutLinks());
}

TEST_F(DatabaseSearchTest, LinksThatLeadToEachOtherWithoutAFileEnd)
{
    for (int from = 0; from < 12; ++from) {
        for (int to = 0; to < 12; ++to) {
            mDir.MakeDir("d/" + std::to_string(from));
            std::filesystem::create_directory_symlink(
                mDir.Path("d/" + std::to_string(to)), mDir.Path("d/" + std::to_string(from) + "/l" + std::to_string(to)));
        }
    }
    EXPECT_THAT(Find("d"), IsEmpty());
    mDir.Write("d/11/a.db", "");
    EXPECT_THAT(Find("d"), testing::Contains("d/11/a.db"));
}

// A direct implementation of the walks: everything below the directory, and again for each directory in it.
void ListPlainly(const std::filesystem::path& directory, std::vector<std::string>& files)
{
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory)) {
        if (entry.is_directory()) {
            ListPlainly(entry.path(), files);
        } else if (entry.path().extension() == ".db") {
            files.push_back(entry.path().generic_string());
        }
    }
}

TEST_F(DatabaseSearchTest, OneWalkGivesTheOrderOfAllTheWalks)
{
    for (const char* file : {"a.db", "m/b.db", "m/c.txt", "m/n/d.db", "m/n/e.db", "m/n/o/f.db", "mm/g.db",
        "p/q/r/h.db", "z.db"}) {
        mDir.Write(std::string("d/") + file, "");
    }
    mDir.MakeDir("d/empty/too");
    std::vector<std::string> plain;
    ListPlainly(mDir.Path("d"), plain);
    EXPECT_EQ(DatabaseSearch(".*\\.db").Find(mDir.Path("d"), true), plain);
    EXPECT_THAT(plain, SizeIs(2 + 2 + 2 * 4 + 8 + 2 + 8));
}

TEST_F(DatabaseSearchTest, EndsWithTheDetectionAtAnyEntry)
{
    for (const char* file : {"d/a.db", "d/m/b.db", "d/m/n/c.db"}) {
        mDir.Write(file, "");
    }
    StopRequest request;
    const StopScope scope(&request);
    request.Start(std::nullopt);
    const auto all = Find("d");
    const std::uint64_t questions = request.GetQuestions();
    EXPECT_EQ(questions, 5U + 2U + 4U); // each entry; two folders are entered twice and four times
    for (std::uint64_t question = 1; question <= questions; ++question) {
        request.Start(std::nullopt);
        request.StopAtQuestion(question);
        EXPECT_THROW(Find("d"), DetectionStopped) << question;
        EXPECT_EQ(Find("d"), all);
    }
}

} // namespace
