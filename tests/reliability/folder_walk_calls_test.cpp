// Walks and searches over folders that can't be opened or read to their end.
#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <new>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/stores/common_part/external_databases.h"
#include "arborist/utilities/directory_walk.h"
#include "tests/reliability/failing_utility_call.h"
#include "tests/reliability/observed_detection.h"
#include "tests/support/settings_guard.h"
#include "tests/support/zip_file.h"

namespace fs = std::filesystem;

namespace {

using CallCounter::Failing;
using FailingFiles::Call;
using FailingFiles::Failure;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;
using testing::UnorderedElementsAre;

// The entries that a walk visits; says in `isWhole`, if it is not null, whether these are all.
std::vector<std::string> Walk(const std::string& folder, bool* isWhole = nullptr)
{
    std::vector<std::string> entries;
    const bool answer = DirectoryWalk::Run(folder, [&entries](const std::string& entry) {
        entries.push_back(entry);
        return true;
    });
    if (isWhole != nullptr) {
        *isWhole = answer;
    }
    return entries;
}

// Lets the process open `more` files and no others.
class FewDescriptors {
public:
    explicit FewDescriptors(rlim_t more)
    {
        const int next = dup(STDERR_FILENO);
        close(next);
        EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &mBefore), 0);
        const rlimit few{static_cast<rlim_t>(next) + more, mBefore.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    }
    ~FewDescriptors() { EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &mBefore), 0); }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;

private:
    rlimit mBefore{};
};

// Nests folders in `folder`, with a database in the innermost, and puts eight folders with one database each beside them.
void MakeDeepFolder(const TempDir& dir, const std::string& folder, int levels)
{
    std::string deep = folder;
    for (int level = 0; level < levels; ++level) {
        deep += "/q";
    }
    dir.Write(deep + "/deep.db", "");
    for (int beside = 0; beside < 8; ++beside) {
        dir.Write(folder + "/" + std::to_string(beside) + "/u.db", "");
    }
}

TEST_F(FailingUtilityCall, WalkFindsFoldersThatTheListDoesNotTell)
{
    mDir.Write("d/1/2/a", "");
    mDir.Write("d/b", "");
    fs::create_directory_symlink("1", "d/link");
    const FailingFiles::HiddenTypes hidden;
    EXPECT_THAT(Walk("d"), UnorderedElementsAre("d/1", "d/1/2", "d/1/2/a", "d/b", "d/link"));
    const Failure failure(Call::STATUS, EACCES, 1, Failing::ALL_FROM_IT_ON);
    EXPECT_THAT(Walk("d"), UnorderedElementsAre("d/1", "d/b", "d/link"));
}

TEST_F(FailingUtilityCall, WalkTakesAFolderForEmptyThatItMayNotOpenOrThatIsGone)
{
    mDir.Write("d/1/a", "");
    mDir.Write("d/2/a", "");
    for (const int error : {EACCES, ENOENT, ENOTDIR}) {
        for (const std::uint64_t opened : {1U, 2U}) { // the first opens "d"
            const Failure failure(Call::OPEN, error, opened);
            bool isWhole = false;
            EXPECT_THAT(Walk("d", &isWhole), SizeIs(opened == 1 ? 0U : 3U)) << error;
            EXPECT_TRUE(isWhole) << error;
        }
    }
}

TEST_F(FailingUtilityCall, WalkGoesOnBesideAFolderThatCannotBeOpenedAndSaysThatItIsNotWhole)
{
    mDir.Write("d/1/a", "");
    mDir.Write("d/2/a", "");
    for (const int error : {EMFILE, EIO, ELOOP}) {
        for (const std::uint64_t opened : {1U, 2U}) {
            const Failure failure(Call::OPEN, error, opened);
            bool isWhole = true;
            EXPECT_THAT(Walk("d", &isWhole), SizeIs(opened == 1 ? 0U : 3U)) << error;
            EXPECT_FALSE(isWhole) << error;
        }
    }
}

TEST_F(FailingUtilityCall, WalkSaysThatItIsNotWholeWhereAFolderIsReadInPart)
{
    mDir.Write("d/1/a", "");
    constexpr std::uint64_t CALLS = 8; // of ".", "..", one entry and the end of each of the two folders
    for (std::uint64_t call = 1; call <= CALLS; ++call) {
        const Failure failure(Call::NEXT_ENTRY, EIO, call);
        bool isWhole = true;
        EXPECT_THAT(Walk("d", &isWhole).size(), Le(2U));
        EXPECT_FALSE(isWhole) << call;
    }
    bool isWhole = false;
    EXPECT_THAT(Walk("d", &isWhole), ElementsAre("d/1", "d/1/a"));
    EXPECT_TRUE(isWhole);
}

TEST_F(FailingUtilityCall, WalkFindsWhatIsBesideAChainOfMoreFoldersThanItMayOpen)
{
    MakeDeepFolder(mDir, "d", 40);
    const std::size_t files = OpenFiles();
    bool isWhole = false;
    EXPECT_THAT(Walk("d", &isWhole), AllOf(SizeIs(40 + 1 + 2 * 8), Contains(EndsWith("/deep.db"))));
    EXPECT_TRUE(isWhole);
    {
        const FewDescriptors few(20);
        const std::vector<std::string> entries = Walk("d", &isWhole);
        EXPECT_THAT(entries, SizeIs(AllOf(Ge(10U + 2 * 8), Le(20U + 2 * 8))));
        const auto isBeside = [](const std::string& entry) { return entry.ends_with("/u.db"); };
        EXPECT_EQ(std::count_if(entries.begin(), entries.end(), isBeside), 8);
        EXPECT_FALSE(isWhole);
    }
    EXPECT_EQ(OpenFiles(), files);
}

TEST_F(FailingUtilityCall, FolderForWhoseListThereIsNoMemoryEndsTheWalkAndIsClosed)
{
    mDir.Write("d/1/a", "");
    const std::size_t files = OpenFiles();
    {
        const Failure failure(Call::LIST, ENOMEM);
        EXPECT_THROW(Walk("d"), std::bad_alloc);
    }
    EXPECT_EQ(OpenFiles(), files);
}

class FailingSearchCall : public FailingUtilityCall {
protected:
    static constexpr char LEFT_OUT[] =
        "FUNc:CommonPartDbHelper::GetFileList: directories can't be read, what is in them is not searched.";

    FailingSearchCall() { mSettings.Set(Settings::APP_DATABASE_DIR, mDir.Path("copies")); }

    SettingsGuard mSettings;
};

TEST_F(FailingSearchCall, TellsTheFoldersThatItCannotOpenAndFindsWhatIsBesideThem)
{
    MakeDeepFolder(mDir, "device", 10);
    EXPECT_TRUE(ExternalDatabases::CopyDbFile(mDir.Path("device"), ".*[.]db").isWhole);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    const FewDescriptors few(10);
    const auto copies = ExternalDatabases::CopyDbFile(mDir.Path("device"), ".*[.]db");
    EXPECT_THAT(copies.files, AllOf(SizeIs(2 * 8), Each(mDir.Path("copies/u.db"))));
    EXPECT_FALSE(copies.isWhole);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre(LEFT_OUT));
}

TEST_F(FailingSearchCall, TellsThatItCannotOpenTheFolderOfTheSearch)
{
    mDir.Write("device/a.db", "");
    const Failure failure(Call::OPEN, EMFILE, 1, Failing::ALL_FROM_IT_ON);
    const auto copies = ExternalDatabases::CopyDbFile(mDir.Path("device"), ".*[.]db");
    EXPECT_THAT(copies.files, IsEmpty());
    EXPECT_FALSE(copies.isWhole);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre(LEFT_OUT));
}

TEST_F(FailingSearchCall, ArchiveWhoseFilesCannotBeListedIsNotUnpackedWhole)
{
    WriteZip(mDir.Path("a.zip"), {{"a.db", "1"}});
    ExternalDatabases::Unpacking unpacking;
    unpacking.isWhole = true;
    const Failure failure(Call::NEXT_ENTRY, EIO, 1, Failing::ALL_FROM_IT_ON);
    EXPECT_THAT(ExternalDatabases::UnZipFile(mDir.Path("a.zip"), mDir.Path("copies"), &unpacking), IsEmpty());
    EXPECT_FALSE(unpacking.isWhole);
    EXPECT_FALSE(unpacking.isRepeatable);
}

} // namespace
